// Finds the SDP bodies in a text: the text itself, or the bodies of the SIP messages in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct BodyPlace {
    size_t offset; // in the whole text
    size_t size;
    size_t line = 0;      // of the offset, from 1
    size_t message = 0;   // offset of the SIP message that carries it
    bool carried = false; // by a SIP message
};

// A problem of a text.
struct Problem {
    enum Kind {
        Note,    // a part of the text that is not a body is skipped
        Wrong,   // the text contradicts itself; the body was found nevertheless
        Unusable // a body, or the whole text, cannot be read
    };
    Kind kind;
    size_t offset; // of the line, message or part
    std::string text;
    size_t line = 0;
};

struct Bodies {
    std::vector<BodyPlace> bodies;
    std::vector<BodyPlace> messages; // whole messages, with bodies or without
    std::vector<Problem> problems;

    void clear();
};

/*
 * A text that begins with a line such as "v=0" is a body, including lines of SDP after an empty
 * line; "v=" after an empty line begins another body. In other texts every SIP message is read,
 * with any text between the messages; see message.hpp. A text without either is one body. A text of
 * messages without any body is a problem.
 *
 * The text may be given in parts: each call of take() gets the text from the current position on,
 * and returns how many bytes the caller drops before the next call. Messages and bodies of up to
 * kAhead bytes are found as in the whole text; longer ones are problems. Most calls need only kStep
 * bytes, which stay in the processor's cache.
 */
class BodyFinder {
public:
    static constexpr size_t kAhead = 16u << 20;
    static constexpr size_t kStep = 128u << 10;

    // `last` says that the text reaches the end of the input. Returns 0 where more text is needed,
    // which does not happen with kAhead bytes or at the end.
    size_t take(std::string_view text, bool last, Bodies &found);

    // After the last call: adds problems of the text as a whole.
    void finish(Bodies &found) const;

private:
    enum class Mode { Start, Skipping, Messages, Plain, AfterBody };

    size_t step(std::string_view text, bool last, Bodies &found);
    size_t takeStart(std::string_view text, bool last, Bodies &found);
    size_t takeMessageAhead(std::string_view text, bool last, Bodies &found);
    size_t takePlain(std::string_view text, bool last, Bodies &found);
    size_t skipToBody(std::string_view text, bool last, Bodies &found);
    void settle(std::string_view text, size_t done);

    Mode mode_ = Mode::Start;
    size_t passed_ = 0; // bytes of the input before the text of this call
    size_t line_ = 1;   // of the start of the text of this call
    size_t messages_ = 0;
    BodyPlace firstMessage_ = {};
    bool found_ = false; // a body or a problem that is more than a note
    bool noted_ = false; // whether unread text after this body was noted
    Bodies here_;        // what this call found, with offsets in its text
};

// The bodies of one SIP message, given as the whole text.
Bodies bodiesOfMessage(std::string_view message);

// The bodies of a text that is in memory.
Bodies findBodies(std::string_view text);

} // namespace cli

// Where the SDP bodies of a text are: the text itself, or the bodies of the SIP messages in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct BodyPlace {
    size_t offset; // in the whole text
    size_t size;
    size_t line = 0;    // that it begins in, from 1
    size_t message = 0; // offset of the SIP message that carries it
    bool carried = false;
};

// Something that a reader of the text should know.
struct Problem {
    enum Kind {
        Note,    // part of the text is passed over; no body is
        Wrong,   // the text contradicts itself; the body was found all the same
        Unusable // a body, or the whole text, cannot be read
    };
    Kind kind;
    size_t offset; // of the line, message or part
    std::string text;
    size_t line = 0;
};

struct Bodies {
    std::vector<BodyPlace> bodies;
    std::vector<BodyPlace> messages; // whole ones, of which some carry bodies
    std::vector<Problem> problems;

    void clear();
};

/*
 * A text that begins with a line such as "v=0" is a body, with the lines of SDP that come after an
 * empty line in it; what begins with "v=" after one is another. Otherwise every SIP message in the
 * text is looked at, whatever is written between them; see message.hpp. A text without either is
 * one body. A text of messages without any body in it is a problem.
 *
 * The text may come in parts: with every call of take() the caller hands over what it has from the
 * present place on, and drops as many bytes as the call returns before the next one. Messages and
 * bodies of up to kAhead bytes are found as in the whole text; longer ones are problems. Most calls
 * do with far less text, which stays in the processor's cache: kStep bytes.
 */
class BodyFinder {
public:
    static constexpr size_t kAhead = 16u << 20;
    static constexpr size_t kStep = 128u << 10;

    // `text` has any number of bytes, or reaches the end of the input: `last`. Returns 0 where more
    // of it is needed to decide, which is never so with kAhead bytes, and at the end.
    size_t take(std::string_view text, bool last, Bodies &found);

    // After the last call: what the whole text lacks.
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
    size_t line_ = 1;   // that the text of this call begins in
    size_t messages_ = 0;
    BodyPlace firstMessage_ = {};
    bool found_ = false; // a body or a problem that is more than a note
    bool noted_ = false; // that what follows a body is not read
    Bodies here_;        // what this call found, by offsets in its text
};

// The bodies of one SIP message that is the whole text.
Bodies bodiesOfMessage(std::string_view message);

// All of it for a text that is in memory.
Bodies findBodies(std::string_view text);

} // namespace cli

// Repairs within a line, by its kind. `value` is the text after the "=", a part of the given line.
#pragma once

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

inline constexpr std::string_view kVersionLine = "v=0";
inline constexpr std::string_view kOriginLine = "o=- 0 0 IN IP4 0.0.0.0";
inline constexpr std::string_view kNameLine = "s=-";
inline constexpr std::string_view kTimeLine = "t=0 0";
// The start of a line that is kept as an attribute.
inline constexpr std::string_view kKept = "a=x-line:";

void repairOrigin(Workspace &work, Line &line, std::string_view value);
void repairConnection(Workspace &work, Line &line, std::string_view value);
void repairMedia(Workspace &work, Line &line, std::string_view value);
void repairRtpmap(Workspace &work, Line &line, std::string_view value);

// Adds the missing formats to a deferred m= line.
void addFormats(Workspace &work, Line &line);

// What a first look at a line shows: that it needs no repair, as most lines do not; that it needs
// a part removed, which is the most frequent repair; or that it may need any repair.
enum class Look : uint8_t { Plain, Cut, Other };

// The removal of a part of a line.
struct Cut {
    Rule rule;
    const char *place; // that is reported
    const char *from;
    const char *to;
};

// Refused::Yes is for the line at which the decoder refused the text; it did not reach the others.
enum class Refused : bool { No, Yes };

// Looks at a line of the given text. Sets `cut` where it returns Look::Cut.
Look lookAtLine(const Workspace &work, char key, std::string_view text, Refused refused, Cut &cut);
// Out of line, so that the frame of one kind of line is not set up for the others.
[[gnu::noinline]] Look lookAtOrigin(const Workspace &work, std::string_view value, Cut &cut);
[[gnu::noinline]] Look lookAtMedia(const Workspace &work, std::string_view value, Cut &cut);
Look lookAtRtpmap(std::string_view value, Cut &cut);

// Repairs a line after that look.
void repairLine(Workspace &work, Line &line, Look look, const Cut &cut);

// The number of blanks between words, if there is one blank between each two and none around them;
// else, and for control characters, kNotEven.
inline constexpr uint32_t kNotEven = 0xFFFFFFFF;
inline uint32_t countBlanks(std::string_view words) {
    const char *const end = words.data() + words.size();
    uint32_t count = 0;
    for (const char *word = words.data();; ++count) {
        const char *const at = findControl(word, end);
        if (at == end) {
            return at != word ? count : kNotEven;
        }
        if (*at != ' ' || at == word) {
            return kNotEven;
        }
        word = at + 1;
    }
}

// Whether the line has a CR or a NUL, so that readers disagree about its end: it is not repaired.
bool endsTwice(const Workspace &work, std::string_view line);

// Whether the decoder accepts payload numbers after that protocol.
bool takesPayloads(std::string_view protocol, bool rtpFamily);

// Removes the text between two places of a line that has not been written again. The line consists
// of two parts then: nothing is copied before the whole text is written.
void cutOut(Line &line, const char *from, const char *to);

// Copies the two parts of a line to one text.
void join(Workspace &work, Line &line);

// Removes the line from the text. Its entry stays, for the report.
void leaveOut(Line &line);

// Replaces the line by an attribute whose value is the given line: a=x-line:y=1. It is moved to the
// attributes of its description.
void makeAttribute(Workspace &work, Line &line);

// Adds such an attribute for the line, which stays.
void keepAsAttribute(Workspace &work, Line &line);

} // namespace sdpline::tidy

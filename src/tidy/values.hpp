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

// Repairs a line according to its type. Refused::Yes is for the line at which the decoder refused
// the text; it did not reach the others.
enum class Refused : bool { No, Yes };
void repairLine(Workspace &work, Line &line, Refused refused);

// Repairs a line that may have any fault.
[[gnu::noinline]] void repairFaulty(Workspace &work, Line &line);

// Repairs such a line. Most need no repair, or only that of their most frequent fault, blanks too
// many at one place: these are repaired at once, and repairFaulty() is called for all others.
[[gnu::noinline]] void repairOriginLine(Workspace &work, Line &line, std::string_view value);
[[gnu::noinline]] void repairMediaLine(Workspace &work, Line &line, std::string_view value);

// Whether the value of an a=rtpmap line is complete without superfluous white space (Plain); or
// would be without the blanks before it, which is the most frequent fault (AfterBlanks).
enum class Rtpmaps : uint8_t { Plain, AfterBlanks, Other };
Rtpmaps lookAtRtpmap(std::string_view value);
// Removes these blanks from a line that has not been written again.
void closeRtpmap(Workspace &work, Line &line, std::string_view value);

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
bool endsTwice(const Workspace &work, const Line &line);

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

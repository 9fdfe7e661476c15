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
void repairAttribute(Workspace &work, Line &line, std::string_view value);
void repairRtpmap(Workspace &work, Line &line, std::string_view value);

// Adds the missing formats to a deferred m= line.
void addFormats(Workspace &work, Line &line);

// Whether such a line certainly needs no repair, as most lines do not. When false is returned, it
// may or may not need one.
bool isPlainOrigin(std::string_view value);
bool isPlainMedia(std::string_view value);

// The same for a=rtpmap, after the repair of its most frequent fault: blanks after the colon of a
// line that has not been written again.
bool isSettledRtpmap(Workspace &work, Line &line, std::string_view value);

// The number of blanks between words, if there is one blank between each two and none around them;
// else, and for control characters, kNotEven.
inline constexpr uint32_t kNotEven = 0xFFFFFFFF;
constexpr uint32_t countBlanks(std::string_view words) {
    uint32_t count = 0;
    size_t word = 0; // where it begins
    for (size_t at = 0; at != words.size(); ++at) {
        const auto byte = static_cast<uint8_t>(words[at]);
        if (byte > ' ') [[likely]] {
            continue;
        }
        if (byte != ' ' || at == word) {
            return kNotEven;
        }
        word = at + 1;
        ++count;
    }
    return word != words.size() ? count : kNotEven;
}

// Whether the line has a CR or a NUL, so that readers disagree about its end: it is not repaired.
bool endsTwice(const Workspace &work, const Line &line);

// Whether the decoder accepts payload numbers after that protocol.
bool takesPayloads(std::string_view protocol, bool rtpFamily);

// Removes the text between two places of the line.
void cutOut(Workspace &work, Line &line, const char *from, const char *to);

// Removes the line from the text. Its entry stays, for the report.
void leaveOut(Line &line);

// Replaces the line by an attribute whose value is the given line: a=x-line:y=1. It is moved to the
// attributes of its description.
void makeAttribute(Workspace &work, Line &line);

// Adds such an attribute for the line, which stays.
void keepAsAttribute(Workspace &work, Line &line);

} // namespace sdpline::tidy

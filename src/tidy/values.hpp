// Repairs within a line, by its kind. `value` is what follows the "=", a part of the line as given.
#pragma once

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

inline constexpr std::string_view kVersionLine = "v=0";
inline constexpr std::string_view kOriginLine = "o=- 0 0 IN IP4 0.0.0.0";
inline constexpr std::string_view kNameLine = "s=-";
inline constexpr std::string_view kTimeLine = "t=0 0";
// What a line that is kept as an attribute begins with.
inline constexpr std::string_view kKept = "a=x-line:";

void repairOrigin(Workspace &work, Line &line, std::string_view value);
void repairConnection(Workspace &work, Line &line, std::string_view value);
void repairMedia(Workspace &work, Line &line, std::string_view value);
void repairAttribute(Workspace &work, Line &line, std::string_view value);
void repairRtpmap(Workspace &work, Line &line, std::string_view value);

// Adds to a deferred m= line the formats that it lacks.
void addFormats(Workspace &work, Line &line);

// Whether there is nothing to repair in such a line, as in most. False is no promise.
bool isPlainOrigin(std::string_view value);
bool isPlainMedia(std::string_view value);

// The same of a line in place that has the fault of most, if any, which is repaired then: blanks
// after the colon.
bool isSettledRtpmap(Workspace &work, Line &line, std::string_view value);

// Words with one blank between them and none around them: how many blanks. kNotEven for other
// space, and for control characters.
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

// Whether readers disagree about where the line ends, as they do at a CR and at a NUL: then it is
// left alone.
bool endsTwice(const Workspace &work, const Line &line);

// Whether the decoder takes payload numbers after that protocol.
bool takesPayloads(std::string_view protocol, bool rtpFamily);

// Leaves out what is between two places of the line, which is where it was given but for its end.
void cutOut(Workspace &work, Line &line, const char *from, const char *to);

// Takes the line out of the text; it keeps its row.
void leaveOut(Line &line);

// Makes the line an attribute whose value is the line as it was given: a=x-line:y=1. It goes to the
// attributes of its description.
void makeAttribute(Workspace &work, Line &line);

// Puts such an attribute in beside the line, which stays.
void keepAsAttribute(Workspace &work, Line &line);

} // namespace sdpline::tidy

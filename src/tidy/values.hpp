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

// Whether readers disagree about where the line ends, as they do at a CR and at a NUL: then it is
// left alone.
inline bool endsTwice(const Line &line) {
    return line.text.find('\r') != std::string_view::npos ||
           line.text.find('\0') != std::string_view::npos;
}

// Whether the decoder takes payload numbers after that protocol.
bool takesPayloads(std::string_view protocol, bool rtpFamily);

// Takes the line out of the text; it keeps its row.
void leaveOut(Line &line);

// Makes the line an attribute whose value is the line as it was given: a=x-line:y=1. It goes to the
// attributes of its description.
void makeAttribute(Workspace &work, Line &line);

// Puts such an attribute in beside the line, which stays.
void keepAsAttribute(Workspace &work, Line &line);

} // namespace sdpline::tidy

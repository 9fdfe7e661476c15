// Writes a decoded body as text for people, with one line for each record, indented below its
// parent.
#pragma once

#include <string>
#include <string_view>

#include "sdpline/sdpline.h"

namespace cli {

// Plain shows what the records hold; Explained adds the names of payload types and profiles after
// their numbers: "0 (PCMU)".
enum class TreeStyle { Plain, Explained };

// Texts are quoted, bytes that do not print become \xHH. Codes are shown by their keywords, or by
// their numbers where they have none.
std::string describeTree(const SdpLine &line, TreeStyle style = TreeStyle::Plain);

// A text in quotes, as the tree shows it.
std::string quoted(std::string_view text);
std::string quoted(const SipString &text);

} // namespace cli

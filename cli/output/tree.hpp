// A decoded body as text for people: one line a record, indented below what it belongs to.
#pragma once

#include <string>

#include "sdpline/sdpline.h"

namespace cli {

// Texts are quoted, bytes that do not print are \xHH. Codes are shown by their keywords; those
// that have none by their number.
std::string describeTree(const SdpLine &line);

// A text in quotes, as the tree shows it.
std::string quoted(const SipString &text);

} // namespace cli

// Bodies from files and standard input: plain SDP, or a SIP message that carries it.
#pragma once

#include <optional>
#include <string>

namespace cli {

// The whole file, or standard input for "-". Without a value the reason is in `error`.
std::optional<std::string> readInput(const std::string &path, std::string &error);

// The SDP of the text: the text itself, or the body of the SIP message that the text is (RFC 3261
// section 7). Without a value the reason is in `error`.
std::optional<std::string> extractSdp(const std::string &text, std::string &error);

} // namespace cli

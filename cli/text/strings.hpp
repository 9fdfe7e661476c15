// Small operations on text that several parts of the program share.
#pragma once

#include <string>
#include <string_view>

#include "sdpline/sipcore.h"

namespace cli {

bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Without blanks, tabs and carriage returns at both ends.
std::string_view trimmed(std::string_view text);

bool isDigit(char byte);
bool isLetter(char byte);
bool isAlnum(char byte);

// What the decoder drops before a line. A line of nothing else is empty, and ends the body.
inline constexpr std::string_view kDroppedBeforeLine(" \0", 2);

// Two lower-case hexadecimal digits for each byte.
std::string hexOf(std::string_view bytes);

// "0x05035065"
std::string codeText(uint32_t code);

// The size of the UTF-8 sequence at the start of the text (RFC 3629: shortest form, no surrogates);
// 0 where there is none.
size_t utf8Length(std::string_view text);
bool isUtf8(std::string_view text);

inline std::string_view view(const SipString &text) {
    return text.pcData != nullptr ? std::string_view(text.pcData, text.ulLen) : std::string_view();
}

// "1 file", "2 files"
std::string counted(size_t count, std::string_view singular, std::string_view plural);

} // namespace cli

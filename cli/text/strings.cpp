#include "text/strings.hpp"

#include <algorithm>

namespace cli {

namespace {

char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

constexpr char kHexDigits[] = "0123456789abcdef";

} // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    const auto isSame = [](char x, char y) { return lower(x) == lower(y); };
    return a.size() == b.size() && (a == b || std::equal(a.begin(), a.end(), b.begin(), isSame));
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool isLetter(char byte) {
    return lower(byte) >= 'a' && lower(byte) <= 'z';
}

bool isAlnum(char byte) {
    return isDigit(byte) || isLetter(byte);
}

std::string hexOf(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        text += kHexDigits[static_cast<unsigned char>(byte) >> 4];
        text += kHexDigits[byte & 15];
    }
    return text;
}

std::string codeText(uint32_t code) {
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
        text += kHexDigits[code >> shift & 15];
    }
    return text;
}

size_t utf8Length(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    const auto at = [text](size_t i) -> uint32_t { return static_cast<unsigned char>(text[i]); };
    const uint32_t lead = at(0);
    if (lead < 0x80) {
        return 1;
    }
    const size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size) {
        return 0;
    }
    for (size_t i = 1; i < size; ++i) {
        if ((at(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    const uint32_t second = at(1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool surrogate = lead == 0xED && second >= 0xA0;
    const bool beyond = lead == 0xF4 && second >= 0x90;
    return overlong || surrogate || beyond ? 0 : size;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const size_t size = utf8Length(text);
        if (size == 0) {
            return false;
        }
        text.remove_prefix(size);
    }
    return true;
}

std::string counted(size_t count, std::string_view singular, std::string_view plural) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? singular : plural);
}

} // namespace cli

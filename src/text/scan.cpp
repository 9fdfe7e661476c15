// Comparison and scanning of texts.
#include "text/scan.hpp"

#include "sdpline/sipcore.h"

namespace sdpline {

namespace {

constexpr char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

// The value of a hexadecimal digit; 16 for any other byte.
constexpr uint32_t hexDigit(char byte) {
    if (byte >= '0' && byte <= '9') {
        return static_cast<uint32_t>(byte - '0');
    }
    const char letter = lower(byte);
    return letter >= 'a' && letter <= 'f' ? static_cast<uint32_t>(letter - 'a') + 10 : 16;
}

constexpr uint16_t kNotDecimal = 0xFFFF;

} // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

uint32_t countDigits(const char *text) {
    uint32_t count = 0;
    while (isDigit(static_cast<uint8_t>(text[count]))) {
        ++count;
    }
    return count;
}

uint16_t hexNumber(const char *text) {
    uint32_t value = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t digit = hexDigit(text[i]);
        if (digit == 16) {
            break;
        }
        value = value * 16 + digit;
    }
    return static_cast<uint16_t>(value);
}

uint16_t shortNumber(const char *text) {
    uint32_t value = 0;
    for (uint32_t i = 0; i < 3 && isAlnum(text[i]); ++i) {
        if (!isDigit(static_cast<uint8_t>(text[i]))) {
            return kNotDecimal;
        }
        value = value * 10 + static_cast<uint32_t>(text[i] - '0');
    }
    return static_cast<uint16_t>(value);
}

bool startsWith(std::string_view text, std::string_view start) {
    const auto size = static_cast<uint32_t>(start.size());
    const SipString first = {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
    const SipString second = {size, const_cast<char *>(start.data())};
    return SipSmStringNCmp(&first, &second, size) == 1;
}

const char *findText(std::string_view text, std::string_view wanted) {
    if (wanted.empty()) {
        return text.data();
    }
    for (size_t at = 0; at + wanted.size() <= text.size(); ++at) {
        if (SS_MemCmp(text.data() + at, wanted.data(), static_cast<uint32_t>(wanted.size())) == 0) {
            return text.data() + at;
        }
    }
    return nullptr;
}

} // namespace sdpline

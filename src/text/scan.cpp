// Comparison and number scanning. None of these allocates; all stop at the end of the text.
#include "text/scan.hpp"

#include <cstring>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"

namespace sdpline {

namespace {

constexpr char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

// Value of a hexadecimal digit, 16 for any other byte.
constexpr uint32_t hexDigit(char byte) {
    if (byte >= '0' && byte <= '9') {
        return static_cast<uint32_t>(byte - '0');
    }
    const char letter = lower(byte);
    return letter >= 'a' && letter <= 'f' ? static_cast<uint32_t>(letter - 'a') + 10 : 16;
}

constexpr uint32_t kNoDigits = 0xFFFFFFFF;
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

} // namespace sdpline

using namespace sdpline;

extern "C" {

uint32_t SdpLibChkExactString(const char *pcFirst, const char *pcSecond) {
    if (pcFirst == nullptr || pcSecond == nullptr) {
        return logAndForward(Check::CompareArgument, 0);
    }
    return std::strcmp(pcFirst, pcSecond) == 0 ? 1 : 0;
}

uint32_t SdpiCmpExactString(const char *pcFirst, const char *pcSecond) {
    return equalIgnoringCase(pcFirst, pcSecond) ? 1 : 0;
}

uint32_t SdpLibScanDigits(const char *pcData, uint32_t *pulValue) {
    if (pcData == nullptr || pulValue == nullptr) {
        return logAndForward(Check::ScanArgument, kNoDigits);
    }
    uint32_t count = 0;
    while (isDigit(static_cast<uint8_t>(pcData[count]))) {
        ++count;
    }
    *pulValue = scanNumber({pcData, count});
    return count;
}

uint32_t SdpStrNCmpCharPtr(const char *pcText, uint32_t ulLen, const char *pcOther,
                           uint32_t ulCount) {
    const SipString first = {ulLen, const_cast<char *>(pcText)};
    const SipString second = {ulCount, const_cast<char *>(pcOther)};
    return SipSmStringNCmp(&first, &second, ulCount);
}

uint32_t SdpIsalnum(int32_t iByte) {
    const int32_t upper = iByte & ~0x20;
    return (upper >= 'A' && upper <= 'Z') || SdpIsdigit(iByte) == 1 ? 1 : 0;
}

uint32_t SdpIsdigit(int32_t iByte) {
    return iByte >= '0' && iByte <= '9' ? 1 : 0;
}

void SdpConvHexStrToDec(const char *pcText, uint16_t *pusValue) {
    uint32_t value = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t digit = hexDigit(pcText[i]);
        if (digit == 16) {
            break;
        }
        value = (value & 0xFFF) * 16 + digit;
    }
    *pusValue = static_cast<uint16_t>(value);
}

void SdpConvDecStrToDec(const char *pcText, uint16_t *pusValue) {
    uint32_t value = 0;
    for (uint32_t i = 0; i < 3 && SdpIsalnum(pcText[i]) == 1; ++i) {
        if (SdpIsdigit(pcText[i]) == 0) {
            *pusValue = kNotDecimal;
            return;
        }
        value = value * 10 + static_cast<uint32_t>(pcText[i] - '0');
    }
    *pusValue = static_cast<uint16_t>(value);
}

const char *SdpSmStrstr(const char *pcHay, uint32_t ulHayLen, const char *pcNeedle,
                        uint32_t ulNeedleLen) {
    if (ulNeedleLen == 0) {
        return pcHay;
    }
    if (ulHayLen < ulNeedleLen) {
        return nullptr;
    }
    for (uint32_t at = 0; at <= ulHayLen - ulNeedleLen; ++at) {
        if (SS_MemCmp(pcHay + at, pcNeedle, ulNeedleLen) == 0) {
            return pcHay + at;
        }
    }
    return nullptr;
}

} // extern "C"

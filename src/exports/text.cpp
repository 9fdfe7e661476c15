// The exported text utilities.
#include <cstring>

#include "checks/checks.hpp"
#include "parser/connection.hpp"
#include "sdpline/sdpinternals.h"
#include "text/scan.hpp"

using namespace sdpline;

namespace {

constexpr uint32_t kNoText = 0xFFFFFFFF;

} // namespace

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
        return logAndForward(Check::ScanArgument, kNoText);
    }
    const uint32_t count = countDigits(pcData);
    *pulValue = scanNumber({pcData, count});
    return count;
}

uint32_t SdpStrNCmpCharPtr(const char *pcText, uint32_t ulLen, const char *pcOther,
                           uint32_t ulCount) {
    return startsWith({pcText, ulLen}, {pcOther, ulCount}) ? 1 : 0;
}

uint32_t SdpIsalnum(int32_t iByte) {
    return isAlnum(iByte) ? 1 : 0;
}

uint32_t SdpIsdigit(int32_t iByte) {
    return iByte >= '0' && iByte <= '9' ? 1 : 0;
}

void SdpConvHexStrToDec(const char *pcText, uint16_t *pusValue) {
    *pusValue = hexNumber(pcText);
}

void SdpConvDecStrToDec(const char *pcText, uint16_t *pusValue) {
    *pusValue = shortNumber(pcText);
}

const char *SdpSmStrstr(const char *pcHay, uint32_t ulHayLen, const char *pcNeedle,
                        uint32_t ulNeedleLen) {
    return findText({pcHay, ulHayLen}, {pcNeedle, ulNeedleLen});
}

SDPResult SdpTokanizeIPv6Str(const char *pcText, uint32_t ulLen, char (*pacTokens)[4],
                             char *pcPattern, uint32_t ulCapacity, uint32_t *pulPatternLen) {
    return cutIpv6Text(pcText, ulLen, pacTokens, pcPattern, ulCapacity, pulPatternLen);
}

SDPResult SdpLoadIpV6StringToArray(const char *pcText, uint32_t ulLen, uint8_t *pucAddress) {
    return loadIpv6Text(pcText, ulLen, pucAddress);
}

} // extern "C"

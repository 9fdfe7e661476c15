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

uint32_t SdpLibChkExactString(const char *first, const char *second) {
    if (first == nullptr || second == nullptr) {
        return logAndForward(Check::CompareArgument, 0);
    }
    return std::strcmp(first, second) == 0 ? 1 : 0;
}

uint32_t SdpiCmpExactString(const char *first, const char *second) {
    return equalIgnoringCase(first, second) ? 1 : 0;
}

uint32_t SdpLibScanDigits(const char *data, uint32_t *value) {
    if (data == nullptr || value == nullptr) {
        return logAndForward(Check::ScanArgument, kNoText);
    }
    const uint32_t count = countDigits(data);
    *value = scanNumber({data, count});
    return count;
}

uint32_t SdpStrNCmpCharPtr(const char *text, uint32_t length, const char *other, uint32_t count) {
    return startsWith({text, length}, {other, count}) ? 1 : 0;
}

uint32_t SdpIsalnum(int32_t byte) {
    return isAlnum(byte) ? 1 : 0;
}

uint32_t SdpIsdigit(int32_t byte) {
    return byte >= '0' && byte <= '9' ? 1 : 0;
}

void SdpConvHexStrToDec(const char *text, uint16_t *value) {
    *value = hexNumber(text);
}

void SdpConvDecStrToDec(const char *text, uint16_t *value) {
    *value = shortNumber(text);
}

const char *SdpSmStrstr(const char *hay, uint32_t hayLength, const char *needle,
                        uint32_t needleLength) {
    return findText({hay, hayLength}, {needle, needleLength});
}

SDPResult SdpTokanizeIPv6Str(const char *text, uint32_t length, char (*tokens)[4], char *pattern,
                             uint32_t capacity, uint32_t *patternLength) {
    return cutIpv6Text(text, length, tokens, pattern, capacity, patternLength);
}

SDPResult SdpLoadIpV6StringToArray(const char *text, uint32_t length, uint8_t *address) {
    return loadIpv6Text(text, length, address);
}

} // extern "C"

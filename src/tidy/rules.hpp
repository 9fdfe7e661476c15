// The rules, by the numbers of sdptidy.h.
#pragma once

#include <cstdint>

#include "sdpline/sdptidy.h"

namespace sdpline::tidy {

// The number of a rule.
enum class Rule : uint32_t {
    ByteOrderMark = SDP_TIDY_BYTE_ORDER_MARK,
    LeadingBlank = SDP_TIDY_LEADING_BLANK,
    LineEndSize = SDP_TIDY_LINE_END_SIZE,
    TrailingSpace = SDP_TIDY_TRAILING_SPACE,
    SpaceRun = SDP_TIDY_SPACE_RUN,
    LineEmpty = SDP_TIDY_LINE_EMPTY,
    LineOrder = SDP_TIDY_LINE_ORDER,
    LineTwice = SDP_TIDY_LINE_TWICE,
    OriginMissing = SDP_TIDY_ORIGIN_MISSING,
    OriginAddress = SDP_TIDY_ORIGIN_ADDRESS,
    NameMissing = SDP_TIDY_NAME_MISSING,
    NameEmpty = SDP_TIDY_NAME_EMPTY,
    TimeMissing = SDP_TIDY_TIME_MISSING,
    NetCase = SDP_TIDY_NET_CASE,
    AddrFamily = SDP_TIDY_ADDR_FAMILY,
    ValueMissing = SDP_TIDY_VALUE_MISSING,
    RtpmapSpace = SDP_TIDY_RTPMAP_SPACE,
    SilenceParams = SDP_TIDY_SILENCE_PARAMS,
    LineEndCr = SDP_TIDY_LINE_END_CR,
    EmptyLines = SDP_TIDY_EMPTY_LINES,
    LineLevel = SDP_TIDY_LINE_LEVEL,
    LineUnknown = SDP_TIDY_LINE_UNKNOWN,
    OriginUser = SDP_TIDY_ORIGIN_USER,
    OriginSpaces = SDP_TIDY_ORIGIN_SPACES,
    OriginId = SDP_TIDY_ORIGIN_ID,
    AddrTypeWord = SDP_TIDY_ADDR_TYPE_WORD,
    FormatMissing = SDP_TIDY_FORMAT_MISSING,
    AttrColon = SDP_TIDY_ATTR_COLON,
    RtpmapClock = SDP_TIDY_RTPMAP_CLOCK,
    RtpmapNoClock = SDP_TIDY_RTPMAP_NO_CLOCK,
    ConnHost = SDP_TIDY_CONN_HOST,
    ConnAgain = SDP_TIDY_CONN_AGAIN,
    LineAgain = SDP_TIDY_LINE_AGAIN,
    VersionMissing = SDP_TIDY_VERSION_MISSING,
    KeySpace = SDP_TIDY_KEY_SPACE,
    AddrTypeMissing = SDP_TIDY_ADDR_TYPE_MISSING,
    CrInside = SDP_TIDY_CR_INSIDE,
    NulInside = SDP_TIDY_NUL_INSIDE,
    LinesAfterEnd = SDP_TIDY_LINES_AFTER_END,
    LineIndent = SDP_TIDY_LINE_INDENT,
    PortRange = SDP_TIDY_PORT_RANGE,
    PayloadRange = SDP_TIDY_PAYLOAD_RANGE,
    OctetRange = SDP_TIDY_OCTET_RANGE,
    NumberWraps = SDP_TIDY_NUMBER_WRAPS,
    AddressText = SDP_TIDY_ADDRESS_TEXT,
    DirectionTwice = SDP_TIDY_DIRECTION_TWICE,
    TimeAgain = SDP_TIDY_TIME_AGAIN,
    RepeatUnit = SDP_TIDY_REPEAT_UNIT,
    FramerateRounded = SDP_TIDY_FRAMERATE_ROUNDED,
    AttributeLost = SDP_TIDY_ATTRIBUTE_LOST,
    MediaCount = SDP_TIDY_MEDIA_COUNT,
};

constexpr uint64_t bitOf(Rule rule) {
    return SDP_TIDY_BIT(static_cast<uint32_t>(rule));
}

// The rules of a set, one bit for each.
uint64_t rulesOf(uint32_t set);

} // namespace sdpline::tidy

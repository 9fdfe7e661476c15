// a=rtpmap (RFC 4566 section 6), and the static payload profile of an encoding name.
#include "parser/attributes.hpp"
#include "tables/profiles.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kMaxName = 255;
constexpr uint32_t kMaxLookup = 1024;

constexpr uint32_t kDvi4At8k = 4;
constexpr uint32_t kDvi4At16k = 5;
constexpr uint32_t kDvi4At11k = 15;
constexpr uint32_t kDvi4At22k = 16;

// Sets the number of the last profile of that name. For the names that more than one profile has,
// this is not one of the two numbers that the refinements are made for, and so they never apply.
SDPLINE_INLINE void locate(SDPRtpMapAttr &rtpMap, std::string_view name) {
    rtpMap.ulEncodingId = lastProfile(name);
    switch (rtpMap.ulEncodingId) {
    case kDvi4At8k: return refineDvi4(rtpMap);
    case kL16Stereo: return refineL16(rtpMap);
    default: return;
    }
}

// payload SP name. One space is skipped; others belong to the name.
SDPLINE_INLINE bool payloadAndName(Parser auto &p, SDPRtpMapAttr &rtpMap, std::string_view &name) {
    if (!p.number(rtpMap.ulPayloadType, {Check::RtpmapPayload, Check::RtpmapPayloadText}) ||
        !p.see(SDP_TOK_SPACE, Check::RtpmapSpace)) {
        return false;
    }
    p.next(Context::Char);
    if (!p.takeBytesToSlash(name, kMaxName)) {
        return p.refuse(Check::RtpmapNameTooLong);
    }
    return store(p, rtpMap.strEncodingName, name, Check::RtpmapNameStore);
}

// [ "/" channels ] LF
SDPLINE_INLINE bool channels(Parser auto &p, SDPRtpMapAttr &rtpMap) {
    if (p.take(SDP_TOK_SLASH, Context::Alnum)) {
        return p.number(rtpMap.ulEncodingParams, {Check::RtpmapParams, Check::RtpmapParamsText}) &&
               p.endLine(Check::RtpmapParamsEnd);
    }
    if (!p.see(SDP_TOK_LF, Check::RtpmapEnd)) {
        return false;
    }
    rtpMap.ulEncodingParams = 1;
    return p.take(SDP_TOK_LF, Context::Sdp);
}

} // namespace

// ":" payload SP name "/" clock-rate [ "/" channels ] LF
bool parseRtpmap(Parser auto &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    SDPRtpMapAttr &rtpMap = attr.unAttrValue.stRtpMap;
    std::string_view name;
    if (!p.expect(SDP_TOK_COLON, Context::Alnum, Check::RtpmapColon) ||
        !payloadAndName(p, rtpMap, name) ||
        !p.expect(SDP_TOK_SLASH, Context::Alnum, Check::RtpmapSlash) ||
        !p.number(rtpMap.ulClockRate, {Check::RtpmapClock, Check::RtpmapClockText})) {
        return false;
    }
    // A name without a profile is accepted. The input has no NUL, so the whole text is the name.
    if (!seesCopies()) [[likely]] {
        locate(rtpMap, name);
    } else {
        locateProfile(rtpMap);
    }
    return channels(p, rtpMap);
}

// A NUL in the stored name ends it.
[[gnu::noinline]] SDPResult locateProfile(SDPRtpMapAttr &rtpMap) {
    const uint32_t length = rtpMap.strEncodingName.ulLen;
    if (length > kMaxLookup) {
        return fail(Check::ProfileNameTooLong);
    }
    char name[kMaxLookup + 1];
    name[0] = '\0';
    if (memcpy_s(name, kMaxLookup, rtpMap.strEncodingName.pcData, length) != 0) {
        SIPAbnormalSecureFunc("sdpRtpmapAttrLocateStdRtpProfile", __LINE__);
    }
    name[length] = '\0';
    locate(rtpMap, name);
    return 0;
}

void refineDvi4(SDPRtpMapAttr &rtpMap) {
    switch (rtpMap.ulClockRate) {
    case 8000: rtpMap.ulEncodingId = kDvi4At8k; break;
    case 16000: rtpMap.ulEncodingId = kDvi4At16k; break;
    case 11025: rtpMap.ulEncodingId = kDvi4At11k; break;
    case 22050: rtpMap.ulEncodingId = kDvi4At22k; break;
    default: break;
    }
}

void refineL16(SDPRtpMapAttr &rtpMap) {
    if (rtpMap.ulEncodingParams == 1) {
        rtpMap.ulEncodingId = kL16Mono;
    } else if (rtpMap.ulEncodingParams == 2) {
        rtpMap.ulEncodingId = kL16Stereo;
    }
}

template bool parseRtpmap(BodyParser &, SDPAttr &, uint32_t);
template bool parseRtpmap(StateParser &, SDPAttr &, uint32_t);

} // namespace sdpline

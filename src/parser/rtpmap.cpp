// a=rtpmap (RFC 4566 section 6), and the static profile that an encoding name stands for.
#include "parser/parser.hpp"
#include "tables/profiles.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kMaxName = 255;
constexpr uint32_t kMaxLookup = 1024;

constexpr uint32_t kDvi4At8k = 4;
constexpr uint32_t kDvi4At16k = 5;
constexpr uint32_t kDvi4At11k = 15;
constexpr uint32_t kDvi4At22k = 16;
constexpr uint32_t kL16Stereo = 9;
constexpr uint32_t kL16Mono = 10;

// The last profile of the name wins, so that the refinements never apply to the profiles of the
// table as it stands.
SDPLINE_INLINE SDPResult locateProfile(SDPRtpMapAttr &rtpMap, std::string_view name) {
    rtpMap.ulEncodingId = lastProfile(name);
    switch (rtpMap.ulEncodingId) {
    case kDvi4At8k: return sdpRtpmapAttrPayloadDvi4For8K(&rtpMap);
    case kL16Stereo: return sdpRtpmapAttrPayloadL16For2C(&rtpMap);
    default: return 0;
    }
}

// payload SP name, entered on the payload type. One blank is skipped; others belong to the name.
SDPLINE_INLINE SDPResult payloadAndName(Lexer &lexer, SDPRtpMapAttr &rtpMap,
                                        std::string_view &name) {
    if (const SDPResult result = takeNumber(lexer, rtpMap.ulPayloadType, SDP_LEXCTX_ALNUM,
                                            {Check::RtpmapPayload, Check::RtpmapPayloadText})) {
        return result;
    }
    if (!lexer.is(SDP_TOK_SPACE)) {
        return fail(Check::RtpmapBlank);
    }
    lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_CHAR);
    if (!lexer.takeBytesToSlash(name, kMaxName)) {
        return fail(Check::RtpmapNameTooLong);
    }
    return storeText(rtpMap.strEncodingName, name) == 0 ? 0 : fail(Check::RtpmapNameStore);
}

// [ "/" channels ] LF
SDPLINE_INLINE SDPResult channels(Lexer &lexer, SDPRtpMapAttr &rtpMap) {
    if (lexer.take(SDP_TOK_SLASH, SDP_LEXCTX_ALNUM)) {
        if (const SDPResult result = takeNumber(lexer, rtpMap.ulEncodingParams, SDP_LEXCTX_ALNUM,
                                                {Check::RtpmapParams, Check::RtpmapParamsText})) {
            return result;
        }
        return takeLineEnd(lexer, Check::RtpmapParamsEnd);
    }
    if (!lexer.is(SDP_TOK_LF)) {
        return fail(Check::RtpmapEnd);
    }
    rtpMap.ulEncodingParams = 1;
    return takeLineEnd(lexer, Check::RtpmapEnd);
}

// ":" payload SP name "/" clock-rate [ "/" channels ] LF
SDPLINE_INLINE SDPResult rtpmap(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    SDPRtpMapAttr &rtpMap = attr.unAttrValue.stRtpMap;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_ALNUM)) {
        return fail(Check::RtpmapColon);
    }
    std::string_view name;
    if (const SDPResult result = payloadAndName(lexer, rtpMap, name)) {
        return result;
    }
    if (!lexer.take(SDP_TOK_SLASH, SDP_LEXCTX_ALNUM)) {
        return fail(Check::RtpmapSlash);
    }
    if (const SDPResult result = takeNumber(lexer, rtpMap.ulClockRate, SDP_LEXCTX_ALNUM,
                                            {Check::RtpmapClock, Check::RtpmapClockText})) {
        return result;
    }
    // A name that is no profile is fine. The input holds no NUL: the text is the name as it is.
    if (!seesCopies()) [[likely]] {
        locateProfile(rtpMap, name);
    } else {
        sdpRtpmapAttrLocateStdRtpProfile(&rtpMap);
    }
    return channels(lexer, rtpMap);
}

} // namespace

SDPResult parseRtpmap(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<rtpmap>(lexer, attr, type);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpRtpmapAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseRtpmap(lexer, *pstAttr, enType); });
}

// The name ends at a NUL, where it holds one.
[[gnu::noinline]] SDPResult sdpRtpmapAttrLocateStdRtpProfile(SDPRtpMapAttr *pstRtpMap) {
    const uint32_t length = pstRtpMap->strEncodingName.ulLen;
    if (length > kMaxLookup) {
        return fail(Check::ProfileNameTooLong);
    }
    char name[kMaxLookup + 1];
    name[0] = '\0';
    if (memcpy_s(name, kMaxLookup, pstRtpMap->strEncodingName.pcData, length) != 0) {
        SIPAbnormalSecureFunc("sdpRtpmapAttrLocateStdRtpProfile", __LINE__);
    }
    name[length] = '\0';
    return locateProfile(*pstRtpMap, name);
}

SDPResult sdpRtpmapAttrPayloadDvi4For8K(SDPRtpMapAttr *pstRtpMap) {
    switch (pstRtpMap->ulClockRate) {
    case 8000: pstRtpMap->ulEncodingId = kDvi4At8k; break;
    case 16000: pstRtpMap->ulEncodingId = kDvi4At16k; break;
    case 11025: pstRtpMap->ulEncodingId = kDvi4At11k; break;
    case 22050: pstRtpMap->ulEncodingId = kDvi4At22k; break;
    default: break;
    }
    return 0;
}

SDPResult sdpRtpmapAttrPayloadL16For2C(SDPRtpMapAttr *pstRtpMap) {
    if (pstRtpMap->ulEncodingParams == 1) {
        pstRtpMap->ulEncodingId = kL16Mono;
    } else if (pstRtpMap->ulEncodingParams == 2) {
        pstRtpMap->ulEncodingId = kL16Stereo;
    }
    return 0;
}

} // extern "C"

// The o= line. The numbers are stored as text; the address may be any word.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

// Stores the text of a token of the kind, and advances under `context`.
SDPLINE_INLINE bool storeToken(Parser auto &p, SipString &value, uint32_t kind, uint32_t context,
                               WordChecks checks, Check noMemory,
                               uint32_t line = __builtin_LINE()) {
    std::string_view text;
    return p.read(text, kind, checks, line) && store(p, value, text, noMemory, line) &&
           p.nextAfterRun(context);
}

// user SP session-id SP session-version
SDPLINE_INLINE bool originNames(Parser auto &p, SDPOrigin &origin) {
    return storeToken(p, origin.strUserName, SDP_TOK_STRING, Context::String,
                      {Check::OriginUser, Check::OriginUserText}, Check::OriginUserStore) &&
           p.expectDigits(SDP_TOK_SPACE, Check::OriginUserSpace) &&
           storeToken(p, origin.strSessionId, SDP_TOK_DIGIT, Context::Alnum,
                      {Check::OriginId, Check::OriginIdText}, Check::OriginIdStore) &&
           p.expectDigits(SDP_TOK_SPACE, Check::OriginIdSpace) &&
           storeToken(p, origin.strSessionVersion, SDP_TOK_DIGIT, Context::Alnum,
                      {Check::OriginVersion, Check::OriginVersionText}, Check::OriginVersionStore);
}

// SP "IN" SP ( "IP4" / "IP6" ) SP. Fast path: " IN IP4 " is one comparison.
SDPLINE_INLINE bool originTypes(Parser auto &p, SDPOrigin &origin) {
    if (p.is(SDP_TOK_SPACE) && p.jump("IN IP4 ")) {
        origin.stNetType = {SDP_NETTYPE_IN, nullptr};
        origin.stAddrType = {SDP_ADDRTYPE_IP4, nullptr};
        return p.next(Context::String);
    }
    if (!p.expect(SDP_TOK_SPACE, Context::Sdp, Check::OriginVersionSpace) ||
        !p.see(SDP_TOK_IN, Check::OriginNetType)) {
        return false;
    }
    origin.stNetType.enNetType = SDP_NETTYPE_IN;
    origin.stNetType.pstrOtherNetType = nullptr;
    p.next(Context::Sdp);
    if (!p.expect(SDP_TOK_SPACE, Context::Sdp, Check::OriginNetTypeSpace)) {
        return false;
    }
    if (!p.is(SDP_TOK_IP4) && !p.is(SDP_TOK_IP6)) {
        return p.refuse(Check::OriginAddrType);
    }
    origin.stAddrType.enAddrType = p.is(SDP_TOK_IP4) ? SDP_ADDRTYPE_IP4 : SDP_ADDRTYPE_IP6;
    origin.stAddrType.pstrOtherAddrType = nullptr;
    p.next(Context::Sdp);
    return p.expect(SDP_TOK_SPACE, Context::String, Check::OriginAddrTypeSpace);
}

} // namespace

// o= user SP session-id SP session-version SP "IN" SP ( "IP4" / "IP6" ) SP address LF
bool parseOrigin(Parser auto &parser, SDPOrigin &origin) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        return p.expect(SDP_TOK_ORIGIN, Context::String, Check::OriginLine) &&
               originNames(p, origin) && originTypes(p, origin) &&
               storeToken(p, origin.strAddress, SDP_TOK_STRING, Context::String,
                          {Check::OriginAddress, Check::OriginAddressText},
                          Check::OriginAddressStore) &&
               p.endLine(Check::OriginEnd);
    });
}

template bool parseOrigin(BodyParser &, SDPOrigin &);
template bool parseOrigin(StateParser &, SDPOrigin &);

} // namespace sdpline

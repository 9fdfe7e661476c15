// The m= line: media type, port, transport protocol, and the formats that the protocol takes.
#include "parser/media.hpp"

namespace sdpline {

SDPResult classifyMedia(SDPMediaField &field, std::string_view word) {
    field.stMedia.pstrOtherMedia = nullptr;
    if (const KeywordRow *const known = findWord<kMediaWords>(word)) {
        field.stMedia.enMediaType = known->code;
        return 0;
    }
    field.stMedia.enMediaType = SDP_MEDIA_OTHER;
    auto *const text = allocate<SipString>("sdpMediaType");
    field.stMedia.pstrOtherMedia = text;
    if (text == nullptr) {
        return fail(Check::MediaTypeAlloc);
    }
    return storeText(*text, word) == 0 ? 0 : fail(Check::MediaTypeStore);
}

// *( payload [ SP ] ), up to the line end
bool parsePayloadNumbers(Parser auto &p, uint32_t &count, uint32_t *numbers, uint32_t limit) {
    while (count < limit) {
        if (p.is(SDP_TOK_LF)) {
            return true;
        }
        if (!p.number(numbers[count], {Check::Payload, Check::PayloadText})) {
            return false;
        }
        ++count;
        if (p.is(SDP_TOK_LF)) {
            return true;
        }
        if (!p.expect(SDP_TOK_SPACE, Context::Alnum, Check::PayloadSpace)) {
            return false;
        }
    }
    return p.refuse(Check::PayloadLimit);
}

namespace {

// The numbers and the line end, after the first space. An empty list makes a request for zero bytes
// too, but stores no array.
SDPLINE_INLINE bool payloadList(Parser auto &p, SDPMediaFmt &fmt) {
    uint32_t numbers[SDP_MAX_PAYLOADS];
    uint32_t count = 0;
    if (!parsePayloadNumbers(p, count, numbers, SDP_MAX_PAYLOADS)) {
        return false;
    }
    fmt.enFmtType = SDP_FMT_RTP_PAYLOADS;
    SDPRtpPayLoads &payLoads = fmt.unMediaFmt.stRtpPayLoads;
    payLoads.ulNoOfPayLoads = count;
    const uint32_t size = count * static_cast<uint32_t>(sizeof(uint32_t));
    auto *const stored = static_cast<uint32_t *>(allocateBytes(size));
    if (stored == nullptr) {
        return p.refuse(Check::PayloadsAlloc);
    }
    payLoads.pulPayLoads = count != 0 ? stored : nullptr;
    copyBytes(stored, numbers, size);
    return p.endLine(Check::PayloadsEnd);
}

// Stores the format's code; the text of a format without a code is stored too.
SDPResult classifyFormat(SDPMediaField &field, std::string_view word) {
    SDPMediaFmt &fmt = field.stMediaFmt;
    const KeywordRow *const known = findWord<kFmtWords>(word);
    if (known == nullptr) {
        fmt.enFmtType = SDP_FMT_OTHER;
        const SDPResult result = storeText(fmt.unMediaFmt.strOtherFmts, word);
        return result == 0 ? 0 : fail(Check::FormatStore);
    }
    if (known->code == SDP_FMT_T120 && field.stProto.enProto != SDP_PROTO_TCP) {
        return failWord(Check::FormatT120, word.data());
    }
    fmt = {};
    fmt.enFmtType = known->code;
    return 0;
}

} // namespace

// [ SP payloads ] LF. Payloads may be absent only where the port is 0.
bool parsePayloads(Parser auto &p, SDPMediaField &field, uint32_t proto) {
    field.stProto.enProto = proto;
    SDPMediaFmt &fmt = field.stMediaFmt;
    if (p.take(SDP_TOK_SPACE, Context::Alnum)) {
        return payloadList(p, fmt);
    }
    if (field.ulPort != 0) {
        return p.refuse(Check::PayloadsMissing);
    }
    fmt.enFmtType = SDP_FMT_RTP_PAYLOADS;
    fmt.unMediaFmt.stRtpPayLoads = {};
    return p.endLine(Check::NoPayloadsEnd);
}

// SP format LF: exactly one format; "t120" is accepted over TCP only.
bool parseOtherFormat(Parser auto &p, SDPMediaField &field, uint32_t proto) {
    field.stProto.enProto = proto;
    std::string_view word;
    return p.expect(SDP_TOK_SPACE, Context::Token, Check::FormatSpace) &&
           p.read(word, SDP_TOK_TOKEN, {Check::FormatToken, Check::FormatText}) &&
           p.nextAfterRun(Context::Token) && p.accept(classifyFormat(field, word)) &&
           p.endLine(Check::FormatEnd);
}

namespace {

// Whether payload numbers follow the protocol; one format follows any other protocol.
constexpr bool takesPayloads(uint32_t proto) {
    return proto == SDP_PROTO_RTP_AVP || proto == SDP_PROTO_RTP_SAVP || proto == SDP_PROTO_RTP_AVPF;
}

// The code of a protocol word. Where the support of RTP/AVPF is off, that word has no code.
uint32_t protoOf(std::string_view word) {
    const KeywordRow *const known = findWord<kProtoWords>(word);
    const bool isOther =
        known == nullptr || (known->code == SDP_PROTO_RTP_AVPF && g_bSupMedProtoRtpAvpf != 1);
    return isOther ? uint32_t{SDP_PROTO_OTHER} : known->code;
}

// Stores the word of a protocol without a code. Without memory for its bytes the string has its
// length and a null pointer, and the parse goes on.
bool keepProto(Parser auto &p, SDPMediaField &field, std::string_view word) {
    auto *const text = allocate<SipString>("sdpMediaFmt");
    field.stProto.pstrOtherProto = text;
    if (text == nullptr) {
        return p.refuse(Check::MediaProtoAlloc);
    }
    storeText(*text, word);
    return true;
}

// SP port [ "/" number-of-ports ], after the media type
SDPLINE_INLINE bool ports(Parser auto &p, SDPMediaField &field) {
    if (!p.expect(SDP_TOK_SPACE, Context::Alnum, Check::MediaWordSpace) ||
        !p.number(field.ulPort, {Check::MediaPort, Check::MediaPortText})) {
        return false;
    }
    field.ulNoOfPorts = 1;
    return !p.take(SDP_TOK_SLASH, Context::Alnum) ||
           p.number(field.ulNoOfPorts, {Check::MediaPortCount, Check::MediaPortCountText});
}

} // namespace

// The protocol's code, then its formats
bool parseFormats(Parser auto &p, SDPMediaField &field, std::string_view proto) {
    const uint32_t code = protoOf(proto);
    const bool isOther = code == SDP_PROTO_OTHER;
    if (isOther && !keepProto(p, field, proto)) {
        return false;
    }
    return takesPayloads(code) || (isOther && settings().bRtpFamily == 1 && endsInRtpProfile(proto))
               ? parsePayloads(p, field, code)
               : parseOtherFormat(p, field, code);
}

namespace {

// m= media, up to the space after it. Fast path: "audio " and "video " are one comparison each.
SDPLINE_INLINE bool mediaType(Parser auto &p, SDPMediaField &field) {
    if (p.is(SDP_TOK_MEDIA)) {
        const uint32_t usual = p.jumpWord("audio ")   ? SDP_MEDIA_AUDIO
                               : p.jumpWord("video ") ? SDP_MEDIA_VIDEO
                                                      : SDP_MEDIA_OTHER;
        if (usual != SDP_MEDIA_OTHER) {
            field.stMedia = {usual, nullptr};
            return p.under(Context::Alnum);
        }
    }
    std::string_view word;
    return p.expect(SDP_TOK_MEDIA, Context::Token, Check::MediaLine) &&
           p.read(word, SDP_TOK_TOKEN, {Check::MediaWord, Check::MediaWordText}) &&
           p.accept(classifyMedia(field, word)) && p.next(Context::Alnum);
}

// SP proto formats LF. Fast path: "RTP/AVP " is one comparison.
SDPLINE_INLINE bool protoAndFormats(Parser auto &p, SDPMediaField &field) {
    if (p.is(SDP_TOK_SPACE) && p.jumpWord("RTP/AVP ")) {
        p.under(Context::Token);
        return parsePayloads(p, field, SDP_PROTO_RTP_AVP);
    }
    std::string_view word;
    return p.see(SDP_TOK_SPACE, Check::MediaPortSpace) && p.next(Context::Token) &&
           p.read(word, SDP_TOK_TOKEN, {Check::MediaProto, Check::MediaProtoText}) &&
           p.nextAfterRun(Context::Token) && parseFormats(p, field, word);
}

} // namespace

// m= media SP port [ "/" number-of-ports ] SP proto formats LF
bool parseMediaField(Parser auto &parser, SDPMediaField &field) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        return mediaType(p, field) && ports(p, field) && protoAndFormats(p, field);
    });
}

template bool parseMediaField(BodyParser &, SDPMediaField &);
template bool parseMediaField(StateParser &, SDPMediaField &);
template bool parseFormats(StateParser &, SDPMediaField &, std::string_view);
template bool parsePayloads(StateParser &, SDPMediaField &, uint32_t);
template bool parsePayloadNumbers(StateParser &, uint32_t &, uint32_t *, uint32_t);
template bool parseOtherFormat(StateParser &, SDPMediaField &, uint32_t);

} // namespace sdpline

// The m= line: media type, port, transport protocol, and the formats that go with the protocol.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

SDPResult classifyMedia(SDPMediaField &field, std::string_view word) {
    field.stMedia.pstrOtherMedia = nullptr;
    if (const Word *const known = findByText(kMediaWords, word)) {
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

// Whether payload numbers follow the protocol; one format of another kind follows the others.
constexpr bool takesPayloads(uint32_t proto) {
    return proto == SDP_PROTO_RTP_AVP || proto == SDP_PROTO_RTP_SAVP || proto == SDP_PROTO_RTP_AVPF;
}

// port [ "/" number-of-ports ], behind the media type
SDPLINE_INLINE SDPResult takePort(Lexer &lexer, SDPMediaField &field) {
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::MediaWordBlank);
    }
    if (const SDPResult result = takeNumber(lexer, field.ulPort, SDP_LEXCTX_ALNUM,
                                            {Check::MediaPort, Check::MediaPortText})) {
        return result;
    }
    field.ulNoOfPorts = 1;
    if (!lexer.take(SDP_TOK_SLASH, SDP_LEXCTX_ALNUM)) {
        return 0;
    }
    return takeNumber(lexer, field.ulNoOfPorts, SDP_LEXCTX_ALNUM,
                      {Check::MediaPortCount, Check::MediaPortCountText});
}

// *( payload [ SP ] ), up to the line end; one blank may stand before it
SDPLINE_INLINE SDPResult takePayloads(Lexer &lexer, uint32_t &count, uint32_t *numbers,
                                      uint32_t limit) {
    while (count < limit) {
        if (lexer.is(SDP_TOK_LF)) {
            return 0;
        }
        if (const SDPResult result = takeNumber(lexer, numbers[count], SDP_LEXCTX_ALNUM,
                                                {Check::Payload, Check::PayloadText})) {
            return result;
        }
        ++count;
        if (lexer.is(SDP_TOK_LF)) {
            return 0;
        }
        if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
            return fail(Check::PayloadBlank);
        }
    }
    return fail(Check::PayloadLimit);
}

// The payloads and the line end, behind the first blank. An empty list asks for zero bytes too, and
// keeps no array.
SDPLINE_INLINE SDPResult payloads(Lexer &lexer, SDPMediaFmt &fmt) {
    uint32_t numbers[SDP_MAX_PAYLOADS];
    uint32_t count = 0;
    if (const SDPResult result = takePayloads(lexer, count, numbers, SDP_MAX_PAYLOADS)) {
        return result;
    }
    fmt.enFmtType = SDP_FMT_RTP_PAYLOADS;
    SDPRtpPayLoads &payLoads = fmt.unMediaFmt.stRtpPayLoads;
    payLoads.ulNoOfPayLoads = count;
    const uint32_t size = count * static_cast<uint32_t>(sizeof(uint32_t));
    auto *const stored = static_cast<uint32_t *>(allocateBytes(size));
    if (stored == nullptr) {
        return fail(Check::PayloadsAlloc);
    }
    payLoads.pulPayLoads = count != 0 ? stored : nullptr;
    copyBytes(stored, numbers, size);
    return takeLineEnd(lexer, Check::PayloadsEnd);
}

// [ SP payloads ] LF: only a media with port 0 may have no payloads
SDPLINE_INLINE SDPResult rtpFormats(Lexer &lexer, SDPMediaField &field, uint32_t proto) {
    field.stProto.enProto = proto;
    SDPMediaFmt &fmt = field.stMediaFmt;
    if (lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return payloads(lexer, fmt);
    }
    if (field.ulPort != 0) {
        return fail(Check::PayloadsMissing);
    }
    fmt.enFmtType = SDP_FMT_RTP_PAYLOADS;
    fmt.unMediaFmt.stRtpPayLoads = {};
    return takeLineEnd(lexer, Check::NoPayloadsEnd);
}

// The format's code, and its text where the code is that of other formats
SDPResult classifyFormat(SDPMediaField &field, std::string_view word) {
    SDPMediaFmt &fmt = field.stMediaFmt;
    const Word *const known = findByText(kFmtWords, word);
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

// SP format LF: one format, and t120 over TCP only
SDPLINE_INLINE SDPResult otherFormat(Lexer &lexer, SDPMediaField &field, uint32_t proto) {
    field.stProto.enProto = proto;
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_TOKEN)) {
        return fail(Check::FormatBlank);
    }
    std::string_view word;
    if (const SDPResult result = takeWord(lexer, word, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN,
                                          {Check::FormatToken, Check::FormatText})) {
        return result;
    }
    if (const SDPResult result = classifyFormat(field, word)) {
        return result;
    }
    return takeLineEnd(lexer, Check::FormatEnd);
}

// A word that cannot be stored for lack of memory leaves a string without bytes, and goes on.
SDPResult keepProto(SDPMediaField &field, std::string_view word) {
    auto *const text = allocate<SipString>("sdpMediaFmt");
    field.stProto.pstrOtherProto = text;
    if (text == nullptr) {
        return fail(Check::MediaProtoAlloc);
    }
    storeText(*text, word);
    return 0;
}

// The protocol's code, then its formats
SDPLINE_INLINE SDPResult protoAndFormats(Lexer &lexer, SDPMediaField &field,
                                         std::string_view word) {
    const Word *const known = findByText(kProtoWords, word);
    uint32_t code = known != nullptr ? known->code : uint32_t{SDP_PROTO_OTHER};
    if (code == SDP_PROTO_RTP_AVPF && g_bSupMedProtoRtpAvpf != 1) {
        code = SDP_PROTO_OTHER;
    }
    bool rtp = takesPayloads(code);
    if (code == SDP_PROTO_OTHER) {
        if (const SDPResult result = keepProto(field, word)) {
            return result;
        }
        rtp = settings().bRtpFamily == 1 && endsInRtpProfile(word);
    }
    return rtp ? rtpFormats(lexer, field, code) : otherFormat(lexer, field, code);
}

// m= media SP port [ "/" number-of-ports ] SP proto formats LF
SDPLINE_INLINE SDPResult mediaField(Lexer &lexer, SDPMediaField &field) {
    if (!lexer.take(SDP_TOK_MEDIA, SDP_LEXCTX_TOKEN)) {
        return fail(Check::MediaLine);
    }
    std::string_view word;
    if (const SDPResult result =
            readWord(lexer, word, SDP_TOK_TOKEN, {Check::MediaWord, Check::MediaWordText})) {
        return result;
    }
    if (const SDPResult result = classifyMedia(field, word)) {
        return result;
    }
    lexer.take(SDP_TOK_TOKEN, SDP_LEXCTX_ALNUM);
    if (const SDPResult result = takePort(lexer, field)) {
        return result;
    }
    if (!lexer.is(SDP_TOK_SPACE)) {
        return fail(Check::MediaPortBlank);
    }
    lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_TOKEN);
    if (const SDPResult result = takeWord(lexer, word, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN,
                                          {Check::MediaProto, Check::MediaProtoText})) {
        return result;
    }
    return protoAndFormats(lexer, field, word);
}

} // namespace

SDPResult parseMediaField(Lexer &lexer, SDPMediaField &field) {
    return inRegisters<mediaField>(lexer, field);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpMediaField(SDPMediaField *pstField) {
    return onState([=](Lexer &lexer) { return parseMediaField(lexer, *pstField); });
}

SDPResult sdpMediaType(SDPMediaField *pstField, const char *pcWord) {
    return classifyMedia(*pstField, pcWord);
}

SDPResult sdpMediaFmt(SDPMediaField *pstField, const char *pcProto) {
    return onState([=](Lexer &lexer) { return protoAndFormats(lexer, *pstField, pcProto); });
}

SDPResult sdpRtpAvpMediaFmt(SDPMediaField *pstField, uint32_t enProto) {
    return onState([=](Lexer &lexer) { return rtpFormats(lexer, *pstField, enProto); });
}

SDPResult sdpRtpAvpMediaFmtGetNoOfPayloads(uint32_t *pulCount, uint32_t *pulPayLoads,
                                           uint32_t ulLimit) {
    return onState(
        [=](Lexer &lexer) { return takePayloads(lexer, *pulCount, pulPayLoads, ulLimit); });
}

SDPResult sdpOtherMediaFmt(SDPMediaField *pstField, uint32_t enProto) {
    return onState([=](Lexer &lexer) { return otherFormat(lexer, *pstField, enProto); });
}

} // extern "C"

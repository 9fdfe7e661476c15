// How an m= line is written.
#include "encoder/encoder.hpp"

namespace sdpline {

// media SP
SDPResult writeMediaType(Output &out, const SDPMedia &media) {
    Appender parts(out);
    if (media.enMediaType == SDP_MEDIA_OTHER) {
        parts.text(media.pstrOtherMedia).character(' ');
    } else if (const KeywordRow *const word = findByCode(kMediaWritten, media.enMediaType)) {
        parts.word(*word);
    } else {
        return fail(out, Check::MediaTypeValue, media.enMediaType);
    }
    return parts.result() == 0 ? 0 : fail(out, Check::MediaTypeAppend);
}

// port [ "/" count ] SP
static void writePort(Output &out, const SDPMediaField &field) {
    out.number(field.ulPort);
    if (field.ulNoOfPorts > 1) {
        out.character('/');
        out.number(field.ulNoOfPorts);
    }
    out.character(' ');
}

// proto
SDPResult writeProto(Output &out, const SDPMediaProto &proto) {
    Appender parts(out);
    if (proto.enProto == SDP_PROTO_OTHER) {
        parts.text(proto.pstrOtherProto);
    } else if (const KeywordRow *const word = findByCode(kProtoWords, proto.enProto)) {
        parts.word(*word);
    } else {
        return fail(out, Check::MediaProtoValue, proto.enProto);
    }
    return parts.result() == 0 ? 0 : fail(out, Check::MediaProtoAppend);
}

// *( SP payload-type )
static SDPResult writePayloads(Output &out, const SDPRtpPayLoads &payloads) {
    if (payloads.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
        return fail(out, Check::MediaPayloadCount, payloads.ulNoOfPayLoads);
    }
    const uint32_t *const numbers = payloads.pulPayLoads;
    for (uint32_t i = 0; numbers != nullptr && i < payloads.ulNoOfPayLoads; ++i) {
        out.character(' ');
        out.number(numbers[i]);
    }
    return 0;
}

// *( SP fmt ); refused appends are no failure
SDPResult writeFormats(Output &out, const SDPMediaFmt &format) {
    if (format.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        return writePayloads(out, format.unMediaFmt.stRtpPayLoads);
    }
    if (const KeywordRow *const word = findByCode(kFmtWords, format.enFmtType)) {
        out.character(' ');
        out.word(word->text);
    } else if (format.enFmtType == SDP_FMT_OTHER) {
        out.character(' ');
        out.text(&format.unMediaFmt.strOtherFmts);
    }
    return 0;
}

// m= media SP port [ "/" count ] SP proto *( SP fmt ) CRLF
SDPResult writeMediaField(Output &out, const uint32_t *flag, const SDPMediaField &field) {
    appendPrefix(out, flag, 'm');
    if (writeMediaType(out, field.stMedia) != 0) {
        return fail(out, Check::MediaTypeFailed, field.stMedia.enMediaType);
    }
    writePort(out, field);
    if (writeProto(out, field.stProto) != 0) {
        return fail(out, Check::MediaProtoFailed, field.stProto.enProto);
    }
    const SDPMediaFmt &format = field.stMediaFmt;
    if (format.enFmtType < SDP_FMT_RTP_PAYLOADS || format.enFmtType > SDP_FMT_OTHER) {
        return fail(out, Check::MediaFmtTypeValue);
    }
    if (writeFormats(out, format) != 0) {
        return fail(out, Check::MediaPayloadsFailed,
                    format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads);
    }
    out.lineEnd();
    return 0;
}

} // namespace sdpline

// Writing an m= line.
#include "encoder/writers.hpp"

namespace sdpline {

// media SP
SDPResult writeMediaType(auto &out, const SDPMedia &media) {
    const uint32_t type = media.enMediaType;
    if (type < SDP_MEDIA_AUDIO || type > SDP_MEDIA_OTHER) {
        return fail(out, Check::MediaTypeValue, type);
    }
    const SDPResult result = type == SDP_MEDIA_OTHER
                                 ? Appender(out).text(media.pstrOtherMedia).character(' ').result()
                                 : appendKnownWord<kMediaWritten>(out, type);
    return result == 0 ? 0 : fail(out, Check::MediaTypeAppend);
}

// port [ "/" count ] SP
static void writePort(auto &out, const SDPMediaField &field) {
    out.number(field.ulPort);
    if (field.ulNoOfPorts > 1) {
        out.character('/');
        out.number(field.ulNoOfPorts);
    }
    out.character(' ');
}

// proto
SDPResult writeProto(auto &out, const SDPMediaProto &proto) {
    if (proto.enProto < SDP_PROTO_RTP_AVP || proto.enProto > SDP_PROTO_OTHER) {
        return fail(out, Check::MediaProtoValue, proto.enProto);
    }
    const SDPResult result = proto.enProto == SDP_PROTO_OTHER
                                 ? out.text(proto.pstrOtherProto)
                                 : appendKnownWord<kProtoWords>(out, proto.enProto);
    return result == 0 ? 0 : fail(out, Check::MediaProtoAppend);
}

// *( SP payload-type )
static SDPResult writePayloads(auto &out, const SDPRtpPayLoads &payloads) {
    if (payloads.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
        return fail(out, Check::MediaPayloadCount, payloads.ulNoOfPayLoads);
    }
    constexpr uint64_t kPayloadSize = 1 + sipcore::kMostDigits;
    if (const SDPResult result = out.reserve(payloads.ulNoOfPayLoads * kPayloadSize)) {
        return result;
    }
    const uint32_t *const numbers = payloads.pulPayLoads;
    for (uint32_t i = 0; numbers != nullptr && i < payloads.ulNoOfPayLoads; ++i) {
        out.character(' ');
        out.number(numbers[i]);
    }
    return 0;
}

// *( SP fmt ). Refused appends are ignored.
SDPResult writeFormats(auto &out, const SDPMediaFmt &format) {
    if (format.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        return writePayloads(out, format.unMediaFmt.stRtpPayLoads);
    }
    if (format.enFmtType < SDP_FMT_RTP_PAYLOADS || format.enFmtType > SDP_FMT_OTHER) {
        return 0;
    }
    out.character(' ');
    if (format.enFmtType == SDP_FMT_OTHER) {
        out.text(&format.unMediaFmt.strOtherFmts);
    } else {
        appendKnownWord<kFmtWords>(out, format.enFmtType);
    }
    return 0;
}

// m= media SP port [ "/" count ] SP proto *( SP fmt ) CRLF
SDPResult writeMediaField(auto &out, const uint32_t *flag, const SDPMediaField &field) {
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

SDPLINE_LINE_WRITER(writeMediaField, const uint32_t *, const SDPMediaField &);
SDPLINE_LINE_WRITER(writeMediaType, const SDPMedia &);
SDPLINE_LINE_WRITER(writeProto, const SDPMediaProto &);
SDPLINE_LINE_WRITER(writeFormats, const SDPMediaFmt &);

} // namespace sdpline

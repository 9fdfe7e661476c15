// How the media descriptions are written: m= and the lines that belong to it.
#pragma once

#include "encoder/attributes.hpp"
#include "encoder/connection.hpp"

namespace sdpline {

// media SP
SDPLINE_INLINE SDPResult writeMediaType(Output &out, const SDPMedia &media) {
    Appender parts(out);
    if (media.enMediaType == SDP_MEDIA_OTHER) {
        parts.text(media.pstrOtherMedia).character(' ');
    } else if (const Word *const word = findByCode(kMediaWritten, media.enMediaType)) {
        parts.word(*word);
    } else {
        return fail(out, Check::MediaTypeValue, media.enMediaType);
    }
    return parts.result() == 0 ? 0 : fail(out, Check::MediaTypeAppend);
}

// port [ "/" count ] SP
SDPLINE_INLINE void writePort(Output &out, const SDPMediaField &field) {
    out.number(field.ulPort);
    if (field.ulNoOfPorts > 1) {
        out.character('/');
        out.number(field.ulNoOfPorts);
    }
    out.character(' ');
}

// proto
SDPLINE_INLINE SDPResult writeProto(Output &out, const SDPMediaProto &proto) {
    Appender parts(out);
    if (proto.enProto == SDP_PROTO_OTHER) {
        parts.text(proto.pstrOtherProto);
    } else if (const Word *const word = findByCode(kProtoWords, proto.enProto)) {
        parts.word(*word);
    } else {
        return fail(out, Check::MediaProtoValue, proto.enProto);
    }
    return parts.result() == 0 ? 0 : fail(out, Check::MediaProtoAppend);
}

// *( SP payload-type )
SDPLINE_INLINE SDPResult writePayloads(Output &out, const SDPRtpPayLoads &payloads) {
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
SDPLINE_INLINE SDPResult writeFormats(Output &out, const SDPMediaFmt &format) {
    if (format.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        return writePayloads(out, format.unMediaFmt.stRtpPayLoads);
    }
    if (const Word *const word = findByCode(kFmtWords, format.enFmtType)) {
        out.character(' ');
        out.word(word->text);
    } else if (format.enFmtType == SDP_FMT_OTHER) {
        out.character(' ');
        out.text(&format.unMediaFmt.strOtherFmts);
    }
    return 0;
}

// m= media SP port [ "/" count ] SP proto *( SP fmt ) CRLF
SDPLINE_INLINE SDPResult writeMediaField(Output &out, const uint32_t *flag,
                                         const SDPMediaField &field) {
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

// i= c= b= k= a=, those that the description has
SDPLINE_INLINE SDPResult writeMediaLines(Output &out, const uint32_t *flag,
                                         const SDPMediaDesc &desc) {
    Appender lines(out);
    if (const SipString *const info = desc.pstrMediaInfo) {
        lines.then([&] { return writeTextLine(out, flag, 'i', info); });
    }
    if (const SDPConnection *const connection = desc.pstConnection) {
        lines.then([&] { return writeConnection(out, flag, *connection); });
    }
    if (const SDPStringList *const list = desc.pstBandwidthList) {
        lines.then(
            [&] { return writeTextLines(out, flag, 'b', list->ulNoOfStrings, list->ppstStrings); });
    }
    if (const SDPKey *const key = desc.pstKey) {
        lines.then([&] { return writeTextLine(out, flag, 'k', &key->strKey); });
    }
    if (const SDPAttrList *const list = desc.pstAttrList) {
        lines.then([&] { return apart<writeAttributes>(out, flag, list); });
    }
    return lines.result();
}

// *( m= [ i= ] [ c= ] *( b= ) [ k= ] *( a= ) ), where an m= line that fails does not stop the rest
SDPLINE_INLINE SDPResult writeMediaSet(Output &out, const uint32_t *flag, const SDPMediaSet &set) {
    for (uint32_t i = 0; i < set.ulNoOfMediaDescs; ++i) {
        const SDPMediaDesc &desc = *set.ppstMediaDescs[i];
        writeMediaField(out, flag, desc.stMediaField);
        if (const SDPResult result = writeMediaLines(out, flag, desc)) {
            return result;
        }
    }
    return 0;
}

} // namespace sdpline

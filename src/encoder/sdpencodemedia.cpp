// The media descriptions: m= and the lines that belong to it.
#include "encoder/sdpencode.hpp"

namespace sdpline {

namespace {

// i= c= b= k= a=, those that the description has
SDPResult writeMediaLines(uint32_t *flag, const SDPMediaDesc &desc, SipStringBuffer *buffer) {
    Appender lines(buffer);
    if (SipString *const info = desc.pstrMediaInfo) {
        lines.then([=] { return sdpLibEncodeStringField(flag, 'i', info, buffer); });
    }
    if (SDPConnection *const connection = desc.pstConnection) {
        lines.then([=] { return sdpLibEncodeConnectionField(flag, connection, buffer); });
    }
    if (const SDPStringList *const list = desc.pstBandwidthList) {
        lines.then([=] {
            return sdpLibEncodeStringListField(flag, 'b', list->ulNoOfStrings, list->ppstStrings,
                                               buffer);
        });
    }
    if (SDPKey *const key = desc.pstKey) {
        lines.then([=] { return sdpLibEncodeStringField(flag, 'k', &key->strKey, buffer); });
    }
    if (SDPAttrList *const list = desc.pstAttrList) {
        lines.then([=] { return sdpLibEncodeAttribFields(flag, list, buffer); });
    }
    return lines.result();
}

// port [ "/" count ] SP
void appendPort(SipStringBuffer *buffer, const SDPMediaField &field) {
    SipSbCopyLong(buffer, field.ulPort);
    if (field.ulNoOfPorts > 1) {
        SipSbCopyChar(buffer, '/');
        SipSbCopyLong(buffer, field.ulNoOfPorts);
    }
    SipSbCopyChar(buffer, ' ');
}

// *( SP payload-type )
SDPResult appendPayloads(SipStringBuffer *buffer, const SDPRtpPayLoads &payloads) {
    if (payloads.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
        return fail(Check::MediaPayloadCount, payloads.ulNoOfPayLoads);
    }
    const uint32_t *const numbers = payloads.pulPayLoads;
    for (uint32_t i = 0; numbers != nullptr && i < payloads.ulNoOfPayLoads; ++i) {
        SipSbCopyChar(buffer, ' ');
        SipSbCopyLong(buffer, numbers[i]);
    }
    return 0;
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

// *( m= [ i= ] [ c= ] *( b= ) [ k= ] *( a= ) ), where an m= line that fails does not stop the rest
SDPResult sdpLibEncodeMediaSet(uint32_t *pulFlag, SDPMediaSet *pstSet, SipStringBuffer *pstBuf) {
    for (uint32_t i = 0; i < pstSet->ulNoOfMediaDescs; ++i) {
        SDPMediaDesc &desc = *pstSet->ppstMediaDescs[i];
        sdpLibEncodeMediaField(pulFlag, &desc.stMediaField, pstBuf);
        if (const SDPResult result = writeMediaLines(pulFlag, desc, pstBuf)) {
            return result;
        }
    }
    return 0;
}

// m= media SP port [ "/" count ] SP proto *( SP fmt ) CRLF
SDPResult sdpLibEncodeMediaField(uint32_t *pulFlag, SDPMediaField *pstField,
                                 SipStringBuffer *pstBuf) {
    appendPrefix(pstBuf, pulFlag, 'm');
    if (sdpLibEncodeMediaType(pstField, pstBuf) != 0) {
        return fail(Check::MediaTypeFailed, pstField->stMedia.enMediaType);
    }
    appendPort(pstBuf, *pstField);
    if (sdpLibEncodeMediaProtoType(pstField, pstBuf) != 0) {
        return fail(Check::MediaProtoFailed, pstField->stProto.enProto);
    }
    const SDPMediaFmt &format = pstField->stMediaFmt;
    if (format.enFmtType < SDP_FMT_RTP_PAYLOADS || format.enFmtType > SDP_FMT_OTHER) {
        return fail(Check::MediaFmtTypeValue);
    }
    if (sdpLibEncodeMediaFmtType(pstField, pstBuf) != 0) {
        return fail(Check::MediaPayloadsFailed, format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads);
    }
    appendLineEnd(pstBuf);
    return 0;
}

// media SP
SDPResult sdpLibEncodeMediaType(SDPMediaField *pstField, SipStringBuffer *pstBuf) {
    const SDPMedia &media = pstField->stMedia;
    Appender out(pstBuf);
    if (media.enMediaType == SDP_MEDIA_OTHER) {
        out.text(media.pstrOtherMedia).character(' ');
    } else if (const Word *const word = findByCode(kMediaWritten, media.enMediaType)) {
        out.then([=] { return append(pstBuf, word->text); });
    } else {
        return fail(Check::MediaTypeValue, media.enMediaType);
    }
    return out.result() == 0 ? 0 : fail(Check::MediaTypeAppend);
}

// proto
SDPResult sdpLibEncodeMediaProtoType(SDPMediaField *pstField, SipStringBuffer *pstBuf) {
    const SDPMediaProto &proto = pstField->stProto;
    Appender out(pstBuf);
    if (proto.enProto == SDP_PROTO_OTHER) {
        out.text(proto.pstrOtherProto);
    } else if (const Word *const word = findByCode(kProtoWords, proto.enProto)) {
        out.then([=] { return append(pstBuf, word->text); });
    } else {
        return fail(Check::MediaProtoValue, proto.enProto);
    }
    return out.result() == 0 ? 0 : fail(Check::MediaProtoAppend);
}

// *( SP fmt ); refused appends are no failure
SDPResult sdpLibEncodeMediaFmtType(SDPMediaField *pstField, SipStringBuffer *pstBuf) {
    const SDPMediaFmt &format = pstField->stMediaFmt;
    if (format.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        return appendPayloads(pstBuf, format.unMediaFmt.stRtpPayLoads);
    }
    if (const Word *const word = findByCode(kFmtWords, format.enFmtType)) {
        SipSbCopyChar(pstBuf, ' ');
        append(pstBuf, word->text);
    } else if (format.enFmtType == SDP_FMT_OTHER) {
        SipSbCopyChar(pstBuf, ' ');
        SipSbCopyString(pstBuf, &format.unMediaFmt.strOtherFmts);
    }
    return 0;
}

} // extern "C"

// The encoder's driver: a whole body line by line, or one line alone, and the writers of the
// lines that hold nothing but a number or a text.
#include "encoder/sdpencode.hpp"

#include <iterator>

namespace sdpline {

namespace {

// ---- Whole body

constexpr uint32_t kPrefixed = 1;

// What the writers of one body share.
struct Out {
    uint32_t prefixed;
    SipStringBuffer *buffer;

    SDPResult text(char key, SipString *value) {
        return value != nullptr ? sdpLibEncodeStringField(&prefixed, key, value, buffer) : 0;
    }
    SDPResult texts(char key, SDPStringList *list) {
        return list != nullptr ? sdpLibEncodeStringListField(&prefixed, key, list->ulNoOfStrings,
                                                             list->ppstStrings, buffer)
                               : 0;
    }
};

SDPResult writeVersion(Out &out, SdpLine &body) {
    return sdpLibEncodeProtocolField(&out.prefixed, &body.ulProtoVersion, out.buffer);
}

SDPResult writeOrigin(Out &out, SdpLine &body) {
    return sdpLibEncodeOriginField(&out.prefixed, &body.stOrigin, out.buffer);
}

SDPResult writeName(Out &out, SdpLine &body) {
    return out.text('s', &body.strSessionName);
}

SDPResult writeInfo(Out &out, SdpLine &body) {
    return out.text('i', body.pstrSessionInfo);
}

SDPResult writeUri(Out &out, SdpLine &body) {
    return out.text('u', body.pstrUri);
}

SDPResult writeEmail(Out &out, SdpLine &body) {
    return out.texts('e', body.pstEmailList);
}

SDPResult writePhone(Out &out, SdpLine &body) {
    return out.texts('p', body.pstPhoneList);
}

SDPResult writeConnection(Out &out, SdpLine &body) {
    SDPConnection *const connection = body.pstConnection;
    return connection != nullptr
               ? sdpLibEncodeConnectionField(&out.prefixed, connection, out.buffer)
               : 0;
}

SDPResult writeBandwidth(Out &out, SdpLine &body) {
    return out.texts('b', body.pstBandwidthList);
}

SDPResult writeTimes(Out &out, SdpLine &body) {
    return sdpLibEncodeTimeSet(&out.prefixed, &body.stTimeSet, out.buffer);
}

SDPResult writeZone(Out &out, SdpLine &body) {
    return out.text('z', body.pstrTimeZone);
}

SDPResult writeKey(Out &out, SdpLine &body) {
    SDPKey *const key = body.pstKey;
    return key != nullptr ? out.text('k', &key->strKey) : 0;
}

SDPResult writeAttributes(Out &out, SdpLine &body) {
    SDPAttrList *const list = body.pstAttrList;
    return list != nullptr ? sdpLibEncodeAttribFields(&out.prefixed, list, out.buffer) : 0;
}

SDPResult writeMedia(Out &out, SdpLine &body) {
    return sdpLibEncodeMediaSet(&out.prefixed, &body.stMediaSet, out.buffer);
}

struct BodyLine {
    SDPResult (*write)(Out &out, SdpLine &body); // a line that the body lacks: success
    Check failed;
};

// The lines of a body in the order they are written (RFC 4566 section 5).
constexpr BodyLine kBodyLines[] = {
    {writeVersion, Check::EncodeVersion},
    {writeOrigin, Check::EncodeOrigin},
    {writeName, Check::EncodeName},
    {writeInfo, Check::EncodeInfo},
    {writeUri, Check::EncodeUri},
    {writeEmail, Check::EncodeEmail},
    {writePhone, Check::EncodePhone},
    {writeConnection, Check::EncodeConnection},
    {writeBandwidth, Check::EncodeBandwidth},
    {writeTimes, Check::EncodeTimes},
    {writeZone, Check::EncodeZone},
    {writeKey, Check::EncodeKey},
    {writeAttributes, Check::EncodeAttributes},
    {writeMedia, Check::EncodeMedia},
};

// ---- One line

SDPResult versionLine(char, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return sdpLibEncodeProtocolField(flag, static_cast<uint32_t *>(field), buffer);
}

SDPResult connectionLine(char, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return sdpLibEncodeConnectionField(flag, static_cast<SDPConnection *>(field), buffer);
}

SDPResult originLine(char, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return sdpLibEncodeOriginField(flag, static_cast<SDPOrigin *>(field), buffer);
}

SDPResult mediaLine(char, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return sdpLibEncodeMediaField(flag, static_cast<SDPMediaField *>(field), buffer);
}

// As in a list, an attribute that cannot be written leaves its line short and is no failure.
SDPResult attributeLine(char key, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    appendPrefix(buffer, flag, key);
    sdpLibEncodeAttribField(static_cast<SDPAttr *>(field), buffer);
    return appendLineEnd(buffer);
}

// The t= line alone: a set of one, without r= lines.
SDPResult timeLine(char, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    const auto *const given = static_cast<const SDPTimeField *>(field);
    SDPTimeField alone = {given->ulStartTime, given->ulStopTime, nullptr};
    SDPTimeField *fields[] = {&alone};
    SDPTimeSet set = {1, fields};
    return sdpLibEncodeTimeSet(flag, &set, buffer);
}

SDPResult repeatLine(char, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    SDPRepeatField *fields[] = {static_cast<SDPRepeatField *>(field)};
    SDPRepeatFieldSet set = {1, fields};
    return sdpLibEncodeRepeatFields(flag, &set, buffer);
}

SDPResult textLine(char key, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return sdpLibEncodeStringField(flag, key, static_cast<SipString *>(field), buffer);
}

SDPResult keyLine(char key, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return sdpLibEncodeStringField(flag, key, &static_cast<SDPKey *>(field)->strKey, buffer);
}

struct SingleLine {
    uint32_t type;
    char key;
    SDPResult (*write)(char key, uint32_t *flag, void *field, SipStringBuffer *buffer);
};

constexpr SingleLine kSingleLines[] = {
    {SDP_LINE_VERSION, 'v', versionLine},
    {SDP_LINE_CONNECTION, 'c', connectionLine},
    {SDP_LINE_ORIGIN, 'o', originLine},
    {SDP_LINE_MEDIA, 'm', mediaLine},
    {SDP_LINE_ATTRIBUTE, 'a', attributeLine},
    {SDP_LINE_TIME, 't', timeLine},
    {SDP_LINE_REPEAT, 'r', repeatLine},
    {SDP_LINE_INFO, 'i', textLine},
    {SDP_LINE_NAME, 's', textLine},
    {SDP_LINE_URI, 'u', textLine},
    {SDP_LINE_EMAIL, 'e', textLine},
    {SDP_LINE_PHONE, 'p', textLine},
    {SDP_LINE_BANDWIDTH, 'b', textLine},
    {SDP_LINE_ZONE, 'z', textLine},
    {SDP_LINE_KEY, 'k', keyLine},
};

constexpr bool indexedByType() {
    for (uint32_t type = 0; type < std::size(kSingleLines); ++type) {
        if (kSingleLines[type].type != type) {
            return false;
        }
    }
    return std::size(kSingleLines) == SDP_LINE_COUNT;
}
static_assert(indexedByType());

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult SdpLibEncodeSdpInt(SdpLine *pstLine, SipStringBuffer *pstBuf) {
    if (pstLine == nullptr || pstBuf == nullptr) {
        return fail(Check::EncodeBodyArgument);
    }
    Out out = {kPrefixed, pstBuf};
    for (const BodyLine &line : kBodyLines) {
        if (line.write(out, *pstLine) != 0) {
            return fail(line.failed);
        }
    }
    return 0;
}

SDPResult SdpLibEncodeLine(int32_t enLineType, uint32_t *pulFlag, void *pField,
                           SipStringBuffer *pstBuf) {
    if (pulFlag == nullptr || pField == nullptr || pstBuf == nullptr) {
        return fail(Check::EncodeLineArgument);
    }
    if (enLineType < 0 || enLineType >= SDP_LINE_COUNT) {
        return fail(Check::EncodeLineType);
    }
    const SingleLine &line = kSingleLines[enLineType];
    return line.write(line.key, pulFlag, pField, pstBuf);
}

// v= 1*DIGIT CRLF
SDPResult sdpLibEncodeProtocolField(uint32_t *pulFlag, uint32_t *pulVersion,
                                    SipStringBuffer *pstBuf) {
    if (const uint32_t result = appendPrefix(pstBuf, pulFlag, 'v')) {
        return passUp(Check::EncodeVersionPrefix, result);
    }
    if (const uint32_t result = SipSbCopyLong(pstBuf, *pulVersion)) {
        return passUp(Check::EncodeVersionNumber, result);
    }
    return appendLineEnd(pstBuf);
}

// key "=" byte-string CRLF
SDPResult sdpLibEncodeStringField(uint32_t *pulFlag, char cKey, SipString *pstValue,
                                  SipStringBuffer *pstBuf) {
    return Appender(pstBuf).prefix(pulFlag, cKey).text(pstValue).lineEnd().result();
}

SDPResult sdpLibEncodeStringListField(uint32_t *pulFlag, char cKey, uint32_t ulCount,
                                      SipString **ppstItems, SipStringBuffer *pstBuf) {
    for (uint32_t i = 0; i < ulCount; ++i) {
        if (const SDPResult result = sdpLibEncodeStringField(pulFlag, cKey, ppstItems[i], pstBuf)) {
            return result;
        }
    }
    return 0;
}

} // extern "C"

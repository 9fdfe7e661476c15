// The encoder's driver: a whole body line by line, or one line alone, and the lines that hold
// nothing but a number or a text.
#include "encoder/encoder.hpp"

#include <iterator>

#include "encoder/media.hpp"
#include "encoder/origin.hpp"
#include "encoder/time.hpp"

namespace sdpline {

namespace {

// ---- Whole body

constexpr uint32_t kPrefixed = 1;

// v= 1*DIGIT CRLF
SDPLINE_INLINE SDPResult writeVersion(Output &out, const uint32_t *flag, uint32_t version) {
    if (const uint32_t result = appendPrefix(out, flag, 'v')) {
        return logAndForward(out, Check::EncodeVersionPrefix, result);
    }
    if (const uint32_t result = out.number(version)) {
        return logAndForward(out, Check::EncodeVersionNumber, result);
    }
    return out.lineEnd();
}

// Writes the lines of one body: each one that the body has, while none failed.
class BodyWriter {
public:
    SDPLINE_INLINE explicit BodyWriter(Output &out) : out_(out) {}

    template <class Write>
    SDPLINE_INLINE BodyWriter &line(Check failed, Write write) {
        if (result_ == 0 && write() != 0) [[unlikely]] {
            result_ = fail(out_, failed);
        }
        return *this;
    }
    SDPLINE_INLINE BodyWriter &text(Check failed, char key, const SipString *value) {
        return line(failed, [=, this] {
            return value != nullptr ? writeTextLine(out_, &kPrefixed, key, value) : 0;
        });
    }
    SDPLINE_INLINE BodyWriter &texts(Check failed, char key, const SDPStringList *list) {
        return line(failed, [=, this] {
            return list != nullptr ? writeTextLines(out_, &kPrefixed, key, list->ulNoOfStrings,
                                                    list->ppstStrings)
                                   : 0;
        });
    }

    SDPLINE_INLINE SDPResult result() const { return result_; }

private:
    Output &out_;
    SDPResult result_ = 0;
};

// The lines of a body in the order they are written (RFC 4566 section 5).
SDPLINE_INLINE SDPResult writeBody(Output &out, SdpLine &body) {
    constexpr const uint32_t *flag = &kPrefixed;
    const SDPConnection *const connection = body.pstConnection;
    const SDPAttrList *const attributes = body.pstAttrList;
    const SDPKey *const key = body.pstKey;
    return BodyWriter(out)
        .line(Check::EncodeVersion, [&] { return writeVersion(out, flag, body.ulProtoVersion); })
        .line(Check::EncodeOrigin, [&] { return writeOrigin(out, flag, body.stOrigin); })
        .text(Check::EncodeName, 's', &body.strSessionName)
        .text(Check::EncodeInfo, 'i', body.pstrSessionInfo)
        .text(Check::EncodeUri, 'u', body.pstrUri)
        .texts(Check::EncodeEmail, 'e', body.pstEmailList)
        .texts(Check::EncodePhone, 'p', body.pstPhoneList)
        .line(Check::EncodeConnection,
              [&] { return connection != nullptr ? writeConnection(out, flag, *connection) : 0; })
        .texts(Check::EncodeBandwidth, 'b', body.pstBandwidthList)
        .line(Check::EncodeTimes, [&] { return writeTimes(out, flag, body.stTimeSet); })
        .text(Check::EncodeZone, 'z', body.pstrTimeZone)
        .text(Check::EncodeKey, 'k', key != nullptr ? &key->strKey : nullptr)
        .line(Check::EncodeAttributes,
              [&] {
                  return attributes != nullptr ? apart<writeAttributes>(out, flag, attributes) : 0;
              })
        .line(Check::EncodeMedia, [&] { return writeMediaSet(out, flag, body.stMediaSet); })
        .result();
}

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
    return writeTo(buffer, [=](Output &out) {
        appendPrefix(out, flag, key);
        auto &attr = *static_cast<SDPAttr *>(field);
        writeAttribute(out, attr, shapeOf(attr.ulAttrType));
        return out.lineEnd();
    });
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

// Flattened, so that no part of it asks for the place of the Output.
[[gnu::flatten]] SDPResult SdpLibEncodeSdpInt(SdpLine *pstLine, SipStringBuffer *pstBuf) {
    if (pstLine == nullptr || pstBuf == nullptr) {
        return fail(Check::EncodeBodyArgument);
    }
    return writeTo(pstBuf, [=](Output &out) { return writeBody(out, *pstLine); });
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

SDPResult sdpLibEncodeProtocolField(uint32_t *pulFlag, uint32_t *pulVersion,
                                    SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeVersion(out, pulFlag, *pulVersion); });
}

SDPResult sdpLibEncodeStringField(uint32_t *pulFlag, char cKey, SipString *pstValue,
                                  SipStringBuffer *pstBuf) {
    return writeTo(pstBuf,
                   [=](Output &out) { return writeTextLine(out, pulFlag, cKey, pstValue); });
}

SDPResult sdpLibEncodeStringListField(uint32_t *pulFlag, char cKey, uint32_t ulCount,
                                      SipString **ppstItems, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) {
        return writeTextLines(out, pulFlag, cKey, ulCount, ppstItems);
    });
}

} // extern "C"

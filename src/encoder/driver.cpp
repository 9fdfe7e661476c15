// The encoder's driver: a whole body line by line, or one line alone.
#include "encoder/writers.hpp"

#include <iterator>

namespace sdpline {

namespace {

// ---- Whole body

constexpr uint32_t kPrefixed = 1;

// Writes the lines that a body has, one after another, until one fails.
class BodyWriter {
public:
    explicit BodyWriter(Output &out) : out_(out) {}

    // Writes a line by `write`. If that fails, the check `failed` fails.
    template <class Write>
    BodyWriter &line(Check failed, Write write) {
        if (result_ == 0) [[likely]] {
            result_ =
                out_.line([=](auto &line) { return write(line) == 0 ? 0 : fail(line, failed); });
        }
        return *this;
    }
    BodyWriter &text(Check failed, char key, const SipString *value) {
        return value == nullptr ? *this : line(failed, [=](auto &line) {
            return writeTextLine(line, &kPrefixed, key, value);
        });
    }
    BodyWriter &texts(Check failed, char key, const SDPStringList *list) {
        return list == nullptr ? *this : line(failed, [=](auto &line) {
            return writeTextLines(line, &kPrefixed, key, list->ulNoOfStrings, list->ppstStrings);
        });
    }
    BodyWriter &connection(Check failed, const SDPConnection *connection) {
        return connection == nullptr ? *this : line(failed, [=](auto &line) {
            return writeConnection(line, &kPrefixed, *connection);
        });
    }
    BodyWriter &attributes(Check failed, const SDPAttrList *list) {
        return list == nullptr
                   ? *this
                   : lines(failed, [=, this] { return writeAttributes(out_, &kPrefixed, list); });
    }
    BodyWriter &mediaSet(Check failed, const SDPMediaSet &set) {
        return lines(failed, [&, this] { return writeMediaSet(out_, &kPrefixed, set); });
    }

    SDPResult result() const { return result_; }

private:
    // Several lines; `write` passes each of them to the output.
    template <class Write>
    BodyWriter &lines(Check failed, Write write) {
        if (result_ == 0 && write() != 0) [[unlikely]] {
            result_ = out_.byServices([=](ServiceLine &line) { return fail(line, failed); });
        }
        return *this;
    }

    Output &out_;
    SDPResult result_ = 0;
};

// The lines of a body in the order they are written (RFC 4566 section 5).
SDPResult writeLines(Output &out, SdpLine &body) {
    const SDPKey *const key = body.pstKey;
    return BodyWriter(out)
        .line(Check::EncodeVersion,
              [&body](auto &line) { return writeVersion(line, &kPrefixed, body.ulProtoVersion); })
        .line(Check::EncodeOrigin,
              [&body](auto &line) { return writeOrigin(line, &kPrefixed, body.stOrigin); })
        .text(Check::EncodeName, 's', &body.strSessionName)
        .text(Check::EncodeInfo, 'i', body.pstrSessionInfo)
        .text(Check::EncodeUri, 'u', body.pstrUri)
        .texts(Check::EncodeEmail, 'e', body.pstEmailList)
        .texts(Check::EncodePhone, 'p', body.pstPhoneList)
        .connection(Check::EncodeConnection, body.pstConnection)
        .texts(Check::EncodeBandwidth, 'b', body.pstBandwidthList)
        .line(Check::EncodeTimes,
              [&body](auto &line) { return writeTimes(line, &kPrefixed, body.stTimeSet); })
        .text(Check::EncodeZone, 'z', body.pstrTimeZone)
        .text(Check::EncodeKey, 'k', key != nullptr ? &key->strKey : nullptr)
        .attributes(Check::EncodeAttributes, body.pstAttrList)
        .mediaSet(Check::EncodeMedia, body.stMediaSet)
        .result();
}

// Flattened: with link-time optimisation all writers are inlined here from the other source files,
// and the address to write to stays in registers for a whole line.
[[gnu::flatten]] SDPResult writeBody(Output &out, SdpLine &body) {
    return writeLines(out, body);
}

// ---- One line

SDPResult versionLine(ServiceLine &out, const uint32_t *flag, char, void *field) {
    return writeVersion(out, flag, *static_cast<const uint32_t *>(field));
}

SDPResult connectionLine(ServiceLine &out, const uint32_t *flag, char, void *field) {
    return writeConnection(out, flag, *static_cast<const SDPConnection *>(field));
}

SDPResult originLine(ServiceLine &out, const uint32_t *flag, char, void *field) {
    return writeOrigin(out, flag, *static_cast<const SDPOrigin *>(field));
}

SDPResult mediaLine(ServiceLine &out, const uint32_t *flag, char, void *field) {
    return writeMediaField(out, flag, *static_cast<const SDPMediaField *>(field));
}

// As in a body, an attribute that cannot be written makes a short line and is not a failure.
SDPResult attributeLine(ServiceLine &out, const uint32_t *flag, char key, void *field) {
    appendPrefix(out, flag, key);
    writeAttribute(out, *static_cast<SDPAttr *>(field));
    return out.lineEnd();
}

// The t= line without its r= lines: a set of one field.
SDPResult timeLine(ServiceLine &out, const uint32_t *flag, char, void *field) {
    const auto *const given = static_cast<const SDPTimeField *>(field);
    SDPTimeField alone = {given->ulStartTime, given->ulStopTime, nullptr};
    SDPTimeField *fields[] = {&alone};
    return writeTimes(out, flag, SDPTimeSet{1, fields});
}

SDPResult repeatLine(ServiceLine &out, const uint32_t *flag, char, void *field) {
    SDPRepeatField *fields[] = {static_cast<SDPRepeatField *>(field)};
    const SDPRepeatFieldSet set = {1, fields};
    return writeRepeats(out, flag, &set);
}

SDPResult textLine(ServiceLine &out, const uint32_t *flag, char key, void *field) {
    return writeTextLine(out, flag, key, static_cast<const SipString *>(field));
}

SDPResult keyLine(ServiceLine &out, const uint32_t *flag, char key, void *field) {
    const SDPKey &value = *static_cast<const SDPKey *>(field);
    return writeTextLine(out, flag, key, &value.strKey);
}

struct SingleLine {
    uint32_t type;
    char key;
    SDPResult (*write)(ServiceLine &out, const uint32_t *flag, char key, void *field);
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

SDPResult encodeBody(SdpLine *line, SipStringBuffer *buffer) {
    if (line == nullptr || buffer == nullptr) {
        return fail(Check::EncodeBodyArgument);
    }
    Output out(buffer);
    const SDPResult result = writeBody(out, *line);
    out.store();
    return result;
}

SDPResult encodeLine(int32_t type, const uint32_t *flag, void *field, SipStringBuffer *buffer) {
    if (flag == nullptr || field == nullptr || buffer == nullptr) {
        return fail(Check::EncodeLineArgument);
    }
    if (type < 0 || type >= SDP_LINE_COUNT) {
        return fail(Check::EncodeLineType);
    }
    const SingleLine &line = kSingleLines[type];
    return writeTo(buffer, line.write, flag, line.key, field);
}

} // namespace sdpline

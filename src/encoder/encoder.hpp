// What the writers of lines share: words, prefixes, and lines that end at the first refused append.
//
// Where a line's rule is that a refused append ends it, its writer uses Appender; where the rule is
// that the work goes on, it makes the plain appends and drops their results.
#pragma once

#include <cstdint>
#include <span>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "services/output.hpp"
#include "tables/attributes.hpp"
#include "tables/keywords.hpp"

namespace sdpline {

// Reports a failing check of a writer. The log hook may append to the buffer that is written.
inline SDPResult fail(Output &out, Check check, uint32_t value = 0,
                      uint32_t line = __builtin_LINE()) {
    const SDPResult result = out.call<reportFailed>(check, value, line, nullptr);
    if (result == 0) {
        __builtin_unreachable();
    }
    return result;
}

inline SDPResult logAndForward(Output &out, Check check, SDPResult result,
                               uint32_t line = __builtin_LINE()) {
    return out.call<static_cast<SDPResult (*)(Check, SDPResult, uint32_t)>(logAndForward)>(
        check, result, line);
}

// The line's letter and "=", when the flag asks for them. The first refused one is the result.
inline uint32_t appendPrefix(Output &out, const uint32_t *flag, char key) {
    if (*flag != 1) {
        return 0;
    }
    const uint32_t result = out.character(key);
    return result != 0 ? result : out.character('=');
}

// The word of a code; a code that the table does not know fails the check.
inline SDPResult appendWord(Output &out, std::span<const KeywordRow> table, uint32_t code,
                            Check unknown, uint32_t line = __builtin_LINE()) {
    const KeywordRow *const word = findByCode(table, code);
    return word != nullptr ? out.word(word->text) : fail(out, unknown, code, line);
}

// The same where a code without a word is written as nothing.
inline SDPResult appendKnownWord(Output &out, std::span<const KeywordRow> table, uint32_t code) {
    const KeywordRow *const word = findByCode(table, code);
    return word != nullptr ? out.word(word->text) : 0;
}

// Makes one append after another until one is refused: the later ones are not tried, and the
// first failure is the result.
class Appender {
public:
    explicit Appender(Output &out) : out_(out) {}

    Appender &prefix(const uint32_t *flag, char key) {
        return then([=, this] { return appendPrefix(out_, flag, key); });
    }
    Appender &character(char letter) {
        return then([=, this] { return out_.character(letter); });
    }
    Appender &text(const SipString *text) {
        return then([=, this] { return out_.text(text); });
    }
    Appender &word(const KeywordRow &word) {
        return then([&, this] { return out_.word(word.text); });
    }
    Appender &number(uint32_t value) {
        return then([=, this] { return out_.number(value); });
    }
    Appender &lineEnd() {
        return then([this] { return out_.lineEnd(); });
    }

    // A part that has a writer of its own.
    template <class Part>
    Appender &then(Part part) {
        if (result_ == 0) [[likely]] {
            result_ = part();
        }
        return *this;
    }

    SDPResult result() const { return result_; }

private:
    Output &out_;
    SDPResult result_ = 0;
};

// ---- The lines

SDPResult writeVersion(Output &out, const uint32_t *flag, uint32_t version);
SDPResult writeTextLine(Output &out, const uint32_t *flag, char key, const SipString *value);
SDPResult writeTextLines(Output &out, const uint32_t *flag, char key, uint32_t count,
                         SipString *const *items);
SDPResult writeOrigin(Output &out, const uint32_t *flag, const SDPOrigin &origin);
SDPResult writeConnection(Output &out, const uint32_t *flag, const SDPConnection &connection);
SDPResult writeTimes(Output &out, const uint32_t *flag, const SDPTimeSet &set);
SDPResult writeRepeats(Output &out, const uint32_t *flag, const SDPRepeatFieldSet *set);
SDPResult writeAttributes(Output &out, const uint32_t *flag, const SDPAttrList *list);
SDPResult writeMediaSet(Output &out, const uint32_t *flag, const SDPMediaSet &set);
SDPResult writeMediaField(Output &out, const uint32_t *flag, const SDPMediaField &field);

// ---- Whole bodies, and one line of any type from its record

SDPResult encodeBody(SdpLine *line, SipStringBuffer *buffer);
SDPResult encodeLine(int32_t type, const uint32_t *flag, void *field, SipStringBuffer *buffer);

// ---- Parts of lines

SDPResult writeOriginNetType(Output &out, const SDPOrigin &origin);
SDPResult writeOriginAddrType(Output &out, const SDPOrigin &origin);
// These three set `typeError` for a code without a text.
SDPResult writeConnectionNetType(Output &out, const SDPConnection &connection, uint32_t &typeError);
SDPResult writeConnectionAddrType(Output &out, const SDPConnection &connection,
                                  uint32_t &typeError);
SDPResult writeConnectionAddress(Output &out, const SDPConnection &connection, uint32_t &typeError);
SDPResult writeIpv6(Output &out, const SDPConnection &connection);
SDPResult writeTtl(Output &out, const SDPConnection &connection);
SDPResult writeTimeUnit(Output &out, const SDPTimeUnit &unit);
SDPResult writeMediaType(Output &out, const SDPMedia &media);
SDPResult writeProto(Output &out, const SDPMediaProto &proto);
SDPResult writeFormats(Output &out, const SDPMediaFmt &format);

// ---- Attributes, without the line's prefix and end

SDPResult writeAttribute(Output &out, SDPAttr &attr);
// The name; `nameWritten` tells whether the value is still to come.
SDPResult writeAttributeName(Output &out, const SDPAttr &attr, uint32_t &nameWritten);
SDPResult writeAttributeValue(Output &out, SDPAttr &attr);
SDPResult writeRtpMap(Output &out, SDPAttr &attr);
SDPResult writeKeyword(Output &out, const AttributeRow &row, const SDPAttr &attr);
SDPResult writeSwitch(Output &out, const SDPAttr &attr);
SDPResult writeSilenceSupp(Output &out, const SDPAttr &attr);
SDPResult writeEcan(Output &out, const SDPAttr &attr);
SDPResult writeIpBcp(Output &out, const SDPAttr &attr);
SDPResult writeStatus(Output &out, const SDPRsrcMgmtStatus *status, uint32_t type);
SDPResult writeStatusName(Output &out, uint32_t type);
SDPResult writeStrengthTag(Output &out, const SDPRsrcMgmtStatus &status);
SDPResult writeStatusType(Output &out, const SDPRsrcMgmtStatus &status);
SDPResult writeDirTag(Output &out, const SDPRsrcMgmtStatus &status);

} // namespace sdpline

// The writers of lines, and what they share: words, prefixes, and lines that end at the first
// refused append.
//
// A writer of one line, or of a part of it, makes its appends to either kind of line
// (services/output.hpp). A writer of several lines passes a function for each line to line() of an
// Output or of a ServiceLine.
//
// Where a refused append ends the line, the writer uses Appender. Where the line goes on after a
// refused append, the writer makes the plain appends and ignores their results.
#pragma once

#include <cstdint>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "services/output.hpp"
#include "tables/attributes.hpp"
#include "tables/keywords.hpp"

namespace sdpline {

// ---- Failing checks of a writer

inline SDPResult fail(ServiceLine &, Check check, uint32_t value = 0,
                      uint32_t line = __builtin_LINE()) {
    return fail(check, value, line);
}
inline SDPResult fail(InPlaceLine &out, Check, uint32_t = 0, uint32_t = 0) {
    return out.giveUp();
}

inline SDPResult logAndForward(ServiceLine &, Check check, SDPResult result,
                               uint32_t line = __builtin_LINE()) {
    return logAndForward(check, result, line);
}
inline SDPResult logAndForward(InPlaceLine &, Check, SDPResult result) {
    return result;
}

// ---- Appends

// Appends the line's letter and "=" if the flag is 1. Returns the result of the first refused
// append.
inline uint32_t appendPrefix(auto &out, const uint32_t *flag, char key) {
    if (*flag != 1) {
        return 0;
    }
    const uint32_t result = out.character(key);
    return result != 0 ? result : out.character('=');
}

// Appends the name of an attribute type, with its colon.
inline SDPResult appendName(ServiceLine &out, uint32_t type) {
    return out.text(&sstrSdpAttrNames[type - 1]);
}
inline SDPResult appendName(InPlaceLine &out, uint32_t type) {
    return out.word(kAttributes[type].name);
}

// Appends the word of a code. For a code that is not in the table, returns the result of
// `otherwise`.
template <const auto &Table, class Otherwise>
SDPResult appendWordOr(ServiceLine &out, uint32_t code, Otherwise otherwise) {
    const KeywordRow *const word = findByCode(Table, code);
    return word != nullptr ? out.word(word->text) : otherwise();
}
template <const auto &Table, class Otherwise>
SDPResult appendWordOr(InPlaceLine &out, uint32_t code, Otherwise otherwise) {
    const bool known = withWord<Table>(code, [&](std::string_view word) { out.word(word); });
    return known ? 0 : otherwise();
}

// The same for tables where a code without a word fails a check, and for those where nothing is
// written for it.
template <const auto &Table>
SDPResult appendWord(auto &out, uint32_t code, Check unknown, uint32_t line = __builtin_LINE()) {
    return appendWordOr<Table>(out, code, [&] { return fail(out, unknown, code, line); });
}
template <const auto &Table>
SDPResult appendKnownWord(auto &out, uint32_t code) {
    return appendWordOr<Table>(out, code, [] { return 0u; });
}

// Makes one append after another until one is refused; the later ones are then not made. The
// result is that of the refused append.
template <class Out>
class Appender {
public:
    explicit Appender(Out &out) : out_(out) {}

    Appender &prefix(const uint32_t *flag, char key) {
        return then([=, this] { return appendPrefix(out_, flag, key); });
    }
    Appender &character(char letter) {
        return then([=, this] { return out_.character(letter); });
    }
    Appender &text(const SipString *text) {
        return then([=, this] { return out_.text(text); });
    }
    Appender &number(uint32_t value) {
        return then([=, this] { return out_.number(value); });
    }
    Appender &lineEnd() {
        return then([this] { return out_.lineEnd(); });
    }

    // A part of the line, written by a function.
    template <class Part>
    Appender &then(Part part) {
        if (result_ == 0) [[likely]] {
            result_ = part();
        }
        return *this;
    }

    SDPResult result() const { return result_; }

private:
    Out &out_;
    SDPResult result_ = 0;
};

// ---- The lines

// The source file that defines one of the writers below instantiates it for both kinds of output.
#define SDPLINE_LINE_WRITER(name, ...)                                                             \
    template SDPResult name(InPlaceLine &, __VA_ARGS__);                                           \
    template SDPResult name(ServiceLine &, __VA_ARGS__)
#define SDPLINE_LINES_WRITER(name, ...)                                                            \
    template SDPResult name(Output &, __VA_ARGS__);                                                \
    template SDPResult name(ServiceLine &, __VA_ARGS__)

SDPResult writeVersion(auto &out, const uint32_t *flag, uint32_t version);
SDPResult writeTextLine(auto &out, const uint32_t *flag, char key, const SipString *value);
SDPResult writeTextLines(auto &out, const uint32_t *flag, char key, uint32_t count,
                         SipString *const *items);
SDPResult writeOrigin(auto &out, const uint32_t *flag, const SDPOrigin &origin);
SDPResult writeConnection(auto &out, const uint32_t *flag, const SDPConnection &connection);
SDPResult writeTimes(auto &out, const uint32_t *flag, const SDPTimeSet &set);
SDPResult writeRepeats(auto &out, const uint32_t *flag, const SDPRepeatFieldSet *set);
SDPResult writeMediaField(auto &out, const uint32_t *flag, const SDPMediaField &field);

// These write several lines: each line is written in place or by the services.
SDPResult writeAttributes(auto &out, const uint32_t *flag, const SDPAttrList *list);
SDPResult writeMediaSet(auto &out, const uint32_t *flag, const SDPMediaSet &set);

// ---- Whole bodies, and one line of any type from its record

SDPResult encodeBody(SdpLine *line, SipStringBuffer *buffer);
SDPResult encodeLine(int32_t type, const uint32_t *flag, void *field, SipStringBuffer *buffer);

// ---- Parts of lines

SDPResult writeOriginNetType(auto &out, const SDPOrigin &origin);
SDPResult writeOriginAddrType(auto &out, const SDPOrigin &origin);
// The next three set `typeError` to 1 for a code without a word.
SDPResult writeConnectionNetType(auto &out, const SDPConnection &connection, uint32_t &typeError);
SDPResult writeConnectionAddrType(auto &out, const SDPConnection &connection, uint32_t &typeError);
SDPResult writeConnectionAddress(auto &out, const SDPConnection &connection, uint32_t &typeError);
SDPResult writeIpv6(auto &out, const SDPConnection &connection);
SDPResult writeTtl(auto &out, const SDPConnection &connection);
SDPResult writeTimeUnit(auto &out, const SDPTimeUnit &unit);
SDPResult writeMediaType(auto &out, const SDPMedia &media);
SDPResult writeProto(auto &out, const SDPMediaProto &proto);
SDPResult writeFormats(auto &out, const SDPMediaFmt &format);

// ---- Attributes, without the line's prefix and end

SDPResult writeAttribute(auto &out, SDPAttr &attr);
// Writes the name. `nameWritten` is set to 1 where the value must still be written.
SDPResult writeAttributeName(auto &out, const SDPAttr &attr, uint32_t &nameWritten);
SDPResult writeAttributeValue(auto &out, SDPAttr &attr);
SDPResult writeRtpMap(auto &out, SDPAttr &attr);
SDPResult writeKeyword(auto &out, const AttributeRow &row, const SDPAttr &attr);
SDPResult writeSwitch(auto &out, const SDPAttr &attr);
SDPResult writeSilenceSupp(auto &out, const SDPAttr &attr);
SDPResult writeEcan(auto &out, const SDPAttr &attr);
SDPResult writeIpBcp(auto &out, const SDPAttr &attr);
SDPResult writeStatus(auto &out, const SDPRsrcMgmtStatus *status, uint32_t type);
SDPResult writeStatusName(auto &out, uint32_t type);
SDPResult writeStrengthTag(auto &out, const SDPRsrcMgmtStatus &status);
SDPResult writeStatusType(auto &out, const SDPRsrcMgmtStatus &status);
SDPResult writeDirTag(auto &out, const SDPRsrcMgmtStatus &status);

} // namespace sdpline

// The output of the encoders: appends to one string buffer.
//
// Each append is one service of the string buffer, as small as a letter, a number or a word, in
// text order. A line is written by appends to a ServiceLine, each of which calls the service, or,
// where these services and the buffer's memory are libsipcore's, to an InPlaceLine, which stores
// the same bytes in the buffer without testing at each append whether it fits. A line that does not
// fit, or has a failure to report, is given up and written again by the services: until then it has
// not made the buffer longer, and its bytes are those that the services write.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <string_view>
#include <utility>

#include "sdpline/sdpinternals.h"
#include "services/allocation.hpp"
#include "services/builtin.hpp"
#include "sipcore/stringbuffer.hpp"

namespace sdpline {

// ---- One line

class ServiceLine {
public:
    explicit ServiceLine(SipStringBuffer *buffer) : buffer_(buffer) {}

    bool hasBuffer() const { return buffer_ != nullptr; }

    uint32_t character(char letter) { return SipSbCopyChar(buffer_, letter); }
    uint32_t number(uint32_t value) { return SipSbCopyLong(buffer_, value); }
    uint32_t text(const SipString *text) { return SipSbCopyString(buffer_, text); }
    uint32_t word(std::string_view word) {
        return SipSbCopyConstString(buffer_, word.data(), static_cast<uint32_t>(word.size()));
    }

    // The line end that is configured at present.
    uint32_t lineEnd() {
        const SipString *const lineEnd = g_gpstSdpCrlfCfg;
        return word({lineEnd->pcData, lineEnd->ulLen});
    }

    uint32_t nextLine() { return 0; }
    uint32_t reserve(uint64_t) { return 0; }

    // The same as Output::line(), so that writers of several lines take either.
    template <class Write>
    uint32_t line(Write write) {
        return write(*this);
    }

private:
    SipStringBuffer *buffer_;
};

// The most bytes that a line takes without its texts and without what its writer reserves. The
// longest such line is c= with an IPv6 address and two numbers.
constexpr uint32_t kLineSize = 96;

// The configured line end, one byte or two.
struct LineEnd {
    char first;
    char last;
    uint8_t size; // 0: a longer or empty one, which is not written in place
};

inline LineEnd configuredLineEnd() {
    const SipString &text = *g_gpstSdpCrlfCfg;
    const bool isShort = text.pcData != nullptr && (text.ulLen == 1 || text.ulLen == 2);
    return isShort ? LineEnd{text.pcData[0], text.pcData[text.ulLen - 1],
                             static_cast<uint8_t>(text.ulLen)}
                   : LineEnd{};
}

// Where an append returns a result other than 0, the line has been given up. A writer that ignores
// results may go on to append: these bytes go to the buffer `elsewhere`.
class InPlaceLine {
public:
    using Elsewhere = char[kLineSize];

    // kLineSize bytes must follow `limit`.
    InPlaceLine(char *at, char *limit, LineEnd lineEnd, Elsewhere &elsewhere)
        : at_(at), limit_(limit), elsewhere_(elsewhere), lineEnd_(lineEnd) {}

    static constexpr bool hasBuffer() { return true; }

    uint32_t character(char letter) {
        *at_++ = letter;
        return checked();
    }

    uint32_t number(uint32_t value) {
        at_ = sipcore::putNumber(at_, value);
        return checked();
    }

    // Null is an empty text, as for the service. After a text there is room for the rest of a line.
    uint32_t text(const SipString *text) {
        if (text == nullptr || text->pcData == nullptr) {
            return reserve(0);
        }
        const uint32_t size = text->ulLen;
        if (const uint32_t result = reserve(size)) [[unlikely]] {
            return result;
        }
        copyBytes(at_, text->pcData, size);
        at_ += size;
        return 0;
    }

    // A word of a table, at most kShortText bytes.
    uint32_t word(std::string_view word) {
        assert(word.size() <= sipcore::kShortText);
        at_ = sipcore::putShortText(at_, word.data(), static_cast<uint32_t>(word.size()));
        return checked();
    }

    uint32_t lineEnd() {
        at_[0] = lineEnd_.first;
        at_[lineEnd_.size - 1] = lineEnd_.last;
        at_ += lineEnd_.size;
        return checked();
    }

    // Must be called before each line of several lines without texts.
    uint32_t nextLine() { return reserve(0); }

    // Must be called before a list of words and numbers, with the most bytes that it takes.
    uint32_t reserve(uint64_t size) {
        if (static_cast<int64_t>(size) > limit_ - at_) [[unlikely]] {
            if (!givenUp_) {
                missing_ = size - static_cast<uint64_t>(limit_ - at_);
            }
            return giveUp();
        }
        return 0;
    }

    uint32_t giveUp() {
        givenUp_ = true;
        limit_ = elsewhere_;
        at_ = elsewhere_ + 1;
        return 1;
    }

    bool isGivenUp() const { return givenUp_; }
    char *at() const { return at_; }

    // How many bytes were missing for the text that did not fit; 0 where the line was given up for
    // another reason.
    uint64_t missing() const { return missing_; }

private:
    uint32_t checked() const {
        assert(int64_t{at_ - limit_} <= int64_t{kLineSize});
        return 0;
    }

    char *at_;
    char *limit_;
    char *elsewhere_;
    LineEnd lineEnd_;
    bool givenUp_ = false;
    uint64_t missing_ = 0;
};

// ---- A string buffer

class Output {
public:
    explicit Output(SipStringBuffer *buffer) : buffer_(buffer) { load(); }

    // The fields are copied one by one: loads of several fields that were just stored would wait
    // for the stores.
    Output(const Output &other) : buffer_(other.buffer_) { *this = other; }
    Output &operator=(const Output &other) {
        at_ = other.at_;
        limit_ = other.limit_;
        lineEnd_.first = other.lineEnd_.first;
        lineEnd_.last = other.lineEnd_.last;
        lineEnd_.size = other.lineEnd_.size;
        return *this;
    }

    // Sets the end of the buffer's text after the written lines. Until then it is not changed.
    void store() const {
        if (isInPlace()) {
            buffer_->at = at_;
        }
    }

    // Whether lines are written in place, because no program can see a difference from calls.
    bool isInPlace() const { return limit_ != nowhere; }

    // Writes a line, or a few, by calling `write` with one of the two kinds of line. It is called
    // again after the buffer has grown, and where the services must write the line.
    template <class Write>
    SDPResult line(Write write) {
        uint64_t missing = 0;
        do {
            if (at_ <= limit_) [[likely]] {
                InPlaceLine::Elsewhere elsewhere;
                InPlaceLine line(at_, limit_, lineEnd_, elsewhere);
                write(line);
                if (!line.isGivenUp()) [[likely]] {
                    at_ = line.at();
                    return 0;
                }
                missing = line.missing();
            }
        } while (grow(missing));
        return byServices(write);
    }

    // The same, always by the services, so that the log hook may append to the buffer too.
    template <class Write>
    SDPResult byServices(Write write) {
        SDPResult result = 0;
        *this = writeByServices(*this, write, result);
        return result;
    }

private:
    void load() {
        lineEnd_ = configuredLineEnd();
        const bool open = !seesAppends() && buffer_ != nullptr && builtin.owns(*buffer_->memCp) &&
                          !buffer_->failed() && lineEnd_.size != 0 && isLarge(*buffer_);
        at_ = open ? buffer_->at : nowhere + 1;
        limit_ = open ? buffer_->end - kLineSize : nowhere;
    }

    // Whether the buffer has room for a line; it grows if it can.
    static bool isLarge(SipStringBuffer &buffer) {
        return buffer.capacity() >= kLineSize || builtin.reserve(&buffer, kLineSize) == 0;
    }

    // Grows the buffer for a line that lacked `missing` bytes; returns false where the buffer
    // cannot grow, or where room was not what the line lacked.
    bool grow(uint64_t missing) {
        const ptrdiff_t before = limit_ - at_;
        *this = grown(*this, missing);
        return limit_ - at_ > before;
    }

    // By value: an Output whose address is not passed on stays in registers.
    [[gnu::noinline, gnu::cold]] static Output grown(Output out, uint64_t missing) {
        const auto size = static_cast<int64_t>(missing) + (out.limit_ - out.at_) + kLineSize;
        if (out.isInPlace() && size <= UINT32_MAX) {
            out.store();
            builtin.reserve(out.buffer_, static_cast<uint32_t>(std::max<int64_t>(size, kLineSize)));
            out.load();
        }
        return out;
    }

    template <class Write>
    [[gnu::noinline, gnu::cold]] static Output writeByServices(Output out, Write write,
                                                               SDPResult &result) {
        out.store();
        ServiceLine line(out.buffer_);
        result = write(line);
        out.load();
        return out;
    }

    static inline char nowhere[2];

    SipStringBuffer *buffer_;
    char *at_;    // beyond the limit where lines are written by the services
    char *limit_; // kLineSize bytes before the end
    LineEnd lineEnd_;
};

// Calls a writer for a string buffer, by the services.
template <class... Parameters, class... Arguments>
SDPResult writeTo(SipStringBuffer *buffer, SDPResult (*write)(ServiceLine &, Parameters...),
                  Arguments &&...arguments) {
    ServiceLine line(buffer);
    return write(line, std::forward<Arguments>(arguments)...);
}

} // namespace sdpline

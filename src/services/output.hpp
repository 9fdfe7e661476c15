// Where the encoders write to: the appends of one string buffer.
//
// Every append is one service of the string buffer, as small as a letter, a number or a word, in
// text order. Where these services are libsipcore's, what simply fits is written here, as they
// would write it, and the place to write to stays in registers; all else is a call. Where a
// program has replaced one of them, every append is a call.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "sdpline/sdpinternals.h"
#include "services/builtin.hpp"
#include "services/inline.hpp"
#include "sipcore/stringbuffer.hpp"

namespace sdpline {

namespace output {

// A text of any length, or a number, put where there is room for it; returns where it ends.
[[gnu::noinline]] char *putText(char *to, const char *text, uint32_t size);
[[gnu::noinline]] char *putNumber(char *to, uint32_t value);

} // namespace output

class Output {
public:
    SDPLINE_INLINE explicit Output(SipStringBuffer *buffer) : buffer_(buffer) { load(); }

    // Makes the buffer end after what was written. Until then it ends where it did.
    SDPLINE_INLINE void store() const {
        if (isOpen()) {
            buffer_->at = at_;
        }
    }

    bool hasBuffer() const { return buffer_ != nullptr; }

    SDPLINE_INLINE uint32_t character(char letter) {
        if (!fits(1)) [[unlikely]] {
            return append<SipSbCopyChar>(letter);
        }
        *at_++ = letter;
        return 0;
    }

    SDPLINE_INLINE uint32_t number(uint32_t value) {
        if (!fits(sipcore::kMostDigits)) [[unlikely]] {
            return append<SipSbCopyLong>(value);
        }
        at_ = output::putNumber(at_, value);
        return 0;
    }

    SDPLINE_INLINE uint32_t text(const SipString *text) {
        if (text == nullptr || text->pcData == nullptr || !fits(text->ulLen)) [[unlikely]] {
            return append<SipSbCopyString>(text);
        }
        at_ = output::putText(at_, text->pcData, text->ulLen);
        return 0;
    }

    SDPLINE_INLINE uint32_t word(std::string_view word) {
        const auto size = static_cast<uint32_t>(word.size());
        if (word.data() == nullptr || !fits(size)) [[unlikely]] {
            return append<SipSbCopyConstString>(word.data(), size);
        }
        if (__builtin_constant_p(size) || size == 2) {
            std::memcpy(at_, word.data(), size);
            at_ += size;
        } else {
            at_ = output::putText(at_, word.data(), size);
        }
        return 0;
    }

    // The line end that is configured at this moment.
    SDPLINE_INLINE uint32_t lineEnd() {
        const SipString *const lineEnd = g_gpstSdpCrlfCfg;
        return word({lineEnd->pcData, lineEnd->ulLen});
    }

    // Calls a function that may itself append to the buffer, or let the program do so: meanwhile
    // the buffer is as if every append had been a call.
    template <auto Function, class... Arguments>
    SDPLINE_INLINE uint32_t call(Arguments... arguments) {
        const Called called = callOn<Function>(*this, arguments...);
        at_ = called.at;
        end_ = called.end;
        return called.result;
    }

private:
    struct Called {
        char *at;
        char *end;
        uint32_t result;
    };

    bool isOpen() const { return !seesAppends() && hasBuffer(); }

    // Without a buffer that may be written to, there is less than no room: nothing fits.
    SDPLINE_INLINE void load() {
        static char nowhere[2];
        at_ = isOpen() ? buffer_->at : nowhere + 1;
        end_ = isOpen() ? buffer_->end : nowhere;
    }

    SDPLINE_INLINE bool fits(uint32_t size) const { return int64_t{size} <= end_ - at_; }

    // By value, so that an Output that nothing else points to stays in registers.
    template <auto Function, class... Arguments>
    [[gnu::noinline, gnu::cold]] static Called callOn(Output out, Arguments... arguments) {
        out.store();
        const uint32_t result = Function(arguments...);
        out.load();
        return {out.at_, out.end_, result};
    }

    template <auto Service, class... Arguments>
    SDPLINE_INLINE uint32_t append(Arguments... arguments) {
        return call<Service>(buffer_, arguments...);
    }

    SipStringBuffer *buffer_;
    char *at_;
    char *end_;
};

// Runs a writer on a string buffer.
template <class Write>
SDPLINE_INLINE SDPResult writeTo(SipStringBuffer *buffer, Write write) {
    Output out(buffer);
    const SDPResult result = write(out);
    out.store();
    return result;
}

// Where a writer stopped, and its result.
struct Written {
    Output out;
    SDPResult result;
};

template <auto Write, class... Arguments>
[[gnu::noinline, gnu::flatten]] Written writeOn(Output out, Arguments... arguments) {
    const SDPResult result = Write(out, arguments...);
    return {out, result};
}

// Runs a writer that is too long or too rare to be inlined, on a copy: a writer takes an Output
// that lives in registers either inline or so.
template <auto Write, class... Arguments>
SDPLINE_INLINE SDPResult apart(Output &out, Arguments... arguments) {
    const Written written = writeOn<Write>(out, arguments...);
    out = written.out;
    return written.result;
}

} // namespace sdpline

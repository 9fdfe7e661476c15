// Where the encoders write to: the appends of one string buffer.
//
// Every append is one service of the string buffer, as small as a letter, a number or a word, in
// text order. Where these services and the buffer's memory are libsipcore's, what simply fits is
// written here, as they would write it, and the place to write to stays in registers; all else is a
// call. Where a program has replaced one of them, every append is a call.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "sdpline/sdpinternals.h"
#include "services/builtin.hpp"
#include "sipcore/stringbuffer.hpp"

namespace sdpline {

namespace output {

// A text of any length, or a number, put where it is known to fit; returns where it ends.
[[gnu::noinline]] char *putText(char *to, const char *text, uint32_t size);
[[gnu::noinline]] char *putNumber(char *to, uint32_t value);

} // namespace output

class Output {
public:
    explicit Output(SipStringBuffer *buffer) : buffer_(buffer) { load(); }

    // Makes the buffer end after what was written. Until then it ends where it did.
    void store() const {
        if (isInPlace()) {
            buffer_->at = at_;
        }
    }

    bool hasBuffer() const { return buffer_ != nullptr; }

    // Whether appends are done here: no program sees a difference from calls.
    bool isInPlace() const { return end_ != nowhere; }

    uint32_t character(char letter) {
        if (!fits(1)) [[unlikely]] {
            return append<SipSbCopyChar>(letter);
        }
        *at_++ = letter;
        return 0;
    }

    uint32_t number(uint32_t value) {
        if (!fits(sipcore::kMostDigits)) [[unlikely]] {
            return append<SipSbCopyLong>(value);
        }
        at_ = output::putNumber(at_, value);
        return 0;
    }

    uint32_t text(const SipString *text) {
        if (text == nullptr || text->pcData == nullptr || !fits(text->ulLen)) [[unlikely]] {
            return append<SipSbCopyString>(text);
        }
        at_ = output::putText(at_, text->pcData, text->ulLen);
        return 0;
    }

    uint32_t word(std::string_view word) {
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
    uint32_t lineEnd() {
        const SipString *const lineEnd = g_gpstSdpCrlfCfg;
        return word({lineEnd->pcData, lineEnd->ulLen});
    }

    // Calls a function that may itself append to the buffer, or let the program do so: meanwhile
    // the buffer is as if every append had been a call.
    template <auto Function, class... Arguments>
    uint32_t call(Arguments... arguments) {
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

    // Without a buffer that may be written to, the space left is -1: not even an empty text fits.
    void load() {
        const bool open = !seesAppends() && hasBuffer() && builtin.owns(*buffer_->memCp);
        at_ = open ? buffer_->at : nowhere + 1;
        end_ = open ? buffer_->end : nowhere;
    }

    bool fits(uint32_t size) const { return int64_t{size} <= end_ - at_; }

    // By value, so that an Output that nothing else points to stays in registers.
    template <auto Function, class... Arguments>
    [[gnu::noinline, gnu::cold]] static Called callOn(Output out, Arguments... arguments) {
        out.store();
        const uint32_t result = Function(arguments...);
        out.load();
        return {out.at_, out.end_, result};
    }

    template <auto Service, class... Arguments>
    uint32_t append(Arguments... arguments) {
        return call<Service>(buffer_, arguments...);
    }

    static inline char nowhere[2];

    SipStringBuffer *buffer_;
    char *at_;
    char *end_;
};

// Runs a writer on a string buffer.
template <class... Parameters, class... Arguments>
SDPResult writeTo(SipStringBuffer *buffer, SDPResult (*write)(Output &, Parameters...),
                  Arguments &&...arguments) {
    Output out(buffer);
    const SDPResult result = write(out, std::forward<Arguments>(arguments)...);
    out.store();
    return result;
}

// Runs a writer that is inlined as a whole on a copy: nothing else knows where the copy is, so it
// stays in registers.
template <class Write>
SDPResult onCopy(Output &out, Write write) {
    Output copy = out;
    const SDPResult result = write(copy);
    out = copy;
    return result;
}

// Where a writer stopped, and its result.
struct Written {
    Output out;
    SDPResult result;
};

template <auto Write, class... Arguments>
[[gnu::noinline, gnu::flatten]] Written writeOn(Output out, Arguments &...arguments) {
    const SDPResult result = Write(out, arguments...);
    return {out, result};
}

// Runs a writer that is not inlined from one that works on a copy, without handing out where the
// copy is.
template <auto Write, class... Arguments>
SDPResult outOfLine(Output &out, Arguments &&...arguments) {
    const Written written = writeOn<Write>(out, arguments...);
    out = written.out;
    return written.result;
}

} // namespace sdpline

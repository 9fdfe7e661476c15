#include "support/appends.hpp"

#include <string_view>

#include "sdpline/sipcore.h"
#include "support/hidden.hpp"

namespace {

struct State {
    bool watching = false;
    uint32_t firstFailing = 0; // 0: none
    uint32_t lastFailing = 0;
    std::vector<std::string> texts;
    std::string written;
};

thread_local State state;

// Records one append; true if it has to fail.
bool refuses(std::string_view text) {
    if (!state.watching) {
        return false;
    }
    state.texts.emplace_back(text);
    const auto n = static_cast<uint32_t>(state.texts.size());
    if (state.firstFailing != 0 && n >= state.firstFailing && n <= state.lastFailing) {
        return true;
    }
    state.written += text;
    return false;
}

std::string_view viewOf(const char *text, uint32_t length) {
    return text != nullptr ? std::string_view(text, length) : std::string_view();
}

} // namespace

namespace support {

void Appends::reset() {
    state = State();
    state.watching = true;
}

void Appends::off() {
    state = State();
}

void Appends::failAt(uint32_t n) {
    state.firstFailing = n;
    state.lastFailing = n;
}

void Appends::failFrom(uint32_t n) {
    state.firstFailing = n;
    state.lastFailing = UINT32_MAX;
}

uint32_t Appends::count() {
    return static_cast<uint32_t>(state.texts.size());
}

const std::vector<std::string> &Appends::texts() {
    return state.texts;
}

const std::string &Appends::written() {
    return state.written;
}

} // namespace support

extern "C" {

uint32_t SipSbCopyChar(SipStringBuffer *pstBuf, char cChar) {
    static auto *const real = support::hidden<decltype(SipSbCopyChar)>("SipSbCopyChar");
    return refuses({&cChar, 1}) ? support::Appends::kRefused : real(pstBuf, cChar);
}

uint32_t SipSbCopyConstString(SipStringBuffer *pstBuf, const char *pcText, uint32_t ulLen) {
    static auto *const real =
        support::hidden<decltype(SipSbCopyConstString)>("SipSbCopyConstString");
    return refuses(viewOf(pcText, ulLen)) ? support::Appends::kRefused
                                          : real(pstBuf, pcText, ulLen);
}

uint32_t SipSbCopyString(SipStringBuffer *pstBuf, const SipString *pstText) {
    static auto *const real = support::hidden<decltype(SipSbCopyString)>("SipSbCopyString");
    const auto text = pstText != nullptr ? viewOf(pstText->pcData, pstText->ulLen) : "";
    return refuses(text) ? support::Appends::kRefused : real(pstBuf, pstText);
}

uint32_t SipSbCopyLong(SipStringBuffer *pstBuf, uint32_t ulValue) {
    static auto *const real = support::hidden<decltype(SipSbCopyLong)>("SipSbCopyLong");
    return refuses(std::to_string(ulValue)) ? support::Appends::kRefused : real(pstBuf, ulValue);
}

} // extern "C"

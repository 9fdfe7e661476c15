#include "fuzz.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fuzz {

namespace {

// The format must fit its arguments, and the names are always given.
void format(uint32_t module, uint32_t, uint32_t level, const char *file, const char *function,
            uint32_t, uint32_t, const char *message, ...) {
    require(module == 17 && (level == 3 || level == 5), "a log entry has the library's own module");
    require(std::strlen(file) != 0 && std::strlen(function) != 0, "a log entry names its place");
    if (message == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, message);
    char text[2048];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::vsnprintf(text, sizeof text, message, arguments);
#pragma GCC diagnostic pop
    va_end(arguments);
    require(length > 0, "a log entry can be formatted");
}

} // namespace

void require(bool holds, const char *what, std::string_view detail) {
    if (!holds) {
        std::fprintf(stderr, "FINDING: this does not hold: %s\n", what);
        if (!detail.empty()) {
            std::fprintf(stderr, "%.*s\n", static_cast<int>(detail.size()), detail.data());
        }
        std::abort();
    }
}

uint8_t Input::byte() {
    if (rest_.empty()) {
        return 0;
    }
    const auto last = static_cast<uint8_t>(rest_.back());
    rest_.remove_suffix(1);
    return last;
}

uint32_t Input::number() {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | byte();
    }
    return value;
}

uint32_t Input::below(uint32_t limit) {
    uint32_t value = byte();
    for (uint32_t reach = 0xFF; limit - 1 > reach; reach = reach << 8 | 0xFF) {
        value = value << 8 | byte();
    }
    return value % limit;
}

std::string_view Input::front(size_t size) {
    const std::string_view bytes = rest_.substr(0, size);
    rest_.remove_prefix(bytes.size());
    return bytes;
}

Exact::Exact(std::string_view bytes) : bytes_(new uint8_t[bytes.size()]), size_(bytes.size()) {
    std::copy(bytes.begin(), bytes.end(), bytes_.get());
}

Configuration Configuration::of(uint8_t byte) {
    return {byte % 3u, byte / 3u % 2, SDP_LINE_END_CRLF + byte / 6u % 3, byte / 18u % 2,
            byte / 36u % 2};
}

uint8_t Configuration::byte() const {
    return static_cast<uint8_t>(t38Style + 3 * rtpAvpf + 6 * (lineEnd - SDP_LINE_END_CRLF) +
                                18 * rtpFamily + 36 * longBodies);
}

void Configuration::apply() const {
    g_gpfnSipLmLogHndlr = format;
    uint32_t end = lineEnd;
    require(SdpSetT38OptCfg(t38Style) == 0, "every T.38 style can be set");
    require(SdpLibExtConfig(SDP_CONFIG_LINE_END, &end) == 0, "every line end can be set");
    SdpSetSupMedProtoRtpAvpf(rtpAvpf);
    SdpSetSupMedProtoRtpFamily(rtpFamily);
    require(SdpSetMaxBodySize(longBodies != 0 ? SDP_MAX_LONG_BODY : SDP_MAX_BODY) == 0,
            "every size of bodies can be set");
}

NothingLeaks::NothingLeaks() : before_() {
    SipMmGetStatistics(&before_);
}

NothingLeaks::~NothingLeaks() {
    SipMmStatistics now = {};
    SipMmGetStatistics(&now);
    require(now.ulBlocks == before_.ulBlocks, "every block is given back");
    require(now.ulHeapBlocks == before_.ulHeapBlocks, "every allocation is given back");
    require(now.ulHeapBytes == before_.ulHeapBytes, "every byte of memory is given back");
}

Body decode(std::string_view text, SDPResult *refused) {
    Exact bytes(text);
    const SipString body = bytes.text();
    auto *line = reinterpret_cast<SdpLine *>(&bytes);
    const SDPResult result = SdpLibDecodeSdp(&body, &line);
    require((result == 0) == (line != nullptr), "a decode gives a body or a reason");
    require(bytes.view() == text, "a decode leaves the text as it is");
    if (refused != nullptr) {
        *refused = result;
    }
    return Body(line);
}

std::optional<std::string> encode(SdpLine &line, SDPResult *refused) {
    SipStringBuffer *buffer = nullptr;
    const SDPResult result = SdpLibEncodeSdp(&line, &buffer);
    require((result == 0) == (buffer != nullptr), "an encode gives a text or a reason");
    if (refused != nullptr) {
        *refused = result;
    }
    if (result != 0) {
        return std::nullopt;
    }
    SipRefString *text = nullptr;
    require(SipSbConvertToRefString(buffer, &text) == 0, "an encoded text can be taken");
    SipSbReleaseStringBuffer(buffer);
    return take(text);
}

std::string take(SipRefString *text) {
    std::string bytes(SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text));
    SipSmReleaseRefString(text);
    return bytes;
}

std::string_view checkOf(SDPResult result) {
    SDPResultText text = {};
    require(SdpLibDescribeResult(result, &text) == 0, "every result has a description",
            std::to_string(result));
    return text.pcCheck;
}

} // namespace fuzz

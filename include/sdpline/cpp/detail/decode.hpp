/*
 * decode.hpp: text to records, one decode at a time.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_DECODE_HPP
#define SDPLINE_CPP_DETAIL_DECODE_HPP

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include "sdpline/cpp/decodemutex.hpp"
#include "sdpline/cpp/decodeoptions.hpp"
#include "sdpline/cpp/detail/memory.hpp"
#include "sdpline/cpp/result.hpp"

namespace sdpline {
inline namespace v1 {

namespace internal {

/* The owner of a body's record, and of its block with it. */
class BodyHandle {
public:
    explicit BodyHandle(SdpLine *line) : line_(line) {}
    BodyHandle(BodyHandle &&other) noexcept : line_(other.release()) {}
    BodyHandle &operator=(BodyHandle &&other) noexcept {
        SdpLine *const line = other.release();
        reset();
        line_ = line;
        return *this;
    }
    ~BodyHandle() { reset(); }

    SdpLine *get() const { return line_; }
    SdpLine &operator*() const { return *line_; }
    SdpLine *operator->() const { return line_; }
    SdpLine *release() { return std::exchange(line_, nullptr); }

private:
    void reset() {
        if (line_ != nullptr) {
            SdpLibReleaseSdp(&line_);
        }
    }

    SdpLine *line_;
};

/* The failure of the last decode, which must be that of `code`. */
inline Error decodeError(SDPResult code) {
    Error error = libraryError(code);
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    if (failure.ulResult == code) { /* else it failed before the parser was called */
        error.line = failure.ulLine;
        error.column = failure.ulColumn;
        error.offset = failure.ulOffset;
    }
    return error;
}

/* Whether memory was exhausted for the word of an unknown protocol. The decoder accepts such a
 * body: the text has a length and no bytes, and would not be written. */
inline bool lacksAProtocol(const SdpLine &line) {
    for (std::uint32_t i = 0; i < line.stMediaSet.ulNoOfMediaDescs; ++i) {
        const SDPMediaProto &protocol = line.stMediaSet.ppstMediaDescs[i]->stMediaField.stProto;
        if (protocol.enProto == SDP_PROTO_OTHER && viewOf(protocol.pstrOtherProto).empty()) {
            return true;
        }
    }
    return false;
}

/* With null options the settings of the process apply. */
inline Result<BodyHandle> decodeText(std::string_view text,
                                     const DecodeOptions *options = nullptr) {
    SDPDecodeOptions wanted = {};
    if (options != nullptr) {
        wanted = {options->rtpFamily ? 1u : 0u, options->maxBodySize};
    }
    /* A length that does not fit into 32 bits is refused by the library all the same. */
    const SipString given =
        lent(text.substr(0, std::numeric_limits<decltype(SipString::ulLen)>::max()));
    const DecodeTurn turn;
    if (turn.refused()) {
        return busy();
    }
    SdpLine *line = nullptr;
    if (const SDPResult code =
            SdpLibDecodeSdpWithOptions(&given, options != nullptr ? &wanted : nullptr, &line)) {
        return decodeError(code);
    }
    BodyHandle body(line);
    if (lacksAProtocol(*body)) {
        return noMemory();
    }
    return body;
}

/*
 * Decodes one line as the last line of a small body: `begin` is that body up to the line's letter
 * and
 * "=", included. The place of a failure is one in the line's text.
 */
inline Result<BodyHandle> decodeLine(std::string_view begin, std::string_view text,
                                     const DecodeOptions *options = nullptr) {
    std::array<char, SDP_MAX_BODY> body;
    if (const auto error = refusedText(text, body.size() - begin.size())) {
        return *error;
    }
    std::memcpy(body.data(), begin.data(), begin.size());
    std::memcpy(body.data() + begin.size(), text.data(), text.size());
    auto decoded = decodeText({body.data(), begin.size() + text.size()}, options);
    if (decoded) {
        return decoded;
    }
    Error error = decoded.error();
    const bool inside = error.line != 0 && error.offset >= begin.size();
    error.offset = inside ? error.offset - static_cast<std::uint32_t>(begin.size()) : 0;
    error.line = inside ? 1 : 0;
    error.column = inside ? error.offset + 1 : 0;
    return error;
}

} // namespace internal

} // namespace v1
} // namespace sdpline

#endif

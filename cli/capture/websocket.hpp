// Messages in a stream of WebSocket frames (RFC 6455 section 5), as SIP has them (RFC 7118).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

class WebSocket {
public:
    static constexpr size_t kLongestMessage = 320u << 10;

    // The bytes that follow are appended here, and next() is called until it is empty.
    std::string &buffer() { return buffer_; }

    // The next whole message, masks taken away and fragments joined; empty where more is needed or
    // the stream is broken. Valid until the next call.
    std::string_view next();

    // Bytes were lost: where the next frame begins cannot be known.
    void lose() { broken_ = true; }
    bool isBroken() const { return broken_; }
    size_t compressed() const { return compressed_; } // messages that cannot be read

private:
    struct Header {
        bool final;
        bool compressed;
        uint8_t opcode;
        bool masked;
        size_t size;     // of the header
        uint64_t length; // of the payload
    };

    bool readHeader(std::string_view text, Header &header) const;
    void takePayload(const Header &header);

    std::string buffer_;
    size_t begin_ = 0;
    std::string message_;
    bool inMessage_ = false;
    bool isCompressed_ = false; // the message that is being joined
    bool handed_ = false;       // message_ was returned
    bool broken_ = false;
    size_t compressed_ = 0;
};

} // namespace cli

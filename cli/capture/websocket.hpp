// Divides a stream of WebSocket frames (RFC 6455 section 5) into SIP messages (RFC 7118).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

class WebSocket {
public:
    static constexpr size_t kLongestMessage = 320u << 10;

    // The caller appends the next bytes of the stream here, and calls next() until it returns
    // nothing.
    std::string &buffer() { return buffer_; }

    // The next whole message, unmasked and with its fragments joined; empty where more bytes are
    // needed or the stream is broken. Valid until the next call.
    std::string_view next();

    // Bytes of the stream were lost, so that the next frame cannot be found.
    void lose() { broken_ = true; }
    bool isBroken() const { return broken_; }
    size_t compressed() const { return compressed_; } // messages that are compressed and not read

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

// Divides a stream of bytes into SIP messages (RFC 3261 section 18.3).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// Content-Length says where a message ends. A message without it, which RFC 3261 does not allow
// over TCP, ends before the next message or with the bytes that were received with it. Other bytes
// are skipped up to the first line of a message. At most kLongestHead + kLongestBody bytes are
// kept.
class Framing {
public:
    static constexpr size_t kLongestHead = 64u << 10;
    static constexpr size_t kLongestBody = 256u << 10;

    // The caller appends the next bytes of the stream here, and calls next() until it returns
    // nothing.
    std::string &buffer() { return buffer_; }

    // The next whole message; empty where more bytes are needed. Valid until the next call.
    std::string_view next();

    // Bytes of the stream were lost: drops the incomplete message in the buffer.
    void lose();

    size_t passed() const { return passed_; } // skipped bytes, line ends not counted
    size_t tooLong() const { return tooLong_; }

private:
    bool findStart();
    bool findHead();
    void measure();
    void drop(size_t size);

    std::string buffer_;
    size_t begin_ = 0;     // of the unused bytes in the buffer
    size_t scanned_ = 0;   // bytes from begin_ on that hold no end of the headers
    size_t head_ = 0;      // size of the headers with the empty line; 0: not known
    size_t size_ = 0;      // of the whole message, where head_ is known
    bool open_ = false;    // the message has no length
    bool seeking_ = false; // within bytes that are skipped
    size_t passed_ = 0;
    size_t tooLong_ = 0;
};

} // namespace cli

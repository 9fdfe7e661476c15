// SIP messages cut out of a stream of bytes (RFC 3261 section 18.3).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// A message ends by its Content-Length. One without it, which TCP does not allow, ends before the
// next message or with the bytes that came with it. What is no message is passed over up to a first
// line of one. At most kLongestHead + kLongestBody bytes are kept.
class Framing {
public:
    static constexpr size_t kLongestHead = 64u << 10;
    static constexpr size_t kLongestBody = 256u << 10;

    // The bytes that follow are appended here, and next() is called until it is empty.
    std::string &buffer() { return buffer_; }

    // The next whole message; empty where more is needed. Valid until the next call.
    std::string_view next();

    // Bytes were lost: what is in the buffer has no end.
    void lose();

    size_t passed() const { return passed_; } // bytes that were no message, without line ends
    size_t tooLong() const { return tooLong_; }

private:
    bool findStart();
    bool findHead();
    void measure();
    void drop(size_t size);

    std::string buffer_;
    size_t begin_ = 0;     // of what is not yet used in the buffer
    size_t scanned_ = 0;   // from begin_: where no end of the headers was found
    size_t head_ = 0;      // size of the headers with the empty line; 0: not known
    size_t size_ = 0;      // of the whole message, once head_ is known
    bool open_ = false;    // the message has no length
    bool seeking_ = false; // in the middle of what is no message
    size_t passed_ = 0;
    size_t tooLong_ = 0;
};

} // namespace cli

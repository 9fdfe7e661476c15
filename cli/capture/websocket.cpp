#include "capture/websocket.hpp"

#include "capture/bytes.hpp"

namespace cli {

namespace {

enum Opcode : uint8_t { kContinuation = 0, kText = 1, kBinary = 2, kClose = 8 };

constexpr size_t kMask = 4;

} // namespace

bool WebSocket::readHeader(std::string_view text, Header &header) const {
    if (text.size() < 2) {
        return false;
    }
    const uint8_t first = byteAt(text, 0);
    const uint8_t second = byteAt(text, 1);
    header.final = (first & 0x80) != 0;
    header.compressed = (first & 0x40) != 0;
    header.opcode = first & 0x0f;
    header.masked = (second & 0x80) != 0;
    header.length = second & 0x7f;
    header.size = 2;
    if (header.length == 126) {
        header.length = big16(text, 2);
        header.size = 4;
    } else if (header.length == 127) {
        header.length = uint64_t(big32(text, 2)) << 32 | big32(text, 6);
        header.size = 10;
    }
    header.size += header.masked ? kMask : 0;
    return text.size() >= header.size;
}

// Appends the payload after the header to the message.
void WebSocket::takePayload(const Header &header) {
    const std::string_view text = std::string_view(buffer_).substr(begin_);
    const std::string_view payload = text.substr(header.size, static_cast<size_t>(header.length));
    if (!header.masked) {
        message_.append(payload);
        return;
    }
    const std::string_view mask = text.substr(header.size - kMask, kMask);
    const size_t before = message_.size();
    message_.append(payload);
    for (size_t i = 0; i < payload.size(); ++i) {
        message_[before + i] = static_cast<char>(message_[before + i] ^ mask[i % kMask]);
    }
}

std::string_view WebSocket::next() {
    if (handed_) {
        message_.clear();
        handed_ = false;
    }
    while (!broken_) {
        Header header = {};
        const std::string_view text = std::string_view(buffer_).substr(begin_);
        if (!readHeader(text, header)) {
            break;
        }
        const bool isData = header.opcode <= kBinary;
        if (header.length + (isData ? message_.size() : 0) > kLongestMessage ||
            (isData && (header.opcode == kContinuation) != inMessage_)) {
            broken_ = true;
            break;
        }
        if (text.size() - header.size < header.length) {
            break;
        }
        if (isData) {
            isCompressed_ = header.opcode == kContinuation ? isCompressed_ : header.compressed;
            takePayload(header);
            inMessage_ = !header.final;
        }
        begin_ += header.size + static_cast<size_t>(header.length);
        broken_ = header.opcode == kClose;
        if (isData && header.final) {
            compressed_ += isCompressed_ ? 1 : 0;
            if (!isCompressed_ && !message_.empty()) {
                handed_ = true;
                return message_;
            }
            message_.clear();
        }
    }
    buffer_.erase(0, broken_ ? buffer_.size() : begin_);
    begin_ = 0;
    return {};
}

} // namespace cli

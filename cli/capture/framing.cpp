#include "capture/framing.hpp"

#include <algorithm>
#include <charconv>

#include "sip/message.hpp"
#include "sip/mime.hpp"

namespace cli {

namespace {

bool never(std::string_view /*line*/) {
    return false;
}

// The offset after the first empty line from the given offset on; 0 where there is none.
size_t afterEmptyLine(std::string_view text, size_t offset) {
    for (size_t feed = text.find('\n', offset); feed != std::string_view::npos;
         feed = text.find('\n', feed + 1)) {
        const std::string_view rest = text.substr(feed + 1, 2);
        if (rest.starts_with('\n') || rest == "\r\n") {
            return feed + 1 + (rest.front() == '\n' ? 1 : 2);
        }
    }
    return 0;
}

} // namespace

void Framing::drop(size_t size) {
    begin_ += size;
    scanned_ = 0;
    head_ = 0;
    if (begin_ >= buffer_.size() / 2) {
        buffer_.erase(0, begin_);
        begin_ = 0;
    }
}

void Framing::lose() {
    passed_ += buffer_.size() - begin_;
    buffer_.clear();
    begin_ = 0;
    drop(0);
    seeking_ = true;
}

// Skips line ends between messages, and bytes that are not part of a message.
bool Framing::findStart() {
    const std::string_view text = std::string_view(buffer_).substr(begin_);
    const size_t lines = std::min(text.find_first_not_of("\r\n"), text.size());
    if (lines == text.size()) {
        drop(lines);
        return false;
    }
    const std::string_view rest = text.substr(lines);
    const size_t feed = rest.find('\n');
    if (feed == std::string_view::npos && rest.size() <= kLongestStartLine) {
        drop(lines);
        return false; // the line is not complete
    }
    const size_t start = findMessage(rest, 0);
    if (start == 0) {
        seeking_ = false;
        drop(lines);
        return true;
    }
    size_t dropped = start;
    if (start == rest.size()) { // the last line may become a first line of a message
        const size_t last = rest.rfind('\n');
        const size_t begin = last == std::string_view::npos ? 0 : last + 1;
        dropped = rest.size() - begin <= kLongestStartLine ? begin : rest.size();
    }
    seeking_ = true;
    passed_ += dropped;
    drop(lines + dropped);
    return start < rest.size();
}

bool Framing::findHead() {
    const std::string_view text = std::string_view(buffer_).substr(begin_);
    head_ = afterEmptyLine(text, scanned_);
    if (head_ == 0) {
        scanned_ = text.size() > 2 ? text.size() - 2 : 0;
        if (text.size() > kLongestHead) {
            ++tooLong_;
            lose();
        }
        return false;
    }
    if (head_ > kLongestHead) {
        ++tooLong_;
        drop(head_);
        seeking_ = true;
        return true;
    }
    measure();
    return true;
}

void Framing::measure() {
    const std::string_view head = std::string_view(buffer_).substr(begin_, head_);
    const Headers headers = readHeaders(head, lineAt(head, 0).next, never);
    open_ = !headers.contentLength;
    size_ = head_;
    if (headers.contentLength) {
        const std::string &value = *headers.contentLength;
        size_t length = 0;
        const auto read = std::from_chars(value.data(), value.data() + value.size(), length);
        if (length > kLongestBody || read.ec == std::errc::result_out_of_range) {
            ++tooLong_;
            drop(head_);
            seeking_ = true;
            return;
        }
        size_ += length;
    }
}

std::string_view Framing::next() {
    for (;;) {
        if (head_ == 0 && !findStart()) {
            return {};
        }
        if (head_ == 0 && !findHead()) {
            return {};
        }
        if (head_ != 0) {
            break; // otherwise the message found was too long: look for the next one
        }
    }
    const std::string_view text = std::string_view(buffer_).substr(begin_);
    if (open_) {
        size_ = std::min(findMessage(text, head_), std::min(text.size(), head_ + kLongestBody));
    }
    if (text.size() < size_) {
        return {};
    }
    const std::string_view message = text.substr(0, size_);
    begin_ += size_; // the buffer keeps its bytes for the caller
    scanned_ = 0;
    head_ = 0;
    return message;
}

} // namespace cli

#include "sip/message.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include "sip/mime.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr int kDeepestPart = 8;

constexpr std::string_view kVersion = "SIP/2.0";

// "INVITE sip:bob@example.com SIP/2.0" or "SIP/2.0 200 OK" (RFC 3261 sections 7.1, 7.2)
bool isFirstLine(std::string_view line) {
    if (line.size() > kLongestStartLine) {
        return false;
    }
    if (line.starts_with(kVersion)) {
        line.remove_prefix(kVersion.size());
        return line.size() >= 4 && line[0] == ' ' && isDigit(line[1]) && isDigit(line[2]) &&
               isDigit(line[3]) && (line.size() == 4 || line[4] == ' ');
    }
    if (!line.ends_with(kVersion)) {
        return false;
    }
    const size_t method = line.find(' ');
    const size_t uri = line.find(' ', method + 1);
    if (method == 0 || uri == std::string_view::npos || uri + 1 + kVersion.size() != line.size()) {
        return false;
    }
    const std::string_view word = line.substr(0, method);
    const bool isToken = std::all_of(word.begin(), word.end(), [](char byte) {
        return isAlnum(byte) || std::string_view("-.!%*_+`'~").find(byte) != std::string_view::npos;
    });
    return isToken && line.substr(method + 1, uri - method - 1).find(':') != std::string_view::npos;
}

// A quick test that few other lines pass comes first.
bool isSipStart(std::string_view line) {
    return line.size() > kVersion.size() && (line.back() == '0' || line.front() == 'S') &&
           isFirstLine(line);
}

bool never(std::string_view /*line*/) {
    return false;
}

std::string bytes(size_t count) {
    return counted(count, "byte", "bytes");
}

// Decides where the body of a message ends.
class Extent {
public:
    Extent(std::string_view text, size_t begin) : text_(text), begin_(begin) {}

    // The end before the next message and the empty lines before that.
    size_t natural() const {
        size_t end = findMessage(text_, begin_);
        if (end == text_.size()) {
            return end;
        }
        while (end > begin_ && text_[end - 1] == '\n') {
            const size_t lineEnd = end - (end - 1 > begin_ && text_[end - 2] == '\r' ? 2 : 1);
            if (lineEnd == begin_ || text_[lineEnd - 1] != '\n') {
                break;
            }
            end = lineEnd;
        }
        return end;
    }

    // The end according to the length, where the text agrees with it.
    std::optional<size_t> byLength(size_t length, bool bareLineFeeds) const {
        const std::optional<size_t> exact =
            length <= text_.size() - begin_ ? std::optional(begin_ + length) : std::nullopt;
        const std::optional<size_t> converted =
            bareLineFeeds ? endCountingCrLf(length) : std::nullopt;
        for (const auto fits :
             {&Extent::endsBeforeMessage, &Extent::endsItsLines, &Extent::touchesMessage}) {
            for (const std::optional<size_t> &end : {exact, converted}) {
                if (end && (this->*fits)(*end)) {
                    return end;
                }
            }
        }
        return std::nullopt;
    }

    // The same, where the text is long enough to decide.
    std::optional<size_t> settledBy(size_t length, bool bareLineFeeds) const {
        constexpr size_t kLookedAt = 2 * kLongestStartLine + 2;
        const size_t size = text_.size() - begin_;
        const bool isThere = length <= size && size - length >= kLookedAt;
        return isThere ? byLength(length, bareLineFeeds) : std::nullopt;
    }

    // The end of the lines of SDP from the line of the offset on.
    size_t endOfSdpLines(size_t offset) const {
        size_t at = lineBegin(offset);
        while (at < text_.size() && isSdpLine(at)) {
            at = lineAt(text_, at).next;
        }
        return at;
    }

private:
    // Whether another message, or only blanks up to the end, follow. Reads a bounded number of
    // bytes.
    bool endsBeforeMessage(size_t offset) const {
        const std::string_view ahead = text_.substr(0, offset + kLongestStartLine);
        const size_t next = ahead.find_first_not_of(" \t\r\n", offset);
        return next == std::string_view::npos || (text_[next - 1] == '\n' && touchesMessage(next));
    }

    // Whether the next message begins directly there, after a body without a last line end.
    bool touchesMessage(size_t offset) const {
        const LinePlace place = lineAt(text_.substr(0, offset + kLongestStartLine + 2), offset);
        return isSipStart(text_.substr(offset, place.end - offset));
    }

    // Whether the offset is at the end of a line, and no line of SDP follows.
    bool endsItsLines(size_t offset) const {
        const bool afterFeed = offset == begin_ || text_[offset - 1] == '\n';
        const std::string_view rest = text_.substr(offset);
        const bool beforeFeed = rest.starts_with('\n') || rest.starts_with("\r\n");
        return afterFeed ? !isSdpLine(offset)
                         : beforeFeed && !isSdpLine(lineAt(text_, offset).next);
    }

    // The end of that many bytes, where each LF alone counts as CR LF and the last line end may be
    // missing; not beyond the next message.
    std::optional<size_t> endCountingCrLf(size_t length) const {
        const size_t last = findMessage(text_, begin_);
        size_t count = 0;
        size_t at = begin_;
        for (; at < last && count < length; ++at) {
            count += text_[at] == '\n' && (at == begin_ || text_[at - 1] != '\r') ? 2 : 1;
        }
        const bool meets = count == length || (at == text_.size() && count + 2 == length);
        return meets ? std::optional(at) : std::nullopt;
    }

    bool isSdpLine(size_t offset) const {
        return offset + 1 < text_.size() && isLetter(text_[offset]) && text_[offset + 1] == '=';
    }

    size_t lineBegin(size_t offset) const {
        const size_t feed = text_.substr(begin_, offset - begin_).rfind('\n');
        return feed != std::string_view::npos ? begin_ + feed + 1 : begin_;
    }

    std::string_view text_;
    size_t begin_;
};

class MessageTaker {
public:
    MessageTaker(std::string_view text, size_t start, Bodies &found)
        : text_(text), start_(start), found_(found) {}

    size_t take() {
        const Headers headers = readHeaders(text_, lineAt(text_, start_).next, isSipStart);
        const size_t end = endOf(headers);
        takeEntity(headers, start_, headers.bodyAt, end, 0);
        return end;
    }

    std::optional<size_t> takeSettled() {
        const Headers headers = readHeaders(text_, lineAt(text_, start_).next, isSipStart);
        const std::optional<size_t> length = lengthOf(headers);
        const std::optional<size_t> end =
            length ? Extent(text_, headers.bodyAt).settledBy(*length, headers.bareLineFeeds)
                   : std::nullopt;
        if (end) {
            takeEntity(headers, start_, headers.bodyAt, *end, 0);
        }
        return end;
    }

private:
    // The number in Content-Length; nothing where it is not a number.
    static std::optional<size_t> lengthOf(const Headers &headers) {
        const std::string value = headers.contentLength.value_or("");
        size_t length = 0;
        const char *const end = value.data() + value.size();
        const auto [rest, error] = std::from_chars(value.data(), end, length);
        return error == std::errc{} && rest == end ? std::optional(length) : std::nullopt;
    }

    size_t endOf(const Headers &headers) {
        const Extent extent(text_, headers.bodyAt);
        if (!headers.contentLength) {
            return extent.natural();
        }
        const std::optional<size_t> length = lengthOf(headers);
        if (!length) {
            problem(Problem::Wrong, start_, "the SIP message's Content-Length is not a number");
            return extent.natural();
        }
        if (const auto end = extent.byLength(*length, headers.bareLineFeeds)) {
            return *end;
        }
        return endDespite(*length, headers, extent);
    }

    // For a wrong length: reports it if it concerns a body.
    size_t endDespite(size_t length, const Headers &headers, const Extent &extent) {
        const size_t begin = headers.bodyAt;
        const std::string says = "the SIP message's Content-Length is " + std::to_string(length);
        const size_t natural = extent.natural();
        if (length > natural - begin) {
            problem(Problem::Wrong, start_,
                    says + ", but only " + bytes(natural - begin) + " of body follow");
            return natural;
        }
        if (!equalsIgnoringCase(mediaType(headers.contentType), "application/sdp")) {
            return begin + length;
        }
        const size_t end = extent.endOfSdpLines(begin);
        const size_t cut = std::max(end, extent.endOfSdpLines(begin + length));
        problem(Problem::Wrong, start_,
                says + (cut > begin + length
                            ? ", which cuts the body: it has " + bytes(cut - begin)
                            : ", but the body's lines end after " + bytes(end - begin)));
        return std::max(cut, begin);
    }

    // `at` is where problems are reported.
    void takeEntity(const Headers &headers, size_t at, size_t begin, size_t end, int depth) {
        const std::string_view type = mediaType(headers.contentType);
        if (equalsIgnoringCase(type, "application/sdp")) {
            if (!headers.encoding.empty()) {
                problem(Problem::Unusable, at, "the body is encoded as " + headers.encoding);
                return;
            }
            found_.bodies.push_back({begin, end - begin, 0, start_, true});
        } else if (equalsIgnoringCase(type.substr(0, 10), "multipart/")) {
            takeParts(headers, at, begin, end, depth);
        }
    }

    void takeParts(const Headers &headers, size_t at, size_t begin, size_t end, int depth) {
        const std::optional<std::string> boundary = parameter(headers.contentType, "boundary");
        if (!boundary || boundary->empty()) {
            problem(Problem::Unusable, at, "the multipart body's Content-Type has no boundary");
            return;
        }
        if (depth == kDeepestPart) {
            problem(Problem::Unusable, at, "the multipart bodies are nested too deeply");
            return;
        }
        const std::string_view upToEnd = text_.substr(0, end);
        for (const PartPlace &part : partsOf(upToEnd, begin, *boundary)) {
            const std::string_view upToPart = text_.substr(0, part.end);
            const Headers inner = readHeaders(upToPart, part.begin, never);
            takeEntity(inner, part.begin, inner.bodyAt, part.end, depth + 1);
        }
    }

    void problem(Problem::Kind kind, size_t offset, std::string text) {
        found_.problems.push_back({kind, offset, std::move(text)});
    }

    std::string_view text_;
    size_t start_;
    Bodies &found_;
};

} // namespace

size_t findMessage(std::string_view text, size_t offset) {
    while (offset < text.size()) {
        const LinePlace place = lineAt(text, offset);
        if (isSipStart(text.substr(offset, place.end - offset))) {
            return offset;
        }
        offset = place.next;
    }
    return text.size();
}

size_t takeMessage(std::string_view text, size_t start, Bodies &found) {
    return MessageTaker(text, start, found).take();
}

std::optional<size_t> takeSettledMessage(std::string_view text, size_t start, Bodies &found) {
    return MessageTaker(text, start, found).takeSettled();
}

} // namespace cli

#include "sip/bodies.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include "sip/message.hpp"
#include "sip/mime.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr std::string_view kBlanks(" \t\r\n\0", 5);

// Whether the text begins with a letter and "=", after any empty lines.
bool beginsAsSdp(std::string_view text) {
    const size_t first = text.find_first_not_of("\r\n");
    return first != std::string_view::npos && isLetter(text[first]) &&
           text.substr(first + 1).starts_with('=');
}

// Whether the line is empty to the decoder, and so ends a body.
bool isEmptyLine(std::string_view line) {
    return line.find_first_not_of(kDroppedBeforeLine) == std::string_view::npos;
}

// The first empty line after a line that is not empty; the end of the text where there is none.
LinePlace emptyLine(std::string_view text, size_t offset) {
    const size_t first = text.find_first_not_of("\r\n", offset);
    for (size_t at = std::min(first, text.size()); at < text.size();) {
        const LinePlace place = lineAt(text, at);
        if (isEmptyLine(text.substr(at, place.end - at))) {
            return place;
        }
        at = place.next;
    }
    return {text.size(), text.size(), text.size()};
}

// Whether the text has a complete first line of a message, so that it is a text of messages.
bool looksLikeMessages(std::string_view text) {
    return text.find_first_not_of("\r\n") != std::string_view::npos && !beginsAsSdp(text) &&
           findMessage(text.substr(0, text.rfind('\n') + 1), 0) < text.rfind('\n') + 1;
}

// Whether the text continues a body after an empty line, and does not begin another body.
bool goesOn(std::string_view text) {
    return beginsAsSdp(text) && text.front() != 'v';
}

// The empty line that ends the body: lines of SDP follow each empty line before it.
LinePlace lastEmptyLine(std::string_view text) {
    LinePlace empty = emptyLine(text, 0);
    for (;;) {
        const size_t next = text.find_first_not_of(kBlanks, empty.next);
        if (next == std::string_view::npos || !goesOn(text.substr(next))) {
            return empty;
        }
        empty = emptyLine(text, next);
    }
}

// How much of an incomplete text may be dropped without losing the first line of a message.
size_t lastLineBegin(std::string_view text) {
    const size_t feed = text.rfind('\n');
    return feed != std::string_view::npos && text.size() - feed <= kLongestStartLine
               ? feed + 1
               : text.size() - std::min(text.size() - 1, kLongestStartLine);
}

void noteUnread(size_t offset, Bodies &found) {
    found.problems.push_back(
        {Problem::Note, offset, "what follows an empty line in a body is not read"});
}

// Notes text in the body of a message that the decoder does not read.
void noteUnreadOf(std::string_view text, Bodies &here) {
    for (const BodyPlace &body : here.bodies) {
        const std::string_view upToEnd = text.substr(0, body.offset + body.size);
        const LinePlace empty = emptyLine(upToEnd, body.offset);
        const size_t rest = upToEnd.find_first_not_of(kBlanks, empty.next);
        if (rest != std::string_view::npos) {
            noteUnread(rest, here);
        }
    }
}

// Counts line feeds. Sixteen bytes are compared at once and counted in sixteen lanes, which are
// added up every 255 rounds: std::count compares one byte at a time.
size_t lineFeeds(std::string_view text) {
    constexpr size_t kWidth = 16;
    constexpr size_t kMostRounds = 255; // a lane is one byte
    using Bytes [[gnu::vector_size(kWidth)]] = unsigned char;
    Bytes feed;
    std::memset(&feed, '\n', kWidth);
    size_t count = 0;
    while (text.size() >= kWidth) {
        const size_t rounds = std::min(text.size() / kWidth, kMostRounds);
        Bytes counts = {};
        for (size_t i = 0; i < rounds; ++i) {
            Bytes bytes;
            std::memcpy(&bytes, text.data() + i * kWidth, kWidth);
            counts -= reinterpret_cast<Bytes>(bytes == feed); // true is a byte of -1
        }
        std::array<uint64_t, 2> halves = {};
        std::memcpy(halves.data(), &counts, kWidth);
        for (const uint64_t half : halves) { // adds bytes to pairs, and the four pairs
            constexpr uint64_t kPairs = 0x00ff00ff00ff00ff;
            count += ((half & kPairs) + (half >> 8 & kPairs)) * 0x0001000100010001 >> 48;
        }
        text.remove_prefix(rounds * kWidth);
    }
    return count + static_cast<size_t>(std::ranges::count(text, '\n'));
}

// The line numbers of offsets, for offsets that mostly increase.
class LineCounter {
public:
    LineCounter(std::string_view text, size_t line) : text_(text), line_(line) {}

    size_t lineOf(size_t offset) {
        const size_t begin = std::min(at_, offset);
        const size_t feeds = lineFeeds(text_.substr(begin, std::max(at_, offset) - begin));
        line_ = offset >= at_ ? line_ + feeds : line_ - feeds;
        at_ = offset;
        return line_;
    }

private:
    std::string_view text_;
    size_t line_;
    size_t at_ = 0;
};

} // namespace

void Bodies::clear() {
    bodies.clear();
    messages.clear();
    problems.clear();
}

size_t BodyFinder::take(std::string_view text, bool last, Bodies &found) {
    here_.clear();
    const size_t done = step(text, last, here_);
    settle(text, done);
    passed_ += done;
    found.bodies.insert(found.bodies.end(), here_.bodies.begin(), here_.bodies.end());
    found.messages.insert(found.messages.end(), here_.messages.begin(), here_.messages.end());
    std::ranges::move(here_.problems, std::back_inserter(found.problems));
    return done;
}

size_t BodyFinder::step(std::string_view text, bool last, Bodies &found) {
    switch (mode_) {
    case Mode::Start:
    case Mode::Skipping: return takeStart(text, last, found);
    case Mode::Messages: return takeMessageAhead(text, last, found);
    case Mode::Plain: return takePlain(text, last, found);
    case Mode::AfterBody: break;
    }
    return skipToBody(text, last, found);
}

// Turns the offsets in this text into places in the input, and counts the lines of the part that is
// done.
void BodyFinder::settle(std::string_view text, size_t done) {
    LineCounter lines(text, line_);
    for (BodyPlace &message : here_.messages) {
        message.line = lines.lineOf(message.offset);
        message.offset += passed_;
    }
    for (BodyPlace &body : here_.bodies) {
        body.line = lines.lineOf(body.offset);
        body.offset += passed_;
        body.message += passed_;
        found_ = true;
    }
    for (Problem &problem : here_.problems) {
        problem.line = lines.lineOf(problem.offset);
        problem.offset += passed_;
        found_ = found_ || problem.kind != Problem::Note;
    }
    line_ = lines.lineOf(done);
}

size_t BodyFinder::takeStart(std::string_view text, bool last, Bodies &found) {
    if (mode_ == Mode::Start && !last && text.size() < kAhead && !looksLikeMessages(text)) {
        return 0;
    }
    if (mode_ == Mode::Start && beginsAsSdp(text)) {
        mode_ = Mode::Plain;
        return takePlain(text, last, found);
    }
    if (findMessage(text, 0) < text.size()) {
        mode_ = Mode::Messages;
        return takeMessageAhead(text, last, found);
    }
    if (mode_ == Mode::Start && last) {
        found.bodies.push_back({0, text.size()});
        return text.size();
    }
    mode_ = Mode::Skipping;
    return last ? text.size() : lastLineBegin(text);
}

size_t BodyFinder::takeMessageAhead(std::string_view text, bool last, Bodies &found) {
    const size_t start = findMessage(text, 0);
    if (start == text.size()) {
        return last ? text.size() : lastLineBegin(text);
    }
    std::optional<size_t> end;
    if (!last && text.size() - start < kAhead) {
        end = takeSettledMessage(text, start, found);
        if (!end) {
            return start; // more of the message must be read
        }
    }
    if (messages_++ == 0) {
        firstMessage_ = {passed_ + start, 0, LineCounter(text, line_).lineOf(start)};
    }
    const size_t next = end ? *end : takeMessage(text, start, found);
    found.messages.push_back({start, next - start, 0, start, true});
    noteUnreadOf(text, found);
    return next;
}

size_t BodyFinder::takePlain(std::string_view text, bool last, Bodies &found) {
    if (!last && text.size() < kAhead) {
        return 0;
    }
    const LinePlace empty = lastEmptyLine(text);
    const bool more = text.find_first_not_of(kBlanks, empty.next) != std::string_view::npos;
    mode_ = Mode::AfterBody;
    const bool whole = last && !more;
    found.bodies.push_back({0, whole ? text.size() : empty.begin});
    noteUnreadOf(text, found);
    noted_ = !found.problems.empty();
    return whole ? text.size() : empty.next;
}

// After a body: finds another body or a message, and skips other text.
size_t BodyFinder::skipToBody(std::string_view text, bool last, Bodies &found) {
    for (size_t at = 0; at < text.size();) {
        const LinePlace place = lineAt(text, at);
        const std::string_view line = text.substr(at, place.end - at);
        if (line.starts_with("v=") || findMessage(text.substr(0, place.next), at) == at) {
            mode_ = line.starts_with("v=") ? Mode::Plain : Mode::Messages;
            return at != 0 ? at : step(text, last, found);
        }
        if (!noted_ && !isEmptyLine(line)) {
            noteUnread(at, found);
            noted_ = true;
        }
        at = place.next;
    }
    return last ? text.size() : lastLineBegin(text);
}

void BodyFinder::finish(Bodies &found) const {
    if (mode_ == Mode::Skipping) {
        found.problems.push_back({Problem::Unusable, 0,
                                  "it holds no SIP message, and " + std::to_string(passed_) +
                                      " bytes are too many for a body",
                                  1});
    } else if (mode_ == Mode::Messages && !found_) {
        found.problems.push_back({Problem::Unusable, firstMessage_.offset,
                                  messages_ > 1 ? "no SIP message carries an application/sdp body"
                                                : "the SIP message carries no application/sdp body",
                                  firstMessage_.line});
    }
}

Bodies bodiesOfMessage(std::string_view message) {
    Bodies found;
    takeMessage(message, 0, found);
    noteUnreadOf(message, found);
    return found;
}

Bodies findBodies(std::string_view text) {
    Bodies found;
    BodyFinder finder;
    do {
        text.remove_prefix(finder.take(text, true, found));
    } while (!text.empty());
    finder.finish(found);
    return found;
}

} // namespace cli

// The data of the repair of one text: its lines, the rows of the report, and their memory.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "text/bytes.hpp"
#include "tidy/rules.hpp"

namespace sdpline::tidy {

// One line of the text, or one that was inserted; or a run, which is several consecutive lines that
// do not change. The array of lines is in the order of the given text. Once lines have been
// arranged they are linked in the order in which they will be written.
struct Line {
    std::string_view text;     // as it will be written, without the end of the (last) line
    std::string_view more;     // is written after it: the rest of a line from which a part was cut
    std::string_view original; // as it was given; empty, at its place, for an inserted line; of a
                               // run the first line
    std::string_view end;      // CR LF, LF, or nothing where the text ends
    Line *next;
    Line *extra;        // a line put in beside this one, null for none
    uint32_t number;    // of the given text, from 1; of a line put in, that of the line it precedes
    uint32_t count;     // the number of lines
    uint32_t newNumber; // of the repaired text, from 1; 0: not written
    char key;           // the letter before "=", of a run that of its first line; 0 for none
    uint8_t rank;       // where its kind is in the order of lines
    bool aside;         // goes to the end of its kind, wherever it was
    bool deferred;      // an m= line whose formats are those of the lines below, when repaired
    bool isInOrder;     // an m= line of whose description no line moves

    size_t size() const { return text.size() + more.size() + end.size(); }
};

// A line whose other fields are not set.
inline Line lineOf(std::string_view text, std::string_view original, std::string_view end,
                   uint32_t number, char key) {
    return {.text = text,
            .more = {},
            .original = original,
            .end = end,
            .next = nullptr,
            .extra = nullptr,
            .number = number,
            .count = 1,
            .newNumber = 0,
            .key = key,
            .rank = 0,
            .aside = false,
            .deferred = false,
            .isInOrder = false};
}

// The rank of a line that is not written.
inline constexpr uint8_t kNotWritten = 0xFF;

// A linked list of lines. Appending takes constant time.
struct LineList {
    Line *first = nullptr;
    Line *last = nullptr;

    bool empty() const { return first == nullptr; }
    void append(Line &line) {
        (first == nullptr ? first : last->next) = &line;
        last = &line;
        line.next = nullptr;
    }
    void append(const LineList &more) {
        if (!more.empty()) {
            (first == nullptr ? first : last->next) = more.first;
            last = more.last;
        }
    }
};

// A row of the report, before the position of its line in the repaired text is known.
struct Found {
    Rule rule;
    const Line *line;
    uint32_t offset; // in the given line
};

// Memory of a block of the services, cut from few allocations and never freed one by one. After a
// failed request every later one fails; users test hasFailed() before they use the text.
class Memory {
public:
    // `first` is the size of the first allocation, which is enough for most texts.
    Memory(SDPMemCp *memCp, uint32_t first) : memCp_(memCp), first_(first), next_(first) {}
    // The buffer is used first; when it is full, a block is made.
    Memory(std::span<char> buffer, uint32_t first)
        : first_(first), next_(first), free_(buffer.data()), left_(buffer.size()) {}

    void *take(size_t size) {
        size = (size + 7) & ~size_t{7};
        if (size > left_) {
            grow(size);
        }
        char *const begin = free_;
        free_ += left_ != 0 ? size : 0;
        left_ -= left_ != 0 ? size : 0;
        return begin;
    }
    // An array that is not initialised, or null.
    template <class Item>
    Item *array(size_t count) {
        return static_cast<Item *>(take(count * sizeof(Item)));
    }
    bool hasFailed() const { return failed_; }

    // From here on memory comes from the block, so that it can outlive the buffer. Each request
    // gets memory of its own; `size` bytes are enough for the requests that follow.
    void leaveBuffer(size_t size) {
        if (memCp_ == nullptr) {
            first_ = static_cast<uint32_t>(size);
            next_ = 0;
            left_ = 0;
        }
    }
    // Null as long as the buffer was sufficient.
    SDPMemCp *block() const { return memCp_; }

private:
    void grow(size_t size);

    SDPMemCp *memCp_ = nullptr;
    uint32_t first_; // of the block
    uint32_t next_;  // of the next allocation, at least
    char *free_ = nullptr;
    size_t left_ = 0;
    bool failed_ = false;
};

// A text under construction, in memory of a known size. Parts that are adjacent in their source are
// copied together.
class Draft {
public:
    Draft(Memory &memory, size_t size)
        : begin_(static_cast<char *>(memory.take(size))), at_(begin_),
          end_(begin_ + (begin_ != nullptr ? size : 0)) {}

    SDPLINE_INLINE Draft &operator<<(std::string_view part) {
        if (part.data() == pendingEnd_) {
            pendingEnd_ += part.size();
        } else if (!part.empty()) {
            at_ = copied(at_, end_, pending_, pendingEnd_);
            pending_ = part.data();
            pendingEnd_ = pending_ + part.size();
        }
        return *this;
    }
    std::string_view text() {
        at_ = copied(at_, end_, pending_, pendingEnd_);
        pending_ = pendingEnd_ = nullptr;
        return {begin_, static_cast<size_t>(at_ - begin_)};
    }

private:
    // Returns the end of the copy. A static function, so that a draft can be in registers.
    [[gnu::noinline]] static char *copied(char *at, const char *limit, const char *part,
                                          const char *partEnd) {
        const auto size = static_cast<size_t>(partEnd - part);
        if (size > static_cast<size_t>(limit - at)) {
            return at;
        }
        copyBytes(at, part, size);
        return at + size;
    }

    char *begin_;
    char *at_;
    char *end_;
    const char *pending_ = nullptr;
    const char *pendingEnd_ = nullptr;
};

// Writes a number in decimal digits.
std::string_view decimal(Memory &memory, uint32_t number);

class Workspace {
public:
    // The number of entries for lines, and of rows, that are there at first.
    static constexpr uint32_t kFewLines = 32;
    static constexpr uint32_t kFewRows = 16;
    static constexpr size_t kLeastBuffer = kFewLines * sizeof(Line) + kFewRows * sizeof(Found);

    // The buffer has at least kLeastBuffer bytes; `size` is the size of the first allocation when
    // it is full.
    Workspace(std::span<char> buffer, uint32_t size, std::string_view given, uint64_t rules,
              bool rtpFamily)
        : memory(buffer, size), text(given), lines(memory.array<Line>(kFewLines)), rules_(rules),
          rtpFamily_(rtpFamily), found_(memory.array<Found>(kFewRows)) {}

    Memory memory;
    const std::string_view text;
    Line *lines;
    std::string_view tail;             // the first empty line and the text after it
    std::string_view lineEnd = "\r\n"; // of inserted lines
    uint32_t entryCount = 0;           // of `lines`
    uint32_t lineCount = 0;            // of the text
    uint32_t takenCount = 0;           // of lines, that the decoder took before it refused one
    uint32_t takenSize = 0;            // and bytes of them
    uint32_t takenEntry = 0;           // the entry of these lines
    const char *takenMedia = nullptr;  // the last m= line among them
    bool endsInCr = false;             // each line, there being no LF
    bool goesOn = false;               // after the empty line that ends the description
    bool hasSecondVersion = false;     // or text before v=: that is never repaired
    bool hasDeferred = false;          // lines
    bool hasInnerEnd = false;          // a line may have a NUL or a CR inside
    bool inOrder = true;               // the lines need no arranging, and none is missing
    bool movesLines = false;           // a repair of the section changed the order, or added a line

    bool wants(Rule rule) const { return (rules_ & bitOf(rule)) != 0; }
    // The number of lines that need no repair within them, because the decoder accepted them. It
    // does not apply where lines end in CR, which the decoder does not count.
    uint32_t takenLines() const { return endsInCr ? 0 : takenCount; }
    // The decoder's setting: RTP/SAVPF and the like take payload numbers.
    bool takesRtpFamily() const { return rtpFamily_; }

    // Adds a row to the report; `at` points into the given line.
    void report(Rule rule, const Line &line, const char *at) {
        if (foundCount_ != foundCapacity_ || growFound()) [[likely]] {
            const auto offset = static_cast<uint32_t>(at - line.original.data());
            found_[foundCount_++] = {rule, &line, offset};
        }
    }
    void report(Rule rule, const Line &line) { report(rule, line, line.original.data()); }

    const Found *found() const { return found_; }
    uint32_t foundCount() const { return foundCount_; }
    // Moves the lines, of which there are `used`, to an array of `count`. Returns false without
    // memory.
    bool growLines(uint32_t used, uint32_t count);

    // Makes a line to be inserted; null without memory.
    Line *newLine(std::string_view content, const Line &before);

private:
    [[gnu::noinline]] bool growFound();

    uint64_t rules_;
    bool rtpFamily_;
    Found *found_;
    uint32_t foundCount_ = 0;
    uint32_t foundCapacity_ = kFewRows;
};

// ---- The passes, in their order. Each is linear in the text.

// Cuts the text into lines, and repairs the fields of those that the decoder did not accept, by
// their kinds.
void readLines(Workspace &work);

// Sorts the lines, removes duplicate ones, and inserts missing ones.
[[gnu::noinline]] LineList arrange(Workspace &work);

// ---- Bytes and words

// A set of lower-case letters, one bit for each.
constexpr uint32_t lettersOf(std::string_view letters) {
    uint32_t set = 0;
    for (const char letter : letters) {
        set |= 1u << (letter - 'a');
    }
    return set;
}

constexpr bool isOneOf(uint32_t letters, char byte) {
    return byte >= 'a' && byte <= 'z' && (letters >> (byte - 'a') & 1) != 0;
}

constexpr bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

// Marks the bytes below a limit, which is at most 0x80, among eight bytes of a text: sets their
// high bits.
inline uint64_t bytesBelow(uint8_t limit, const char *bytes) {
    constexpr uint64_t each = 0x0101010101010101;
    uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    const uint64_t above = ((value & 0x7F * each) + (0x80u - limit) * each) | value;
    return ~above & 0x80 * each;
}

// Marks the bytes equal to `byte`. Bytes next to a marked one may be marked too.
inline uint64_t bytesEqual(char byte, const char *bytes) {
    constexpr uint64_t each = 0x0101010101010101;
    uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    value ^= static_cast<uint8_t>(byte) * each;
    return (value - each) & ~value & 0x80 * each;
}

// The number of bytes before the first one that bytesBelow or bytesEqual has marked.
inline ptrdiff_t bytesBefore(uint64_t marks) {
    return (std::endian::native == std::endian::little ? std::countr_zero(marks)
                                                       : std::countl_zero(marks)) /
           8;
}

// Returns the first blank or control character, else the end.
inline const char *findControl(const char *at, const char *end) {
    for (; end - at >= 8; at += 8) {
        if (const uint64_t below = bytesBelow(' ' + 1, at); below != 0) {
            return at + bytesBefore(below);
        }
    }
    while (at != end && static_cast<uint8_t>(*at) > ' ') {
        ++at;
    }
    return at;
}

// Returns the first blank or tab, else the end.
inline const char *findBlank(const char *at, const char *end) {
    for (; end - at >= 8; at += 8) {
        if (const uint64_t below = bytesBelow(' ' + 1, at); below != 0) {
            at += bytesBefore(below);
            break;
        }
    }
    while (at != end && (static_cast<uint8_t>(*at) > ' ' || !isBlank(*at))) {
        ++at;
    }
    return at;
}

// Returns the first byte that is neither a blank nor a tab, else the end.
constexpr const char *afterBlanks(const char *at, const char *end) {
    while (at != end && isBlank(*at)) {
        ++at;
    }
    return at;
}

// The same as starts_with, ends_with and ==, without a call.
template <size_t kSize>
bool beginsWith(std::string_view text, const char (&literal)[kSize]) {
    return text.size() >= kSize - 1 && equalBytes(text.data(), literal, kSize - 1);
}

template <size_t kSize>
bool endsWith(std::string_view text, const char (&literal)[kSize]) {
    return text.size() >= kSize - 1 &&
           equalBytes(text.data() + text.size() - (kSize - 1), literal, kSize - 1);
}

template <size_t kSize>
bool equals(std::string_view text, const char (&literal)[kSize]) {
    return text.size() == kSize - 1 && equalBytes(text.data(), literal, kSize - 1);
}

// The text without its first `bytes` bytes, of which it must have as many. Unlike substr() it
// cannot throw, so that a C program needs no C++ run-time library.
constexpr std::string_view withoutFirst(std::string_view text, size_t bytes) {
    return {text.data() + bytes, text.size() - bytes};
}

// The text up to its first blank or tab.
inline std::string_view wordOf(std::string_view text) {
    return {text.data(),
            static_cast<size_t>(findBlank(text.data(), text.data() + text.size()) - text.data())};
}

constexpr bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

// The number of digits at the start of a text.
constexpr size_t countDigits(std::string_view text) {
    size_t count = 0;
    while (count != text.size() && isDigit(text[count])) {
        ++count;
    }
    return count;
}

inline bool areEightDigits(const char *bytes) {
    constexpr uint64_t each = 0x0101010101010101;
    uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    const uint64_t high = value & 0xF0 * each;
    const uint64_t highOfNext = (value + 0x06 * each) & 0xF0 * each; // 0x40 beyond a 9
    return (high | highOfNext >> 4) == 0x33 * each;
}

inline bool isNumber(std::string_view text) {
    if (text.size() < 8) {
        return !text.empty() && countDigits(text) == text.size();
    }
    const size_t last = text.size() - 8; // the last eight may overlap those before
    for (size_t at = 0; at < last; at += 8) {
        if (!areEightDigits(text.data() + at)) {
            return false;
        }
    }
    return areEightDigits(text.data() + last);
}

constexpr char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

// Whether two texts are equal but for the case of ASCII letters.
constexpr bool sameIgnoringCase(std::string_view first, std::string_view second) {
    if (first.size() != second.size()) {
        return false;
    }
    for (size_t i = 0; i < first.size(); ++i) {
        if (lower(first[i]) != lower(second[i])) {
            return false;
        }
    }
    return true;
}

constexpr std::string_view withoutBlanksBefore(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

constexpr std::string_view withoutBlanksAfter(std::string_view text) {
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace sdpline::tidy

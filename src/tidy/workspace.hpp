// What the repairs of one text share: its lines, the rows of the report, and the memory of both.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "tidy/rules.hpp"

namespace sdpline::tidy {

// One line of the text, or one that was put in. Lines are linked in the order in which they will be
// written; their array is in the order of the text.
struct Line {
    std::string_view text;     // as it will be written, without its end
    std::string_view original; // as it was given; empty for a line that was put in
    std::string_view end;      // CR LF, LF, or nothing where the text ends
    Line *next;
    Line *extra;        // a line put in beside this one, null for none
    uint32_t number;    // of the given text, from 1; of a line put in, that of the line it precedes
    uint32_t newNumber; // of the repaired text, from 1; 0: not written
    char key;           // the letter before "=", 0 for a line without
    uint8_t rank;       // where its kind is in the order of lines
    bool aside;         // goes to the end of its kind, wherever it was
};

// The rank of a line that is not written.
inline constexpr uint8_t kNotWritten = 0xFF;

// Lines in a row: appending takes the same time whatever their number.
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

// A row before it is known where its line went.
struct Found {
    Rule rule;
    const Line *line;
    uint32_t offset; // in the line as it was given
};

// Memory of a block that comes from the services. A request that fails makes every later one fail;
// who asked for memory tests hasFailed() before the text is used.
class Memory {
public:
    explicit Memory(SDPMemCp *memCp) : memCp_(memCp) {}

    void *take(uint32_t size) {
        void *const memory = failed_ ? nullptr : memCp_->pfnAlloc(memCp_, size);
        failed_ = memory == nullptr;
        return memory;
    }
    // An array, or null.
    template <class Item>
    Item *array(uint32_t count) {
        return static_cast<Item *>(take(count * static_cast<uint32_t>(sizeof(Item))));
    }
    // Bytes of a text, cut from a larger allocation where they are few. Not to be given back.
    char *bytes(size_t size) {
        if (size > left_) {
            left_ = size > kTexts ? size : kTexts;
            free_ = array<char>(static_cast<uint32_t>(left_));
            left_ = free_ != nullptr ? left_ : 0;
        }
        char *const begin = free_;
        free_ += free_ != nullptr ? size : 0;
        left_ -= left_ != 0 ? size : 0;
        return begin;
    }
    void give(void *memory) {
        if (memory != nullptr) {
            memCp_->pfnFree(memory);
        }
    }
    bool hasFailed() const { return failed_; }

private:
    static constexpr size_t kTexts = 512;

    SDPMemCp *memCp_;
    char *free_ = nullptr;
    size_t left_ = 0;
    bool failed_ = false;
};

// A line under construction: parts appended to memory of a known size.
class Draft {
public:
    Draft(Memory &memory, size_t size) : begin_(memory.bytes(size)), size_(size) {}

    Draft &operator<<(std::string_view part) {
        if (begin_ != nullptr && !part.empty() && part.size() <= size_ - used_) {
            std::memcpy(begin_ + used_, part.data(), part.size());
            used_ += part.size();
        }
        return *this;
    }
    std::string_view text() const { return {begin_, begin_ != nullptr ? used_ : 0}; }

private:
    char *begin_;
    size_t size_;
    size_t used_ = 0;
};

class Workspace {
public:
    Workspace(SDPMemCp *memCp, std::string_view given, uint64_t rules, bool rtpFamily)
        : memory(memCp), text(given), rules_(rules), rtpFamily_(rtpFamily) {}

    Memory memory;
    const std::string_view text;
    std::string_view tail;             // what follows the first empty line, that line included
    std::string_view lineEnd = "\r\n"; // of lines that are put in
    Line *lines = nullptr;
    uint32_t lineCount = 0;
    uint32_t takenCount = 0;       // of lines, that the decoder took before it refused one
    uint32_t takenSize = 0;        // and bytes of the text before the place of that
    bool endsInCr = false;         // each line, there being no LF
    bool goesOn = false;           // after the empty line that ends the description
    bool hasSecondVersion = false; // or text before v=: that is never repaired

    bool wants(Rule rule) const { return (rules_ & bitOf(rule)) != 0; }
    // How many lines need no repair within them, for the decoder took them. Where lines end in CR
    // it took one that is none.
    uint32_t takenLines() const { return endsInCr ? 0 : takenCount; }
    // As the decoder is set: RTP/SAVPF and its like take payloads.
    bool takesRtpFamily() const { return rtpFamily_; }

    // A row of the report; `at` points into the line as it was given.
    void report(Rule rule, const Line &line, const char *at);
    void report(Rule rule, const Line &line) { report(rule, line, line.original.data()); }

    const Found *found() const { return found_; }
    uint32_t foundCount() const { return foundCount_; }

    // A line that the text lacks; null without memory.
    Line *newLine(std::string_view content, const Line &before);

private:
    uint64_t rules_;
    bool rtpFamily_;
    Found *found_ = nullptr;
    uint32_t foundCount_ = 0;
    uint32_t foundRoom_ = 0;
};

// ---- The passes, in their order. Each is linear in the text.

// Cuts the text into lines. False where what it begins with is never repaired.
bool cutLines(Workspace &work);

// Repairs within one line: its fields, by its kind. The lines after it are there to be looked at.
void repairLine(Workspace &work, Line &line);

// Puts the lines in their order, leaves out those that come twice, puts in those that are missing.
LineList arrange(Workspace &work);

// ---- Bytes and words

// A set of small letters, a bit for each.
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

// The text up to its first blank or tab.
constexpr std::string_view wordOf(std::string_view text) {
    size_t size = 0;
    while (size != text.size() && !isBlank(text[size])) {
        ++size;
    }
    return text.substr(0, size);
}

constexpr bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

constexpr bool isNumber(std::string_view text) {
    for (const char byte : text) {
        if (!isDigit(byte)) {
            return false;
        }
    }
    return !text.empty();
}

// Equal but for the case of letters; `lower` is in small letters.
constexpr bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
    if (text.size() != lower.size()) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const char byte = text[i];
        if ((byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte) != lower[i]) {
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

#include "text/escape.hpp"

#include <algorithm>
#include <vector>

#include "text/strings.hpp"

namespace cli {

namespace {

constexpr size_t kWidth = 100;        // columns that are shown of a long line
constexpr size_t kBeforeTheMark = 60; // columns that are shown before the mark
constexpr std::string_view kCut = "...";

// A byte or a UTF-8 sequence in the form that is shown.
struct Glyph {
    std::string text;
    size_t columns;
    size_t bytes;
};

// Control characters of Latin-1 are two bytes of UTF-8, and terminals obey them.
bool isControl(std::string_view sequence) {
    const auto byte = [sequence](size_t i) { return static_cast<unsigned char>(sequence[i]); };
    return byte(0) < ' ' || byte(0) == 0x7F ||
           (sequence.size() > 1 && byte(0) == 0xC2 && byte(1) < 0xA0);
}

Glyph glyphAt(std::string_view text) {
    const size_t size = utf8Length(text);
    if (size != 0 && !isControl(text.substr(0, size))) {
        return {std::string(text.substr(0, size)), 1, size};
    }
    const char byte = text.front();
    const std::string escape = byte == '\t'   ? "\\t"
                               : byte == '\r' ? "\\r"
                               : byte == '\0' ? "\\0"
                                              : "\\x" + hexOf(text.substr(0, 1));
    return {escape, escape.size(), 1};
}

// The index of the first glyph that is shown of a long line.
size_t firstShown(const std::vector<Glyph> &glyphs, size_t mark) {
    size_t first = mark;
    for (size_t columns = 0; first > 0; --first) {
        columns += glyphs[first - 1].columns;
        if (columns > kBeforeTheMark) {
            break;
        }
    }
    return first;
}

} // namespace

Excerpt excerptOf(std::string_view line, size_t offset) {
    std::vector<Glyph> glyphs;
    size_t mark = 0; // index of the marked glyph
    size_t columns = 0;
    for (size_t at = 0; at < line.size(); at += glyphs.back().bytes) {
        glyphs.push_back(glyphAt(line.substr(at)));
        columns += glyphs.back().columns;
        mark += at + glyphs.back().bytes <= offset ? 1 : 0;
    }
    const size_t first = columns > kWidth ? firstShown(glyphs, mark) : 0;
    Excerpt excerpt = {std::string(first > 0 ? kCut : ""), first > 0 ? kCut.size() : 0};
    size_t shown = 0;
    for (size_t i = first; i < glyphs.size(); ++i) {
        if (shown >= kWidth) {
            excerpt.line += kCut;
            break;
        }
        shown += glyphs[i].columns;
        excerpt.line += glyphs[i].text;
        excerpt.mark += i < mark ? glyphs[i].columns : 0;
    }
    return excerpt;
}

std::string escaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const Glyph glyph = glyphAt(text);
        result += glyph.text;
        text.remove_prefix(glyph.bytes);
    }
    return result;
}

std::string escapedJson(std::string_view document) {
    std::string result;
    while (!document.empty()) {
        const size_t size = std::max<size_t>(utf8Length(document), 1);
        const std::string_view sequence = document.substr(0, size);
        const bool obeyed = isControl(sequence) && sequence.front() != '\n';
        result += obeyed ? "\\u00" + hexOf(sequence.substr(size - 1)) : std::string(sequence);
        document.remove_prefix(size);
    }
    return result;
}

} // namespace cli

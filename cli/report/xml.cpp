#include "report/xml.hpp"

#include <algorithm>

#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// U+FFFE and U+FFFF are valid UTF-8, but not characters of XML (XML 1.0, 2.2).
bool isNoCharacter(std::string_view sequence) {
    return sequence == "\xEF\xBF\xBE" || sequence == "\xEF\xBF\xBF";
}

std::string bytesOf(std::string_view sequence) {
    std::string text;
    for (const char &byte : sequence) {
        text += "\\x" + hexOf({&byte, 1});
    }
    return text;
}

void appendCharacter(std::string &result, std::string_view sequence) {
    switch (sequence.front()) {
    case '&': result += "&amp;"; return;
    case '<': result += "&lt;"; return;
    case '>': result += "&gt;"; return;
    case '"': result += "&quot;"; return;
    case '\n': result += '\n'; return;
    default: result += isNoCharacter(sequence) ? bytesOf(sequence) : escaped(sequence);
    }
}

} // namespace

std::string xmlText(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const size_t size = std::max<size_t>(utf8Length(text), 1);
        appendCharacter(result, text.substr(0, size));
        text.remove_prefix(size);
    }
    return result;
}

} // namespace cli

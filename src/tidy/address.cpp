#include "tidy/address.hpp"

#include <algorithm>
#include <cstdint>

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

namespace {

constexpr uint32_t kGroups = 8;

constexpr bool isHexDigit(char byte) {
    return isDigit(byte) || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

bool isGroup(std::string_view text) {
    return !text.empty() && text.size() <= 4 && std::ranges::all_of(text, isHexDigit);
}

// Whether a text is four numbers up to 255 with dots between them, without leading zeros.
bool isDotted(std::string_view text) {
    for (uint32_t i = 0; i < 4; ++i) {
        const std::string_view octet = text.substr(0, std::min(text.find('.'), text.size()));
        uint32_t value = 0;
        for (const char digit : octet) {
            value = value * 10 + static_cast<uint32_t>(digit - '0');
        }
        if (!isNumber(octet) || octet.size() > 3 || value > 255 ||
            (octet.size() > 1 && octet.front() == '0')) {
            return false;
        }
        text.remove_prefix(octet.size());
        if (i < 3 && !text.starts_with('.')) {
            return false;
        }
        text.remove_prefix(i < 3 ? 1 : 0);
    }
    return text.empty();
}

// The number of groups in a text, with a colon between each two; more than eight for an invalid
// text. If the text is the `last` part of the address, a dotted part may replace the last two.
uint32_t countGroups(std::string_view text, bool last) {
    uint32_t count = 0;
    while (!text.empty() && count <= kGroups) {
        const std::string_view group = text.substr(0, std::min(text.find(':'), text.size()));
        text.remove_prefix(group.size());
        if (last && text.empty() && isDotted(group)) {
            return count + 2;
        }
        if (!isGroup(group) || text == ":") {
            return kGroups + 1;
        }
        text.remove_prefix(text.empty() ? 0 : 1);
        ++count;
    }
    return count;
}

} // namespace

bool isIp6Text(std::string_view text) {
    const size_t gap = text.find("::");
    if (gap == std::string_view::npos) {
        return countGroups(text, true) == kGroups;
    }
    const std::string_view before = text.substr(0, gap);
    const std::string_view after = withoutFirst(text, gap + 2);
    return countGroups(before, false) + countGroups(after, true) < kGroups;
}

} // namespace sdpline::tidy

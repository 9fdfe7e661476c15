#include "redact/edits.hpp"

namespace cli {

std::string applied(std::string_view text, const std::vector<Edit> &edits) {
    std::string result;
    size_t at = 0;
    for (const Edit &edit : edits) {
        result += text.substr(at, edit.begin - at);
        result += edit.with;
        at = edit.end;
    }
    result += text.substr(at);
    return result;
}

size_t movedOffset(size_t offset, const std::vector<Edit> &edits) {
    size_t moved = offset;
    for (const Edit &edit : edits) {
        if (offset < edit.begin) {
            break;
        }
        if (offset < edit.end) {
            const bool sameLength = edit.with.size() == edit.end - edit.begin;
            return sameLength ? moved : moved - (offset - edit.begin);
        }
        moved = moved - (edit.end - edit.begin) + edit.with.size();
    }
    return moved;
}

} // namespace cli

#include "sip/lengths.hpp"

#include <algorithm>

#include "sip/message.hpp"
#include "sip/mime.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// The last Content-Length header counts; its compact form is "l" (RFC 3261 section 7.3.3).
LengthPlace lengthIn(std::string_view text, size_t start, size_t end) {
    LengthPlace length = {0, 0, end, end};
    for (LinePlace line = lineAt(text, lineAt(text, start).next); line.begin < end;
         line = lineAt(text, line.next)) {
        if (line.begin == line.end) {
            length.begin = std::min(line.next, end);
            break;
        }
        const std::string_view header = text.substr(line.begin, line.end - line.begin);
        const std::string_view name = header.substr(0, header.find_first_of(" \t:"));
        if (!equalsIgnoringCase(name, "content-length") && !equalsIgnoringCase(name, "l")) {
            continue;
        }
        const size_t digit = std::min(header.find_first_of("0123456789"), header.size());
        const size_t after = std::min(header.find_first_not_of("0123456789", digit), header.size());
        length.offset = line.begin + digit;
        length.size = after - digit;
    }
    return length;
}

} // namespace

std::vector<LengthPlace> lengthsOf(std::string_view text) {
    std::vector<LengthPlace> lengths;
    for (size_t start = findMessage(text, 0); start < text.size();) {
        Bodies ignored;
        const size_t end = takeMessage(text, start, ignored);
        const LengthPlace length = lengthIn(text, start, end);
        if (length.size != 0 && length.size <= 9) {
            lengths.push_back(length);
        }
        start = findMessage(text, std::max(end, start + 1));
    }
    return lengths;
}

} // namespace cli

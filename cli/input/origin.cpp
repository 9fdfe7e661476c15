#include "input/origin.hpp"

#include <cstdio>
#include <ctime>

#include "input/mime.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

constexpr int64_t kSecond = 1'000'000'000;

// "INVITE sip:b@example.com SIP/2.0" or "SIP/2.0 200 OK"
std::string_view messageOf(std::string_view line) {
    const size_t space = std::min(line.find(' '), line.size());
    return line.starts_with("SIP/") ? line.substr(std::min(space + 1, line.size()), 3)
                                    : line.substr(0, space);
}

void keep(Origin &origin, std::string_view name, std::string_view value) {
    if (equalsIgnoringCase(name, "Call-ID") || equalsIgnoringCase(name, "i")) {
        origin.callId = value;
    } else if (equalsIgnoringCase(name, "CSeq")) {
        origin.cseq = value;
    } else if (equalsIgnoringCase(name, "From") || equalsIgnoringCase(name, "f")) {
        origin.from = uriOf(value);
    } else if (equalsIgnoringCase(name, "To") || equalsIgnoringCase(name, "t")) {
        origin.to = uriOf(value);
    }
}

} // namespace

std::string uriOf(std::string_view value) {
    const size_t open = value.rfind('<');
    if (open != std::string_view::npos) {
        const size_t close = value.find('>', open);
        return std::string(trimmed(value.substr(open + 1, close - open - 1)));
    }
    return std::string(trimmed(value.substr(0, value.find(';'))));
}

Origin originOf(const Packet &packet, std::string_view head) {
    Origin origin = {packet, "", "", "", "", ""};
    LinePlace place = lineAt(head, 0);
    origin.message = messageOf(head.substr(0, place.end));
    while (place.next < head.size()) {
        place = lineAt(head, place.next);
        const std::string_view line = head.substr(place.begin, place.end - place.begin);
        if (line.empty()) {
            break;
        }
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos) {
            keep(origin, trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)));
        }
    }
    return origin;
}

std::string timeText(int64_t time) {
    const int64_t below = (time % kSecond + kSecond) % kSecond;
    const auto seconds = static_cast<std::time_t>((time - below) / kSecond);
    std::tm parts = {};
    char text[64];
    if (gmtime_r(&seconds, &parts) == nullptr) {
        return "";
    }
    const size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + size, sizeof text - size, ".%09dZ", static_cast<int>(below));
    return text;
}

} // namespace cli

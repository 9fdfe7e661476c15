#include "sip/head.hpp"

#include <algorithm>

#include "sip/mime.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// The URI of a From or To header: "<sip:a@b>;tag=1", "\"A\" <sip:a@b>", "sip:a@b;tag=1".
std::string uriOf(std::string_view value) {
    const size_t open = value.rfind('<');
    if (open != std::string_view::npos) {
        const size_t close = value.find('>', open);
        return std::string(trimmed(value.substr(open + 1, close - open - 1)));
    }
    return std::string(trimmed(value.substr(0, value.find(';'))));
}

// The offset where the parameters of a From or To header begin.
size_t parametersOf(std::string_view value) {
    const size_t close = value.rfind('>');
    return std::min(value.find(';', close == std::string_view::npos ? 0 : close), value.size());
}

void keep(SipHead &head, std::string_view name, std::string_view value) {
    const auto is = [name](std::string_view full, std::string_view compact) {
        return equalsIgnoringCase(name, full) || equalsIgnoringCase(name, compact);
    };
    if (is("Call-ID", "i")) {
        head.callId = value;
    } else if (is("CSeq", "CSeq")) {
        head.cseq = value;
        if (!head.isRequest()) {
            head.method = trimmed(value.substr(std::min(value.find(' '), value.size())));
        }
    } else if (is("From", "f") || is("To", "t")) {
        const bool isFrom = is("From", "f");
        (isFrom ? head.from : head.to) = uriOf(value);
        (isFrom ? head.fromTag : head.toTag) =
            parameter(value.substr(parametersOf(value)), "tag").value_or("");
    }
}

} // namespace

unsigned SipHead::code() const {
    return status.size() < 3 ? 0
                             : static_cast<unsigned>((status[0] - '0') * 100 +
                                                     (status[1] - '0') * 10 + (status[2] - '0'));
}

SipHead sipHeadOf(std::string_view message) {
    constexpr std::string_view kVersion = "SIP/2.0 ";
    SipHead head;
    LinePlace place = lineAt(message, 0);
    const std::string_view first = message.substr(0, place.end);
    if (first.starts_with(kVersion)) {
        head.status = first.substr(kVersion.size());
    } else {
        head.method = first.substr(0, first.find(' '));
    }
    while (place.next < message.size()) {
        place = lineAt(message, place.next);
        const std::string_view line = message.substr(place.begin, place.end - place.begin);
        const size_t colon = line.find(':');
        if (line.empty()) {
            break;
        }
        if (colon != std::string_view::npos) {
            keep(head, trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)));
        }
    }
    return head;
}

} // namespace cli

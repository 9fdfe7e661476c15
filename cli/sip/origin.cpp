#include "sip/origin.hpp"

#include <cstdio>
#include <ctime>
#include <utility>

#include "sip/head.hpp"

namespace cli {

namespace {

constexpr int64_t kSecond = 1'000'000'000;

} // namespace

Origin originOf(const Packet &packet, std::string_view head) {
    SipHead parsed = sipHeadOf(head);
    std::string message = parsed.isRequest() ? parsed.method : parsed.status.substr(0, 3);
    return {packet,
            std::move(message),
            std::move(parsed.callId),
            std::move(parsed.cseq),
            std::move(parsed.from),
            std::move(parsed.to)};
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

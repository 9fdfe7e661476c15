// libosip2.
#include <osipparser2/osip_parser.h>
#include <osipparser2/sdp_message.h>

#include "peers.hpp"

namespace {

// What sdp_message_init made, parsed; null when the text is refused.
sdp_message_t *parsed(const std::string &text) {
    sdp_message_t *message = nullptr;
    if (sdp_message_init(&message) != 0) {
        return nullptr;
    }
    if (sdp_message_parse(message, text.c_str()) != 0) {
        sdp_message_free(message);
        return nullptr;
    }
    return message;
}

class Kept final : public bench::Parsed {
public:
    explicit Kept(sdp_message_t *message) : message_(message) {}
    ~Kept() override { sdp_message_free(message_); }
    Kept(const Kept &) = delete;
    Kept &operator=(const Kept &) = delete;

    bool print() override {
        char *text = nullptr;
        const bool done = sdp_message_to_str(message_, &text) == 0;
        osip_free(text);
        return done;
    }

    std::string printed() override {
        char *text = nullptr;
        const std::string copy = sdp_message_to_str(message_, &text) == 0 ? text : "";
        osip_free(text);
        return copy;
    }

private:
    sdp_message_t *message_;
};

bool parse(const std::string &text) {
    sdp_message_t *const message = parsed(text);
    sdp_message_free(message);
    return message != nullptr;
}

std::unique_ptr<bench::Parsed> keep(const std::string &text) {
    sdp_message_t *const message = parsed(text);
    return message == nullptr ? nullptr : std::make_unique<Kept>(message);
}

[[maybe_unused]] const bool added = parser_init() == 0 && bench::addPeer({"osip2", parse, keep});

} // namespace

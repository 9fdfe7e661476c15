// libosip2.
#include <osipparser2/osip_parser.h>
#include <osipparser2/sdp_message.h>

#include "peers.hpp"

namespace {

struct Osip {
    static sdp_message_t *parse(const std::string &text) {
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

    static void release(sdp_message_t *message) { sdp_message_free(message); }

    static bool print(sdp_message_t *message, std::string *copy) {
        char *text = nullptr;
        const bool done = sdp_message_to_str(message, &text) == 0;
        if (done && copy != nullptr) {
            *copy = text;
        }
        osip_free(text);
        return done;
    }
};

[[maybe_unused]] const bool added = parser_init() == 0 && bench::addPeer<Osip>("osip2");

} // namespace

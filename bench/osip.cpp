// libosip2: parse and free, print and free.
#include <osipparser2/osip_parser.h>
#include <osipparser2/sdp_message.h>

#include "peers.hpp"

namespace bench {

namespace {

const bool started = parser_init() == 0;

sdp_message_t *parse(benchmark::State &state, const Body &body) {
    sdp_message_t *message = nullptr;
    if (!started || sdp_message_init(&message) != 0 ||
        sdp_message_parse(message, body.text.c_str()) != 0) {
        state.SkipWithError("libosip2 refuses the body");
    }
    return message;
}

} // namespace

void osipParse(benchmark::State &state, const Body &body) {
    for (auto _ : state) {
        sdp_message_free(parse(state, body));
    }
}

void osipPrint(benchmark::State &state, const Body &body) {
    sdp_message_t *const message = parse(state, body);
    for (auto _ : state) {
        char *text = nullptr;
        if (sdp_message_to_str(message, &text) != 0) {
            state.SkipWithError("libosip2 cannot print the body");
        }
        osip_free(text);
    }
    sdp_message_free(message);
}

} // namespace bench

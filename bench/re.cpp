// libre. A session reads the offer and writes its local description, so that what it prints is not
// what it read.
#include "peers.hpp"

extern "C" {
#include <re/re_types.h>
// which these headers need
#include <re/re_fmt.h>
#include <re/re_list.h>
#include <re/re_mbuf.h>
#include <re/re_mem.h>
#include <re/re_sa.h>
#include <re/re_sdp.h>
}

namespace {

struct Re {
    // Reads the text without a copy: the decoder only moves the position of the buffer.
    static sdp_session *parse(const std::string &text) {
        static const sa local = [] {
            sa address;
            sa_set_str(&address, "192.0.2.1", 0);
            return address;
        }();
        sdp_session *session = nullptr;
        if (sdp_session_alloc(&session, &local) != 0) {
            return nullptr;
        }
        mbuf buffer;
        mbuf_init(&buffer);
        buffer.buf = reinterpret_cast<uint8_t *>(const_cast<char *>(text.data()));
        buffer.size = text.size();
        buffer.end = text.size();
        const bool accepted = sdp_decode(session, &buffer, true) == 0;
        return accepted ? session : static_cast<sdp_session *>(mem_deref(session));
    }

    static void release(sdp_session *session) { mem_deref(session); }

    static bool print(sdp_session *session, std::string *copy) {
        mbuf *text = nullptr;
        const bool done = sdp_encode(&text, session, false) == 0;
        if (done && copy != nullptr) {
            copy->assign(reinterpret_cast<const char *>(text->buf), text->end);
        }
        mem_deref(text);
        return done;
    }
};

[[maybe_unused]] const bool added = bench::addPeer<Re>("libre");

} // namespace

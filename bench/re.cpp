// libre. A session takes the offer and writes the answer of its own side, so that what it prints is
// not what it read.
#include "peers.hpp"

extern "C" {
#include <re/re_types.h>
// and what these build on
#include <re/re_fmt.h>
#include <re/re_list.h>
#include <re/re_mbuf.h>
#include <re/re_mem.h>
#include <re/re_sa.h>
#include <re/re_sdp.h>
}

namespace {

// Reads the text where it is: a decoder only moves the position of the buffer.
sdp_session *parsed(const std::string &text) {
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
    if (sdp_decode(session, &buffer, true) != 0) {
        return static_cast<sdp_session *>(mem_deref(session));
    }
    return session;
}

class Kept final : public bench::Parsed {
public:
    explicit Kept(sdp_session *session) : session_(session) {}
    ~Kept() override { mem_deref(session_); }
    Kept(const Kept &) = delete;
    Kept &operator=(const Kept &) = delete;

    bool print() override {
        mbuf *text = nullptr;
        const bool done = sdp_encode(&text, session_, false) == 0;
        mem_deref(text);
        return done;
    }

    std::string printed() override {
        mbuf *text = nullptr;
        std::string copy;
        if (sdp_encode(&text, session_, false) == 0) {
            copy.assign(reinterpret_cast<const char *>(text->buf), text->end);
        }
        mem_deref(text);
        return copy;
    }

private:
    sdp_session *session_;
};

bool parse(const std::string &text) {
    sdp_session *const session = parsed(text);
    mem_deref(session);
    return session != nullptr;
}

std::unique_ptr<bench::Parsed> keep(const std::string &text) {
    sdp_session *const session = parsed(text);
    return session == nullptr ? nullptr : std::make_unique<Kept>(session);
}

[[maybe_unused]] const bool added = bench::addPeer({"libre", parse, keep});

} // namespace

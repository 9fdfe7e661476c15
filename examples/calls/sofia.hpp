/*
 * sofia.hpp: what the user agent needs from the stack besides calls: the SDP of a message, and
 * signals that end the program.
 */
#ifndef EXAMPLES_CALLS_SOFIA_HPP
#define EXAMPLES_CALLS_SOFIA_HPP

#include <csignal>
#include <string>

#include <sys/signalfd.h>
#include <unistd.h>

#include <sofia-sip/msg_mime.h>
#include <sofia-sip/sip_header.h>
#include <sofia-sip/su_string.h>
#include <sofia-sip/su_wait.h>

namespace calls {

inline bool isSdp(const sip_content_type_t *type) {
    return type != nullptr && su_casematch(type->c_type, "application/sdp") != 0;
}

/* The SDP body of a message, or the SDP part of a multipart body (RFC 2046 section 5.1); empty
 * where there is none. */
inline std::string sdpOf(const sip_t *sip) {
    if (sip == nullptr || sip->sip_payload == nullptr || sip->sip_content_type == nullptr) {
        return {};
    }
    if (isSdp(sip->sip_content_type)) {
        return {sip->sip_payload->pl_data, sip->sip_payload->pl_len};
    }
    std::string text;
    su_home_t home[1] = {SU_HOME_INIT(home)};
    for (const msg_multipart_t *part =
             msg_multipart_parse(home, sip->sip_content_type, sip->sip_payload);
         part != nullptr && text.empty(); part = part->mp_next) {
        if (isSdp(part->mp_content_type) && part->mp_payload != nullptr) {
            text.assign(part->mp_payload->pl_data, part->mp_payload->pl_len);
        }
    }
    su_home_deinit(home);
    return text;
}

/* SIGTERM and SIGINT as input of the stack's loop, so that no handler interrupts it. */
class Signals {
public:
    Signals(su_root_t *root, su_wakeup_f onSignal, void *context) : root_(root) {
        sigset_t set;
        sigemptyset(&set);
        sigaddset(&set, SIGTERM);
        sigaddset(&set, SIGINT);
        sigprocmask(SIG_BLOCK, &set, nullptr);
        descriptor_ = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
        su_wait_create(wait_, descriptor_, SU_WAIT_IN);
        index_ =
            su_root_register(root, wait_, onSignal, static_cast<su_wakeup_arg_t *>(context), 0);
    }
    ~Signals() {
        su_root_deregister(root_, index_);
        close(descriptor_);
    }
    Signals(const Signals &) = delete;
    Signals &operator=(const Signals &) = delete;

private:
    su_root_t *root_;
    int descriptor_ = -1;
    int index_ = -1;
    su_wait_t wait_[1] = {SU_WAIT_INIT};
};

} // namespace calls

#endif

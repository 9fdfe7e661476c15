/*
 * useragent.cpp: a SIP user agent over sofia-sip that uses sdpline for its bodies.
 *
 *     c++ -std=c++20 useragent.cpp $(pkg-config --cflags --libs sofia-sip-ua sdpline-negotiate)
 *     ./useragent listen 5060               # 127.0.0.1, UDP and TCP, until SIGTERM
 *     ./useragent listen 5060 ::1
 *     ./useragent call sip:127.0.0.1:5060   # speech, hold, resume, fax, speech, BYE
 *
 * The media and SDP engine of the stack is off (NUTAG_MEDIA_ENABLE(0)): the stack carries texts,
 * and calls::Dialog (dialog.hpp) decides which text goes into which message. A Call exists from its
 * INVITE to the state "terminated", which BYE, CANCEL, a refusal and a timeout all lead to.
 */
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "dialog.hpp"

#define NUA_MAGIC_T  struct Agent
#define NUA_HMAGIC_T struct Call
#include <sofia-sip/nta_tag.h>
#include <sofia-sip/nua.h>
#include <sofia-sip/sip_extra.h>
#include <sofia-sip/sip_status.h>

#include "sofia.hpp"

using calls::Reply;
using calls::sdpOf;
using calls::Wanted;

struct Call {
    calls::Dialog dialog;
    nua_handle_t *handle;
    bool ringing = false;   /* an INVITE of the peer waits for our final response */
    bool reserving = false; /* its mandatory preconditions are not met yet */
    bool confirmed = false; /* our side of the call was set up once */
    size_t step = 0;        /* of a call of ours: what comes next */
};

struct Agent {
    su_root_t *root = nullptr;
    nua_t *nua = nullptr;
    std::unique_ptr<calls::Local> local;
    const char *fixed = "";   /* if not empty, an answer to everything: what do ours cost? */
    unsigned timeout = 32000; /* ms after which a response without ACK or PRACK ends its call */
    bool calling = false;
    uint32_t invites = 0; /* dialogs */
    uint32_t live = 0;
    uint32_t agreed = 0;  /* offers that got an answer, ours and theirs */
    uint32_t refused = 0; /* offers that got none */
};

/* The steps of an outgoing call after it is established. */
constexpr Wanted kSteps[] = {Wanted::Held, Wanted::Speech, Wanted::Fax, Wanted::Speech};

/* ---- Messages -------------------------------------------------------------------------------- */

/* The stack copies the texts and keeps the pointer of the phrase, which is static. `request` is the
 * saved request of a PRACK or an UPDATE; an INVITE is known by its handle. */
static void respond(const Call &call, const Reply &reply, msg_t *request = nullptr) {
    nua_respond(call.handle, reply.status, reply.phrase,
                TAG_IF(request != nullptr, NUTAG_WITH(request)),
                TAG_IF(!reply.warning.empty(), SIPTAG_WARNING_STR(reply.warning.c_str())),
                TAG_IF(!reply.body.empty(), SIPTAG_CONTENT_TYPE_STR("application/sdp")),
                TAG_IF(!reply.body.empty(), SIPTAG_PAYLOAD_STR(reply.body.c_str())), TAG_END());
}

static Reply answerTo(Agent &agent, Call &call, const std::string &offer) {
    Reply reply =
        *agent.fixed != '\0' ? Reply{.body = agent.fixed} : call.dialog.receiveOffer(offer);
    reply.status == 200 ? ++agent.agreed : ++agent.refused;
    if (!reply.log.empty()) {
        std::fprintf(stderr, "refused with %d: %s\n", reply.status, reply.log.c_str());
    }
    return reply;
}

/* The peer's answer in an ACK, a PRACK or a response. False where there is no session after it. */
static bool takeAnswer(Agent &agent, Call &call, const sip_t *sip) {
    if (!call.dialog.awaitsAnswer()) {
        return true;
    }
    const auto agreement = call.dialog.receiveAnswer(sdpOf(sip));
    if (!agreement) {
        std::fprintf(stderr, "answer: %s\n", agreement.error().message().c_str());
        ++agent.refused;
        return call.dialog.established();
    }
    ++agent.agreed;
    return true;
}

/* ---- The called side ------------------------------------------------------------------------- */

/* The final response, when nothing remains to wait for. */
static void accept(Call &call, Reply reply = {}) {
    call.ringing = false;
    respond(call, reply);
}

/* An INVITE: the first, or one within the dialog. Where the peer needs a reliable provisional
 * response, or preconditions are open, the answer goes into the 183 (RFC 3262 section 5, RFC 3312
 * section 5.1), and the 200 comes after the PRACK or the UPDATE. */
static void onInvite(Agent &agent, nua_handle_t *handle, Call *call, const sip_t *sip) {
    const bool first = call == nullptr;
    if (first) {
        call = new Call{{*agent.local, ++agent.invites}, handle};
        ++agent.live;
        nua_handle_bind(handle, call);
    }
    const std::string offer = sdpOf(sip);
    if (offer.empty() && sip->sip_payload != nullptr) {
        return respond(*call, {.status = 415, .phrase = sip_415_Unsupported_media});
    }
    const Reply reply = offer.empty() ? call->dialog.offerInResponse(Wanted::Speech)
                                      : answerTo(agent, *call, offer);
    if (reply.status != 200 || !first) {
        return respond(*call, reply);
    }
    call->ringing = true;
    call->reserving = reply.unmet;
    if (reply.unmet || sip_has_feature(sip->sip_require, "100rel")) {
        return respond(*call, reply.as(SIP_183_SESSION_PROGRESS));
    }
    respond(*call, {.status = 180, .phrase = sip_180_Ringing});
    accept(*call, reply);
}

/* A PRACK or an UPDATE: it may have an offer, or the answer to ours. */
static void onMidDialog(Agent &agent, Call &call, const sip_t *sip) {
    msg_t *const request = nua_current_request(agent.nua);
    const std::string body = sdpOf(sip);
    Reply reply;
    if (call.dialog.awaitsAnswer() && sip->sip_request->rq_method == sip_method_prack) {
        reply = takeAnswer(agent, call, sip) ? reply : reply.as(SIP_488_NOT_ACCEPTABLE);
    } else if (!body.empty()) {
        reply = answerTo(agent, call, body);
        call.reserving = reply.status == 200 ? reply.unmet : call.reserving;
    }
    respond(call, reply, request);
    if (call.ringing && !call.reserving && reply.status == 200) {
        accept(call);
    }
}

static void onAck(Agent &agent, Call &call, const sip_t *sip) {
    if (!takeAnswer(agent, call, sip)) {
        nua_bye(call.handle, TAG_END()); /* RFC 3261 section 13.2.2.4 */
    }
}

/* ---- The calling side ------------------------------------------------------------------------ */

static void invite(Agent &agent, Call &call, Wanted wanted, const char *to = nullptr) {
    const auto offer = call.dialog.offer(wanted);
    if (!offer) {
        std::fprintf(stderr, "offer: %s\n", offer.error().message().c_str());
        ++agent.refused;
        nua_bye(call.handle, TAG_END());
        return;
    }
    nua_invite(call.handle, TAG_IF(to != nullptr, SIPTAG_TO_STR(to)),
               TAG_IF(to != nullptr, NUTAG_URL(to)), SIPTAG_CONTENT_TYPE_STR("application/sdp"),
               SIPTAG_PAYLOAD_STR(offer->c_str()), TAG_END());
}

/* A response to ours: the answer is in a reliable provisional one, or in the 200. */
static void onInviteResponse(Agent &agent, Call &call, int status, const sip_t *sip) {
    if (status >= 300) {
        call.dialog.offerRefused();
        ++agent.refused;
    } else if (sip != nullptr && (status >= 200 || sip->sip_rseq != nullptr) &&
               !takeAnswer(agent, call, sip)) {
        nua_bye(call.handle, TAG_END());
    }
}

static void onReady(Agent &agent, Call &call) {
    if (!agent.calling) {
        return;
    }
    if (call.step == std::size(kSteps)) {
        nua_bye(call.handle, TAG_END());
    } else {
        invite(agent, call, kSteps[call.step++]);
    }
}

/* ---- Events ---------------------------------------------------------------------------------- */

static void onState(Agent &agent, Call *call, tagi_t *tags) {
    int state = 0;
    tl_gets(tags, NUTAG_CALLSTATE_REF(state), TAG_END());
    if (call != nullptr && state == nua_callstate_ready) {
        onReady(agent, *call);
    } else if (call != nullptr && state == nua_callstate_terminated) {
        nua_handle_bind(call->handle, nullptr);
        nua_handle_destroy(call->handle);
        delete call;
        --agent.live;
        if (agent.calling) {
            nua_shutdown(agent.nua);
        }
    }
}

static void onEvent(nua_event_t event, int status, const char *, nua_t *, Agent *agent,
                    nua_handle_t *handle, Call *call, const sip_t *sip, tagi_t *tags) {
    if (event == nua_i_invite && status < 200) {
        onInvite(*agent, handle, call, sip);
    } else if ((event == nua_i_prack || event == nua_i_update) && call != nullptr && status < 200) {
        onMidDialog(*agent, *call, sip);
    } else if (event == nua_i_ack && call != nullptr) {
        onAck(*agent, *call, sip);
    } else if (event == nua_r_invite && call != nullptr) {
        onInviteResponse(*agent, *call, status, sip);
    } else if (event == nua_i_state) {
        onState(*agent, call, tags);
    } else if (event == nua_r_shutdown && status >= 200) {
        su_root_break(agent->root);
    } else if (call == nullptr && handle != nullptr) {
        nua_handle_destroy(handle); /* a request outside of calls: the stack has responded */
    }
}

/* Sends BYE for every call; NUTAG_SHUTDOWN_EVENTS(1) makes them end like all others. */
static int onSignal(su_root_magic_t *, su_wait_t *, su_wakeup_arg_t *agent) {
    nua_shutdown(reinterpret_cast<Agent *>(agent)->nua);
    return 0;
}

static int usage() {
    std::fputs("usage: useragent listen PORT [ADDRESS [ANSWER [TIMEOUT]]]\n"
               "       useragent call URI [ADDRESS]\n",
               stderr);
    return 2;
}

/* Runs until SIGTERM or the end of the outgoing call. Returns 0 if every call ended and no memory
 * is left. */
static int run(Agent &agent, const char *port, const char *to) {
    SipMmStatistics before;
    SipMmGetStatistics(&before);
    const std::string at = "sip:" + agent.local->host + ':' + port;
    agent.nua =
        nua_create(agent.root, onEvent, &agent, NUTAG_URL(at.c_str()), NUTAG_MEDIA_ENABLE(0),
                   NUTAG_AUTOALERT(0), NUTAG_AUTOANSWER(0), NUTAG_EARLY_MEDIA(1),
                   NUTAG_ONLY183_100REL(1), NUTAG_APPL_METHOD("PRACK"), NUTAG_APPL_METHOD("UPDATE"),
                   SIPTAG_SUPPORTED_STR("100rel, precondition"), NUTAG_SESSION_TIMER(0),
                   NTATAG_SIP_T1X64(agent.timeout), NUTAG_SHUTDOWN_EVENTS(1), TAG_END());
    if (agent.nua == nullptr) {
        std::fprintf(stderr, "cannot listen on %s\n", at.c_str());
        return 2;
    }
    const calls::Signals signals(agent.root, onSignal, &agent);
    if (to != nullptr) {
        auto *const handle = nua_handle(agent.nua, nullptr, TAG_END());
        auto *const call = new Call{{*agent.local, ++agent.invites}, handle};
        ++agent.live;
        nua_handle_bind(handle, call);
        invite(agent, *call, Wanted::Speech, to);
    } else {
        std::printf("listening on %s\n", at.c_str());
        std::fflush(stdout);
    }
    su_root_run(agent.root);
    nua_destroy(agent.nua);
    SipMmStatistics after;
    SipMmGetStatistics(&after);
    std::printf("invites %u closed %u live %u agreed %u refused %u blocks %lld\n", agent.invites,
                agent.invites - agent.live, agent.live, agent.agreed, agent.refused,
                static_cast<long long>(after.ulBlocks - before.ulBlocks));
    return agent.live == 0 && after.ulBlocks == before.ulBlocks ? 0 : 1;
}

int main(int argc, char **argv) {
    const std::string verb = argc < 3 || argc > 6 ? "" : argv[1];
    if (verb != "call" && verb != "listen") {
        return usage();
    }
    Agent agent;
    agent.calling = verb == "call";
    const std::string address = argc > 3 ? argv[3] : "127.0.0.1";
    auto local = calls::localAt(address);
    if (!local) {
        std::fprintf(stderr, "%s: %s\n", address.c_str(), local.error().message().c_str());
        return 2;
    }
    agent.local = std::make_unique<calls::Local>(*std::move(local));
    agent.fixed = argc > 4 ? argv[4] : agent.fixed;
    agent.timeout = argc > 5 ? static_cast<unsigned>(std::atoi(argv[5])) : agent.timeout;
    su_init();
    agent.root = su_root_create(nullptr);
    su_root_threading(agent.root, 0); /* the stack and its callbacks on this thread */
    const int status = run(agent, agent.calling ? "0" : argv[2], agent.calling ? argv[2] : nullptr);
    su_root_destroy(agent.root);
    su_deinit();
    return status;
}

/*
 * dialog.hpp: offers and answers of one SIP dialog, without the stack around them.
 *
 * A stack has one Dialog for each dialog that an INVITE opens. It passes the text of every received
 * offer and answer to it, and sends the texts and statuses that it returns. sdpline::Negotiator
 * knows which calls are allowed when (RFC 3261 section 13.2.1, RFC 3262 section 5, RFC 3311 section
 * 5):
 *
 *     calls::Dialog dialog(local, 7);
 *     const calls::Reply reply = dialog.receiveOffer(bodyOfInvite);
 *     respond(reply.status, reply.phrase, reply.body, reply.warning);
 *
 * Dialogs share only the constant Local, so that they may run on different threads. They decode
 * under sdpline::decodeMutex().
 */
#ifndef EXAMPLES_CALLS_DIALOG_HPP
#define EXAMPLES_CALLS_DIALOG_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sdpline/negotiate.hpp>

namespace calls {

/* What we offer in an established call. */
enum class Wanted { Speech, Held, Fax };

/* What this side can do, decoded once for each local address. */
struct Local {
    std::string host; /* as it is written in a Warning: "192.0.2.1", "[2001:db8::1]" */
    sdpline::Body everything;
    sdpline::Body speech;
    sdpline::Body held;
    sdpline::Body fax;
};

/* How to respond to a request with an offer. The phrase is static: stacks keep the pointer. */
struct Reply {
    int status = 200;
    const char *phrase = "OK";
    std::string body = {};    /* the answer, for a status of 200 */
    std::string warning = {}; /* a Warning header field for the peer, or nothing */
    std::string log = {};     /* for our own log: why it was refused, with the library's code */
    bool unmet = false;       /* mandatory preconditions are not met: the 180 and the 200 wait */
    std::vector<sdpline::Decision> decisions = {}; /* for our own log: what became of each stream */

    Reply as(int otherStatus, const char *otherPhrase) const {
        Reply other = *this;
        other.status = otherStatus;
        other.phrase = otherPhrase;
        return other;
    }
};

namespace detail {

/* The ports of an m= line are counted from the first port of a call: see Dialog::ours(). */
constexpr std::string_view kSpeech = "m=audio 2 RTP/AVP 8 0 101\n"
                                     "a=rtpmap:101 telephone-event/8000\n"
                                     "a=fmtp:101 0-15\n"
                                     "a=ptime:20\n";
/* The resources of our segment are always available; the peer reserves those of its segment. */
constexpr std::string_view kReserved = "a=curr:qos local sendrecv\n"
                                       "a=curr:qos remote none\n"
                                       "a=des:qos mandatory local sendrecv\n"
                                       "a=des:qos mandatory remote sendrecv\n";
constexpr std::string_view kVideo = "m=video 4 RTP/AVP 99\n"
                                    "a=rtpmap:99 H264/90000\n"
                                    "a=fmtp:99 profile-level-id=42e01f;packetization-mode=1\n";
constexpr std::string_view kFax = "m=image 6 udptl t38\n"
                                  "a=T38FaxVersion:0\n"
                                  "a=T38MaxBitRate:14400\n"
                                  "a=T38FaxRateManagement:transferredTCF\n"
                                  "a=T38FaxMaxDatagram:400\n"
                                  "a=T38FaxUdpEC:t38UDPRedundancy\n";
/* What browsers offer. The fingerprint is that of the certificate of this side. */
constexpr std::string_view kBrowser = "m=audio 8 UDP/TLS/RTP/SAVPF 111 8 0 126\n"
                                      "a=rtpmap:111 opus/48000/2\n"
                                      "a=rtpmap:126 telephone-event/8000\n"
                                      "a=rtcp-mux\n"
                                      "a=setup:actpass\n"
                                      "a=ice-lite\n"
                                      "a=ice-ufrag:9uB6\n"
                                      "a=ice-pwd:YH75Fviy6338Vbrhrlp8Yh5K\n"
                                      "a=fingerprint:sha-256 "
                                      "19:E2:1C:3B:4B:9F:81:E6:B8:5C:F4:A5:A8:D8:73:04:"
                                      "BB:05:2F:70:9F:04:A9:0E:05:E9:26:33:E8:70:88:A2\n";

/* The protocols of browsers have payload numbers too; see SdpSetSupMedProtoRtpFamily. */
constexpr sdpline::DecodeOptions kOptions = {.rtpFamily = true};

inline sdpline::Result<sdpline::Body> bodyAt(std::string_view address, std::string_view media) {
    const bool six = address.find(':') != std::string_view::npos;
    const std::string at = (six ? "IN IP6 " : "IN IP4 ") + std::string(address) + '\n';
    const std::string head = "v=0\no=- 1 1 " + at + "s=-\nc=" + at + "t=0 0\n";
    return sdpline::Body::decode(head + std::string(media), kOptions);
}

inline Reply refusal(int status, const char *phrase, const Local &local,
                     const std::string &reason) {
    Reply reply{.status = status, .phrase = phrase};
    reply.warning = "399 " + local.host + ' ' + sdpline::quotedString(reason);
    reply.log = reason;
    return reply;
}

/* Memory is exhausted, or the stack passed a second offer before the answer to the first. */
inline Reply failure(const sdpline::Error &error) {
    return {.status = 500, .phrase = "Server Internal Error", .log = error.message()};
}

} // namespace detail

/* Fails for a text that is not an address. Called before the first call, so that failures show at
 * start. */
inline sdpline::Result<Local> localAt(const std::string &address) {
    const std::string speech(detail::kSpeech);
    std::string all = speech;
    all.append(detail::kReserved).append(detail::kVideo).append(detail::kFax);
    all.append(detail::kBrowser);
    const bool six = address.find(':') != std::string::npos;
    std::vector<sdpline::Body> bodies;
    for (const std::string &media :
         {all, speech, speech + "a=sendonly\n", std::string(detail::kFax)}) {
        auto body = detail::bodyAt(address, media);
        if (!body) {
            return body.error();
        }
        bodies.push_back(*std::move(body));
    }
    return Local{six ? '[' + address + ']' : address, std::move(bodies[0]), std::move(bodies[1]),
                 std::move(bodies[2]), std::move(bodies[3])};
}

class Dialog {
public:
    /* The number is the session id of o= and must differ from that of every other dialog of this
     * side. `local` must outlive the dialog. */
    Dialog(const Local &local, std::uint32_t number) : local_(local), number_(number) {}

    /* An offer arrived: in an INVITE, a re-INVITE, a PRACK or an UPDATE. Refused with any status,
     * the session stays as it was. */
    Reply receiveOffer(std::string_view text) {
        const auto offer = sdpline::Body::decode(text, detail::kOptions);
        if (!offer) {
            return refused(offer.error());
        }
        const sdpline::Status received = session_.receiveOffer(*offer);
        if (!received) { /* Glare: ours waits for its answer (RFC 3261 section 14.2) */
            return received.error().check == "Glare" ? Reply{491, "Request Pending"}
                                                     : detail::failure(received.error());
        }
        const auto mine = ours(local_.everything);
        auto answer = mine ? session_.answer(*mine, {.openIfRejected = true})
                           : sdpline::Result<sdpline::Answer>(mine.error());
        if (!answer || !answer->accepted) {
            (void)session_.refuse();
            return answer ? refused(answer->decisions) : detail::failure(answer.error());
        }
        auto written = answer->body.encode();
        if (!written) {
            return detail::failure(written.error());
        }
        return {.body = *std::move(written),
                .unmet = isUnmet(answer->streams),
                .decisions = std::move(answer->decisions)};
    }

    /* Our offer: in an INVITE, a re-INVITE, or the response to an INVITE that has none. */
    sdpline::Result<std::string> offer(Wanted wanted) {
        const auto mine = ours(wanted == Wanted::Fax    ? local_.fax
                               : wanted == Wanted::Held ? local_.held
                                                        : local_.speech);
        if (!mine) {
            return mine.error();
        }
        return session_.offer(*mine).and_then([](const auto &body) { return body.encode(); });
    }

    /* The same where the peer's INVITE has none. */
    Reply offerInResponse(Wanted wanted) {
        auto body = offer(wanted);
        return body ? Reply{.body = *std::move(body)} : detail::failure(body.error());
    }

    /* The answer to our offer arrived. After an error there is no new session: the caller ends the
     * call, or, after a re-INVITE, continues with the previous session. */
    sdpline::Result<sdpline::Agreement> receiveAnswer(std::string_view text) {
        const auto answer = sdpline::Body::decode(text, detail::kOptions);
        if (!answer) {
            (void)session_.refused();
            return answer.error();
        }
        return session_.receiveAnswer(*answer);
    }

    /* Our offer was refused, or the response has no answer: the previous session continues. */
    void offerRefused() { (void)session_.refused(); }

    bool awaitsAnswer() const {
        return session_.state() == sdpline::Negotiator::State::HaveLocalOffer;
    }
    bool established() const { return session_.local() != nullptr; }

private:
    /* A model with the session id and the ports of this call. A real agent uses the ports of the
     * sockets that it opened. */
    sdpline::Result<sdpline::Body> ours(const sdpline::Body &model) const {
        auto body = model.clone();
        if (!body) {
            return body.error();
        }
        const std::string id = std::to_string(number_);
        sdpline::Origin origin = body->origin();
        origin.sessionId = id;
        sdpline::Status done = body->setOrigin(origin);
        const std::uint32_t first = 20000 + number_ % 4000 * 10;
        for (const sdpline::MediaEditor media : body->media()) {
            done = done.and_then([&] { return media.setPort(first + media.port()); });
        }
        return done ? std::move(body) : done.error();
    }

    /* The message to the peer: line, column and sentence, without names of the library. */
    Reply refused(const sdpline::Error &error) const {
        if (error.fault == sdpline::Fault::Memory || error.fault == sdpline::Fault::Busy) {
            return detail::failure(error);
        }
        Reply reply = detail::refusal(400, "Bad Request", local_, error.reason());
        reply.log = error.message();
        return reply;
    }

    /* Every stream was rejected: the response gives the first reason. */
    Reply refused(const std::vector<sdpline::Decision> &decisions) const {
        for (const sdpline::Decision &decision : decisions) {
            if (decision.kind == sdpline::DecisionKind::Rejection) {
                const bool condition =
                    decision.name == "PreconditionUnknown" || decision.name == "PreconditionFailed";
                return condition
                           ? detail::refusal(580, "Precondition Failure", local_, decision.sentence)
                           : detail::refusal(488, "Not Acceptable Here", local_, decision.sentence);
            }
        }
        return detail::refusal(488, "Not Acceptable Here", local_, "no stream can be taken");
    }

    static bool isUnmet(const std::vector<sdpline::NegotiatedStream> &streams) {
        for (const sdpline::NegotiatedStream &stream : streams) {
            if (stream.accepted && stream.preconditions == sdpline::Preconditions::Unmet) {
                return true;
            }
        }
        return false;
    }

    const Local &local_;
    std::uint32_t number_;
    sdpline::Negotiator session_;
};

} // namespace calls

#endif

// Every allocation of every call fails once: the call returns an error or works without, and frees
// all.
#include <gtest/gtest.h>

#include <functional>

#include "negotiate/documents.hpp"
#include "support/allocations.hpp"

namespace negotiate_test {

namespace {

using support::Allocations;
using support::Held;

constexpr uint32_t kNoMemory = 3;

// Runs a call again and again, its first allocation failing, then its second, until none does.
void failEach(const std::string &name, const std::function<SDPResult()> &call) {
    const Held before = Held::now();
    for (uint32_t n = 1;; ++n) {
        Allocations::failAt(n);
        const SDPResult result = call();
        const bool failed = Allocations::failed();
        Allocations::reset();
        ASSERT_EQ(Held::now(), before) << name << ": allocation " << n << " leaked";
        if (!failed) {
            ASSERT_EQ(result, 0u) << name;
            ASSERT_GT(n, 1u) << name << " allocates nothing";
            return;
        }
        ASSERT_EQ(result, kNoMemory) << name << ": allocation " << n;
    }
}

struct Input {
    explicit Input(const Case &current) {
        for (const char *const kind :
             {"offer", "local", "previous", "reply", "sent", "next", "wanted"}) {
            if (current.has(kind)) {
                bodies.emplace(kind,
                               std::make_unique<sdpline::Body>(bodyOf(current, kind).value()));
            }
        }
    }
    const SdpLine *operator[](const std::string &kind) const {
        const auto found = bodies.find(kind);
        return found != bodies.end() ? found->second->record() : nullptr;
    }
    std::map<std::string, std::unique_ptr<sdpline::Body>> bodies;
};

void failAnswer(const std::string &name, const Case &current, const Input &input) {
    const auto options = optionsOf(current);
    const auto record = sdpline::negotiate_detail::optionsOf(options);
    failEach(name, [&] {
        SdpLine *answer = nullptr;
        SdpNegotiateReport *report = nullptr;
        const SDPResult result = SdpNegotiateAnswer(input["offer"], input["local"],
                                                    input["previous"], &record, &answer, &report);
        EXPECT_EQ(answer != nullptr, result == 0);
        EXPECT_EQ(report != nullptr, result == 0);
        SdpLibReleaseSdp(&answer);
        SdpNegotiateReleaseReport(&report);
        return result;
    });
}

// A call that makes something, which is released.
template <class Made, class Release, class Call>
void failMaking(const std::string &name, Release release, const Call &call) {
    failEach(name, [&] {
        Made *made = nullptr;
        const SDPResult result = call(&made);
        release(&made);
        return result;
    });
}
template <class Call>
void failReport(const std::string &name, const Call &call) {
    failMaking<SdpNegotiateReport>(name, SdpNegotiateReleaseReport, call);
}
template <class Call>
void failBody(const std::string &name, const Call &call) {
    failMaking<SdpLine>(name, SdpLibReleaseSdp, call);
}

void failAgreeAndCheck(const std::string &name, const Input &input) {
    for (const uint32_t side : {SDP_NEGOTIATE_OFFERER, SDP_NEGOTIATE_ANSWERER}) {
        failReport(name, [&](SdpNegotiateReport **report) {
            return SdpNegotiateAgree(input["offer"], input["reply"], side, report);
        });
    }
    failReport(name, [&](SdpNegotiateReport **report) {
        return SdpNegotiateCheck(input["offer"], input["reply"], report);
    });
}

TEST(NegotiateMemory, EveryAllocationOfEveryCaseFails) {
    SdpSetSupMedProtoRtpAvpf(1);
    for (const Case &current : readCases(SDPLINE_NEGOTIATE_CASES)) {
        const Input input(current);
        const std::string name = current.file + ": " + current.title;
        if (current.has("offer") && current.has("local")) {
            failAnswer(name, current, input);
        } else if (current.has("offer")) {
            failAgreeAndCheck(name, input);
        } else if (current.has("next")) {
            failReport(name, [&](SdpNegotiateReport **report) {
                return SdpNegotiateCheckNext(input["sent"], input["next"], report);
            });
        } else if (current.has("wanted")) {
            failBody(name, [&](SdpLine **offer) {
                return SdpNegotiateNextOffer(input["sent"], input["wanted"], offer);
            });
        } else {
            failBody(name, [&](SdpLine **body) {
                return SdpNegotiateCapabilities(input["local"], body);
            });
        }
    }
    SdpSetSupMedProtoRtpAvpf(0);
}

// A call of the state machine that fails has changed nothing.
class Session {
public:
    Session() { SdpNegotiateCreate(&session_); }
    ~Session() { SdpNegotiateRelease(&session_); }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;
    SdpNegotiator *get() const { return session_; }

private:
    SdpNegotiator *session_ = nullptr;
};

sdpline::Body bodyWith(const std::string &media) {
    return sdpline::Body::decode(kLocalHead + media).value();
}

using Step = std::function<SDPResult(SdpNegotiator *)>;

// Fails each allocation of a call until it succeeds, which it does once.
void failStep(Session &session, const Step &call) {
    const uint32_t state = SdpNegotiateGetState(session.get());
    const SdpLine *const local = SdpNegotiateGetLocal(session.get());
    for (uint32_t n = 1;; ++n) {
        const Held before = Held::now();
        Allocations::failAt(n);
        const SDPResult result = call(session.get());
        const bool failed = Allocations::failed();
        Allocations::reset();
        if (!failed) {
            ASSERT_EQ(result, 0u);
            return;
        }
        ASSERT_EQ(result, kNoMemory) << "allocation " << n;
        ASSERT_EQ(Held::now(), before) << "allocation " << n << " leaked";
        ASSERT_EQ(SdpNegotiateGetState(session.get()), state);
        ASSERT_EQ(SdpNegotiateGetLocal(session.get()), local);
    }
}

Step offering(const sdpline::Body &local) {
    return [&local](SdpNegotiator *machine) {
        SdpLine *made = nullptr;
        const SDPResult result = SdpNegotiateOffer(machine, local.record(), &made);
        SdpLibReleaseSdp(&made);
        return result;
    };
}

Step receiving(const sdpline::Body &answer, uint32_t provisional) {
    return [&answer, provisional](SdpNegotiator *machine) {
        SdpNegotiateReport *report = nullptr;
        const SDPResult result =
            SdpNegotiateReceiveAnswer(machine, answer.record(), provisional, &report);
        SdpNegotiateReleaseReport(&report);
        return result;
    };
}

Step answering(const sdpline::Body &local, uint32_t provisional) {
    return [&local, provisional](SdpNegotiator *machine) {
        SdpLine *made = nullptr;
        SdpNegotiateReport *report = nullptr;
        const SDPResult result =
            SdpNegotiateMakeAnswer(machine, local.record(), nullptr, provisional, &made, &report);
        SdpLibReleaseSdp(&made);
        SdpNegotiateReleaseReport(&report);
        return result;
    };
}

TEST(NegotiateMemory, TheStateMachineChangesNothingWhenItFails) {
    const auto local = bodyWith("m=audio 40000 RTP/AVP 0 8\na=rtpmap:0 PCMU/8000\n");
    const auto hold = bodyWith("m=audio 40000 RTP/AVP 0 8\na=sendonly\n");
    const auto bad = bodyWith("m=audio 40000 RTP/AVP 3 200\n");
    const Held before = Held::now();
    {
        Session session;
        failStep(session, offering(hold));
        failStep(session, receiving(bad, 1));
        failStep(session, receiving(local, 0));
        failStep(session, [&](SdpNegotiator *machine) {
            return SdpNegotiateReceiveOffer(machine, hold.record());
        });
        failStep(session, answering(local, 1));
        failStep(session, answering(local, 0));
        failStep(session, offering(hold));
        ASSERT_EQ(SdpNegotiateRefused(session.get()), 0u);
    }
    EXPECT_EQ(Held::now(), before);
}

TEST(NegotiateMemory, NoMemoryForASession) {
    for (uint32_t n = 1; n <= 2; ++n) {
        Allocations::failAt(n);
        auto *session = reinterpret_cast<SdpNegotiator *>(1);
        EXPECT_EQ(SdpNegotiateCreate(&session), kNoMemory);
        EXPECT_EQ(session, nullptr);
        Allocations::reset();
    }
    Allocations::failAt(1);
    sdpline::Negotiator session;
    Allocations::reset();
    EXPECT_EQ(session.state(), sdpline::Negotiator::State::Stable);
    EXPECT_FALSE(session.refuse());
}

TEST(NegotiateMemory, ACheckWithoutMemorySaysSo) {
    const auto body = bodyWith("m=audio 40000 RTP/AVP 0\n");
    Allocations::failAt(1);
    const auto decisions = sdpline::check(body, body);
    Allocations::failAt(1);
    const auto next = sdpline::checkNext(body, body);
    Allocations::reset();
    ASSERT_EQ(decisions.size(), 1u);
    EXPECT_EQ(decisions[0].name, "NoMemory");
    EXPECT_EQ(decisions[0].kind, sdpline::DecisionKind::Refusal);
    ASSERT_EQ(next.size(), 1u);
    Allocations::failAt(1);
    const auto answer = sdpline::answer(body, body);
    Allocations::reset();
    EXPECT_EQ(answer.error().fault, sdpline::Fault::Memory);
}

// A session keeps the description sent last and the one in force, and frees an answered offer.
TEST(NegotiateMemory, ASettledSessionKeepsNoOffer) {
    const auto local = sdpline::Body::decode(kLocalHead + "m=audio 40000 RTP/AVP 0\n");
    const auto remote = sdpline::Body::decode(kOfferHead + "m=audio 49170 RTP/AVP 0\n");
    SdpNegotiator *session = nullptr;
    ASSERT_EQ(SdpNegotiateCreate(&session), 0u);
    const Held before = Held::now();
    const auto settle = [&] {
        SdpLine *body = nullptr;
        EXPECT_EQ(SdpNegotiateReceiveOffer(session, remote->record()), 0u);
        EXPECT_EQ(SdpNegotiateMakeAnswer(session, local->record(), nullptr, 0, &body, nullptr), 0u);
        SdpLibReleaseSdp(&body);
        return Held::now().blocks - before.blocks;
    };
    const uint64_t answered = settle();
    EXPECT_EQ(settle(), answered);
    SdpLine *body = nullptr;
    EXPECT_EQ(SdpNegotiateOffer(session, local->record(), &body), 0u);
    SdpLibReleaseSdp(&body);
    EXPECT_EQ(SdpNegotiateReceiveAnswer(session, remote->record(), 0, nullptr), 0u);
    EXPECT_EQ(Held::now().blocks - before.blocks, answered);
    EXPECT_EQ(answered, 3u) << "ours in force, theirs, and what was sent last";
    SdpNegotiateRelease(&session);
}

} // namespace

} // namespace negotiate_test

// Making the answer to an offer, stream by stream.
#pragma once

#include <optional>

#include "negotiate/attributes.hpp"
#include "negotiate/describe.hpp"
#include "negotiate/direction.hpp"
#include "negotiate/draft.hpp"
#include "negotiate/pairing.hpp"
#include "negotiate/transport.hpp"

namespace sdpline::negotiate {

// The input of a call of SdpNegotiateAnswer.
struct AnswerInput {
    const SdpLine &offer;
    const SdpLine &local;
    const SdpLine *previous;
    const SdpNegotiateOptions &options;
};

// One offered stream, and the local stream with which it is answered.
struct Match {
    const SDPMediaDesc *offered = nullptr;
    const SDPMediaDesc *ours = nullptr;
    uint32_t stream = 0;
    uint32_t local = 0;
    uint32_t port = 0;
    bool multicast = false;
    Setup setup{};
    Crypto crypto{};
};

// Writes the lines of an accepted stream into its draft, and the stream into the report.
class StreamWriter {
public:
    StreamWriter(const AnswerInput &input, const Match &match, const Pairing &pairing,
                 Report &report, MediaDraft &draft, SdpNegotiateStream &stream)
        : input_(input), match_(match), pairing_(pairing), report_(report), draft_(draft),
          stream_(stream), offered_(*match.offered), ours_(*match.ours),
          theirDirection_(directionLine(input.offer, *match.offered)) {}

    void run();

private:
    void mediaLine();
    void formats();
    void format(uint32_t place, SdpNegotiateFormat &target);
    void mapLine(const Format &offered, const Format &ours);
    std::string_view parameterLine(uint32_t place, const Format &offered, const Format &ours);
    void declared();
    bool passes(const SDPAttr &attribute);
    void multicastLines();
    void transport();
    void multiplexing();
    void preconditions();
    uint32_t flows() const;
    void direction();
    void acceptance();
    void notes();

    void add(const SDPAttr &attribute) { draft_.attributes.add(attribute); }
    const SDPAttr *offeredLine(std::string_view name) const {
        return find(attributesOf(offered_.pstAttrList), name);
    }
    const SDPAttr *ourLine(std::string_view name) const {
        return find(attributesOf(ours_.pstAttrList), name);
    }

    const AnswerInput &input_;
    const Match &match_;
    const Pairing &pairing_;
    Report &report_;
    MediaDraft &draft_;
    SdpNegotiateStream &stream_;
    const SDPMediaDesc &offered_;
    const SDPMediaDesc &ours_;
    const SDPAttr *theirDirection_;
    std::optional<bool> hasIce_; // the offer has, once it was looked for
    std::optional<bool> hasDtls_;
};

// Whether our line of an attribute is copied to the answer, in a stream or in the session.
// offers(name) returns whether the offer has the attribute of that name there.
template <class Offers>
bool passesThrough(const SDPAttr &attribute, Offers offers) {
    switch (handlingOf(attribute)) {
    case Handling::Ours:
    case Handling::Unknown: return true;
    case Handling::Ice: return offers("ice-ufrag");
    case Handling::Dtls: return offers("fingerprint");
    case Handling::Negotiated:
    case Handling::Offered: break;
    }
    return false;
}

} // namespace sdpline::negotiate

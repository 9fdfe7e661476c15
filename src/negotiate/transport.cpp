// The setup of connections, and the keys of media.
#include "negotiate/transport.hpp"

namespace sdpline::negotiate {

bool isDtls(const SDPMediaDesc &media) {
    return media.stMediaField.stProto.enProto == SDP_PROTO_OTHER &&
           hasWord(protocolWord(media), "TLS");
}
bool isTcp(const SDPMediaDesc &media) {
    return protocolIs(media, SDP_PROTO_TCP,
                      [](std::string_view word) { return sameWord(firstBytes(word, 3), "TCP"); });
}
bool isSavp(const SDPMediaDesc &media) {
    return protocolIs(media, SDP_PROTO_RTP_SAVP, [](std::string_view word) {
        return hasWord(word, "SAVP") && !hasWord(word, "TLS");
    });
}
bool hasFeedback(const SDPMediaDesc &media) {
    return protocolIs(media, SDP_PROTO_RTP_AVPF,
                      [](std::string_view word) { return hasWord(word, "AVPF"); });
}

bool fitsProtocol(const SDPMediaDesc &offered, const SDPMediaDesc &ours, bool avpForAvpf) {
    if (sameProtocol(offered, ours)) {
        return true;
    }
    const std::string_view theirs = protocolWord(offered);
    return avpForAvpf && hasFeedback(offered) &&
           sameWord(firstBytes(theirs, theirs.size() - 1), protocolWord(ours));
}

// ---- a=setup

namespace {

// Whether a=setup applies: over TCP or DTLS, or where both sides offer DTLS for the keys of another
// protocol.
bool usesSetup(const Sides &sides) {
    return isTcp(sides.offered) || isDtls(sides.offered) ||
           (findFor(sides.offer, sides.offered, "fingerprint") != nullptr &&
            findFor(sides.local, sides.ours, "fingerprint") != nullptr);
}

// The a=setup role of a stream; 0 for none.
uint32_t setupOf(const SdpLine &body, const SDPMediaDesc &media) {
    const SDPAttr *const line = findFor(body, media, uint32_t{SDP_ATTR_SETUP});
    return line != nullptr ? line->unAttrValue.enT120Mode : 0;
}

} // namespace

// Without a=setup the offerer opens the connection (RFC 4145 section 4.1). If we may choose, we
// open it, because we can begin at once (RFC 5763 section 5).
Setup chooseSetup(const Sides &sides) {
    const uint32_t theirs = setupOf(sides.offer, sides.offered);
    const uint32_t ours = setupOf(sides.local, sides.ours);
    if ((theirs == 0 && ours == 0) || !usesSetup(sides)) {
        return {};
    }
    if (theirs == SDP_T120_ACTPASS) {
        return {Reason::None,
                ours == SDP_T120_PASSIVE ? uint32_t{SDP_T120_PASSIVE} : uint32_t{SDP_T120_ACTIVE}};
    }
    const uint32_t mode = theirs == SDP_T120_PASSIVE ? SDP_T120_ACTIVE : SDP_T120_PASSIVE;
    const bool fits = ours == 0 || ours == SDP_T120_ACTPASS || ours == mode;
    return {fits ? Reason::None : Reason::SetupConflict, mode};
}

void writeSetups(const Sides &sides, Text &text) {
    const auto write = [&](const char *side, uint32_t mode) {
        text << side << (mode != 0 ? wordOf(SetupRole{mode}) : std::string_view("no a=setup"));
    };
    write("offered ", setupOf(sides.offer, sides.offered));
    write(", ours ", setupOf(sides.local, sides.ours));
}

// "existing" is answered only if the offer has it and there is a connection (RFC 4145 section 5.2):
// our a=connection tells, or else an open line over the same protocol in our previous description.
std::string_view chooseConnection(const Sides &sides, const SDPMediaDesc *previous) {
    const SDPAttr *const theirs = findFor(sides.offer, sides.offered, "connection");
    if (theirs == nullptr || !usesSetup(sides)) {
        return {};
    }
    const SDPAttr *const ours = findFor(sides.local, sides.ours, "connection");
    const bool open = previous != nullptr && previous->stMediaField.ulPort != 0 &&
                      sameProtocol(*previous, sides.offered);
    const bool existing = ours != nullptr ? otherValue(*ours) == "existing" : open;
    return existing && otherValue(*theirs) == "existing" ? "existing" : "new";
}

// ---- a=crypto

namespace {

struct CryptoLine {
    std::string_view tag;
    std::string_view suite;
    std::string_view keys;
    std::string_view parameters; // session parameters
};

CryptoLine cryptoOf(const SDPAttr &attribute) {
    std::string_view text = otherValue(attribute);
    CryptoLine line;
    line.tag = takeWord(text);
    line.suite = takeWord(text);
    line.keys = takeWord(text);
    line.parameters = text;
    return line;
}

bool isCrypto(const SDPAttr &attribute) {
    return otherName(attribute) == "crypto";
}

// The set of negotiated session parameters, which both sides must have or not have (RFC 4568
// section 6.3).
uint32_t negotiatedParameters(const CryptoLine &line) {
    constexpr std::string_view kNames[] = {"UNENCRYPTED_SRTP", "UNENCRYPTED_SRTCP",
                                           "UNAUTHENTICATED_SRTP"};
    uint32_t found = 0;
    for (std::string_view rest = line.parameters; !rest.empty();) {
        const std::string_view word = takeWord(rest);
        for (uint32_t i = 0; i < 3; ++i) {
            found |= sameWord(word, kNames[i]) ? 1u << i : 0;
        }
    }
    return found;
}

bool fits(const CryptoLine &theirs, const CryptoLine &ours) {
    return sameWord(theirs.suite, ours.suite) &&
           negotiatedParameters(theirs) == negotiatedParameters(ours);
}

} // namespace

// Chooses the first offered line whose suite we have: the offer is in order of preference.
Crypto chooseCrypto(const Sides &sides) {
    if (!isSavp(sides.offered)) {
        return {};
    }
    const AttributeSpan theirs = attributesOf(sides.offered.pstAttrList);
    const AttributeSpan ours = attributesOf(sides.ours.pstAttrList);
    for (const SDPAttr *const offered : theirs) {
        for (const SDPAttr *const own : ours) {
            if (isCrypto(*offered) && isCrypto(*own) && fits(cryptoOf(*offered), cryptoOf(*own))) {
                return {Reason::None, offered, own};
            }
        }
    }
    // Keys may also come from DTLS, or from something that is not examined here.
    const bool offersCrypto = find(theirs, "crypto") != nullptr;
    const bool haveCrypto = find(ours, "crypto") != nullptr;
    const bool dtls = findFor(sides.offer, sides.offered, "fingerprint") != nullptr &&
                      findFor(sides.local, sides.ours, "fingerprint") != nullptr;
    const bool other = dtls || (!offersCrypto && !haveCrypto);
    return {other ? Reason::None : Reason::NoCommonCrypto, nullptr, nullptr};
}

void writeCrypto(const Crypto &crypto, Text &text) {
    const CryptoLine theirs = cryptoOf(*crypto.offered);
    const CryptoLine ours = cryptoOf(*crypto.ours);
    text << theirs.tag << " " << theirs.suite << " " << ours.keys;
    if (!ours.parameters.empty()) {
        text << " " << ours.parameters;
    }
}

void writeSuites(const Sides &sides, Text &text) {
    const auto write = [&](const char *side, const SDPMediaDesc &media) {
        bool any = false;
        text << side;
        for (const SDPAttr *const line : attributesOf(media.pstAttrList)) {
            if (isCrypto(*line)) {
                const CryptoLine crypto = cryptoOf(*line);
                text << " " << crypto.suite << (crypto.parameters.empty() ? "" : " ")
                     << crypto.parameters;
                any = true;
            }
        }
        text << (any ? "" : " none");
    };
    write("offered", sides.offered);
    write(", ours", sides.ours);
}

// ---- Checks. Here `ours` is the stream of the answer.

namespace {

void checkSetup(const Sides &sides, uint32_t stream, Report &report) {
    const uint32_t answered = setupOf(sides.local, sides.ours);
    if (!usesSetup(sides) || answered == 0) {
        return;
    }
    const uint32_t offered = setupOf(sides.offer, sides.offered);
    const uint32_t theirs = offered != 0 ? offered : uint32_t{SDP_T120_ACTIVE};
    if (answered == SDP_T120_ACTPASS || (theirs != SDP_T120_ACTPASS && answered == theirs)) {
        report.add(Reason::SetupWrong, stream, wordOf(SetupRole{answered}));
    }
}

void checkCrypto(const Sides &sides, uint32_t stream, Report &report) {
    uint32_t offered = 0;
    uint32_t answered = 0;
    for (const SDPAttr *const line : attributesOf(sides.offered.pstAttrList)) {
        offered += isCrypto(*line) ? 1 : 0;
    }
    for (const SDPAttr *const line : attributesOf(sides.ours.pstAttrList)) {
        if (!isCrypto(*line)) {
            continue;
        }
        if (++answered == 2) {
            report.add(Reason::CryptoSeveral, stream);
        }
        const CryptoLine ours = cryptoOf(*line);
        bool known = false;
        for (const SDPAttr *const other : attributesOf(sides.offered.pstAttrList)) {
            const CryptoLine theirs = cryptoOf(*other);
            known = known || (isCrypto(*other) && theirs.tag == ours.tag && fits(theirs, ours));
        }
        if (!known) {
            report.add(Reason::CryptoNotOffered, stream, ours.tag);
        }
    }
    const bool dtls = findFor(sides.local, sides.ours, "fingerprint") != nullptr;
    if (offered != 0 && answered == 0 && !dtls) {
        report.add(Reason::CryptoMissing, stream);
    }
}

} // namespace

void checkTransport(const Sides &sides, uint32_t stream, Report &report) {
    checkSetup(sides, stream, report);
    if (isSavp(sides.offered)) {
        checkCrypto(sides, stream, report);
    }
}

} // namespace sdpline::negotiate

// Which side opens a connection (RFC 4145), and which keys protect it (RFC 4568).
#pragma once

#include "negotiate/draft.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

constexpr uint32_t kDiscardPort = 9;

bool isDtls(const SDPMediaDesc &media);      // "UDP/TLS/RTP/SAVP"
bool isTcp(const SDPMediaDesc &media);       // "TCP", "TCP/BFCP"
bool isSavp(const SDPMediaDesc &media);      // RTP/SAVP, RTP/SAVPF: keys by a=crypto
bool hasFeedback(const SDPMediaDesc &media); // the AVPF profiles

// Whether a stream of our protocol fits the offered one. The protocols are equal without case; with
// `avpForAvpf`, AVP also fits AVPF, and SAVP fits SAVPF.
bool fitsProtocol(const SDPMediaDesc &offered, const SDPMediaDesc &ours, bool avpForAvpf);

// One stream of an offer, and the local stream with which it is answered.
struct Sides {
    const SdpLine &offer;
    const SDPMediaDesc &offered;
    const SdpLine &local;
    const SDPMediaDesc &ours;
};

struct Setup {
    Reason rejected = Reason::None;
    uint32_t mode = 0; // SDP_T120_..., 0 for no a=setup
};
Setup chooseSetup(const Sides &sides);
void writeSetups(const Sides &sides, Text &text); // "offered active, ours active"

// The value of a=connection in the answer; empty for none. `previous` is the stream in our last
// description, null if it had none.
std::string_view chooseConnection(const Sides &sides, const SDPMediaDesc *previous);

struct Crypto {
    Reason rejected = Reason::None;
    const SDPAttr *offered = nullptr; // null where no a=crypto is used
    const SDPAttr *ours = nullptr;
};
Crypto chooseCrypto(const Sides &sides);
void writeCrypto(const Crypto &crypto, Text &text);
void writeSuites(const Sides &sides, Text &text); // "offered F8_128_HMAC_SHA1_80, ours none"

void checkTransport(const Sides &sides, uint32_t stream, Report &report);

} // namespace sdpline::negotiate

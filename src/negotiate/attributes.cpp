// The table of attribute names that negotiation knows.
#include "negotiate/attributes.hpp"

#include <iterator>

namespace sdpline::negotiate {

namespace {

struct Row {
    std::string_view name;
    Handling handling;
    bool transport;
    bool capability;
};

// Names are compared with case (RFC 4566 section 6).
constexpr Row kRows[] = {
    {"mid", Handling::Negotiated, false, false},
    {"group", Handling::Negotiated, false, false},
    {"crypto", Handling::Negotiated, true, false},
    {"connection", Handling::Negotiated, true, false},
    {"rtcp-mux", Handling::Negotiated, true, true},
    {"rtcp-rsize", Handling::Negotiated, false, true},
    {"rtcp-fb", Handling::Negotiated, false, true},
    {"bundle-only", Handling::Negotiated, false, false},
    {"ice-ufrag", Handling::Ice, true, false},
    {"ice-pwd", Handling::Ice, true, false},
    {"ice-options", Handling::Ice, true, false},
    {"ice-lite", Handling::Ice, true, false},
    {"ice-pacing", Handling::Ice, true, false},
    {"candidate", Handling::Ice, true, false},
    {"remote-candidates", Handling::Ice, true, false},
    {"end-of-candidates", Handling::Ice, true, false},
    {"fingerprint", Handling::Dtls, true, false},
    {"tls-id", Handling::Dtls, true, false},
    {"rtcp", Handling::Ours, true, false},
    {"ssrc", Handling::Ours, false, false},
    {"ssrc-group", Handling::Ours, false, false},
    {"msid", Handling::Ours, false, false},
    {"msid-semantic", Handling::Ours, false, false},
    {"label", Handling::Ours, false, false},
    {"content", Handling::Ours, false, false},
    {"minptime", Handling::Ours, false, true},
    {"sctp-port", Handling::Ours, false, false},
    {"max-message-size", Handling::Ours, false, true},
    {"sctpmap", Handling::Ours, false, false},
    {"extmap", Handling::Offered, false, true},
    {"extmap-allow-mixed", Handling::Offered, false, true},
    {"rid", Handling::Offered, false, false},
    {"simulcast", Handling::Offered, false, false},
    {"imageattr", Handling::Offered, false, true},
    {"rtcp-mux-only", Handling::Offered, true, false},
};

// A hash table with chains: `first` is the first row of a bucket, `next` the row that follows a row
// in its bucket; kNoRow ends a chain.
constexpr uint8_t kNoRow = 255;
constexpr size_t kBuckets = 64;

constexpr size_t bucketOf(std::string_view name) {
    return (static_cast<uint8_t>(name[0]) * 5 + name.size()) % kBuckets;
}

struct Chains {
    uint8_t first[kBuckets];
    uint8_t next[std::size(kRows)];
};
constexpr Chains kChains = [] {
    Chains chains = {};
    for (uint8_t &place : chains.first) {
        place = kNoRow;
    }
    for (size_t i = 0; i < std::size(kRows); ++i) {
        uint8_t &first = chains.first[bucketOf(kRows[i].name)];
        chains.next[i] = first;
        first = static_cast<uint8_t>(i);
    }
    return chains;
}();

const Row *rowOf(std::string_view name) {
    if (name.empty()) {
        return nullptr;
    }
    for (uint8_t i = kChains.first[bucketOf(name)]; i != kNoRow; i = kChains.next[i]) {
        if (same(kRows[i].name, name)) {
            return &kRows[i];
        }
    }
    return nullptr;
}

bool isNegotiatedType(const SDPAttr &attribute) {
    return attribute.ulAttrType == SDP_ATTR_RTPMAP || attribute.ulAttrType == SDP_ATTR_FMTP ||
           attribute.ulAttrType == SDP_ATTR_SETUP || isDirection(attribute) || isT38(attribute) ||
           isPrecondition(attribute);
}

bool isOther(const SDPAttr &attribute) {
    return attribute.ulAttrType == SDP_ATTR_UNREC_VALUE ||
           attribute.ulAttrType == SDP_ATTR_UNREC_NOVALUE;
}

} // namespace

Handling handlingOf(const SDPAttr &attribute) {
    if (!isOther(attribute)) {
        return isNegotiatedType(attribute) ? Handling::Negotiated : Handling::Ours;
    }
    const Row *const row = rowOf(otherName(attribute));
    return row != nullptr ? row->handling : Handling::Unknown;
}

bool isTransport(const SDPAttr &attribute) {
    const Row *const row = rowOf(otherName(attribute));
    return attribute.ulAttrType == SDP_ATTR_SETUP || (row != nullptr && row->transport);
}

bool isCapability(const SDPAttr &attribute) {
    switch (attribute.ulAttrType) {
    case SDP_ATTR_RTPMAP:
    case SDP_ATTR_FMTP:
    case SDP_ATTR_PTIME:
    case SDP_ATTR_MAXPTIME:
    case SDP_ATTR_FRAMERATE:
    case SDP_ATTR_QUALITY: return true;
    default: break;
    }
    const Row *const row = rowOf(otherName(attribute));
    return isT38(attribute) || (row != nullptr && row->capability);
}

} // namespace sdpline::negotiate

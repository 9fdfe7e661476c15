// Directions as sets of two flows: sending and receiving.
#pragma once

#include <cstdint>

#include "negotiate/attributes.hpp"

namespace sdpline::negotiate {

constexpr uint32_t kSends = 1;
constexpr uint32_t kReceives = 2;

constexpr uint32_t flowsOf(uint32_t direction) {
    return direction == SDP_ATTR_SENDRECV   ? kSends | kReceives
           : direction == SDP_ATTR_SENDONLY ? kSends
           : direction == SDP_ATTR_RECVONLY ? kReceives
                                            : 0;
}
constexpr uint32_t directionOf(uint32_t flows) {
    constexpr uint32_t kDirections[] = {SDP_ATTR_INACTIVE, SDP_ATTR_SENDONLY, SDP_ATTR_RECVONLY,
                                        SDP_ATTR_SENDRECV};
    return kDirections[flows & 3];
}
// The flows as the other side sees them: sending and receiving are exchanged.
constexpr uint32_t turned(uint32_t flows) {
    return (flows & kSends) << 1 | (flows & kReceives) >> 1;
}

// The a= line that sets the direction of a stream: one of the stream, else one of the session. Null
// for none, which means sendrecv (RFC 3264 section 5.1).
inline const SDPAttr *directionLine(const SdpLine &body, const SDPMediaDesc &media) {
    for (const SDPAttrList *const list : {media.pstAttrList, body.pstAttrList}) {
        for (const SDPAttr *const attribute : attributesOf(list)) {
            if (isDirection(*attribute)) {
                return attribute;
            }
        }
    }
    return nullptr;
}
inline uint32_t flowsOf(const SDPAttr *line) {
    return line != nullptr ? flowsOf(line->ulAttrType) : kSends | kReceives;
}
inline uint32_t flowsOf(const SdpLine &body, const SDPMediaDesc &media) {
    return flowsOf(directionLine(body, media));
}

inline std::string_view directionWord(uint32_t flows) {
    return wordOf(Direction{directionOf(flows)});
}

} // namespace sdpline::negotiate

/*
 * decodeoptions.hpp: the options of one decode.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_DECODEOPTIONS_HPP
#define SDPLINE_CPP_DECODEOPTIONS_HPP

#include <cstdint>

#include "sdpline/sdpline.h"

namespace sdpline {
inline namespace v1 {

/*
 * The settings of one decode, in place of those of the process. They are passed with the call and
 * apply to this call only. So different threads may decode with different options: one after the
 * other under decodeMutex() or, with SDPLINE_THREAD_LOCAL, at the same time.
 */
struct DecodeOptions {
    /* as SdpSetSupMedProtoRtpFamily(1): "RTP/AVPF", "UDP/TLS/RTP/SAVPF" and the like take a list of
     * payload numbers */
    bool rtpFamily = false;
    std::uint32_t maxBodySize = SDP_MAX_BODY; /* 1 to SDP_MAX_LONG_BODY, else it is refused */
};

} // namespace v1
} // namespace sdpline

#endif

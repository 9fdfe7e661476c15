/*
 * decodeoptions.hpp: what one decode is told.
 *
 * Part of sdpline.hpp, whose conventions hold here.
 */
#ifndef SDPLINE_CPP_DECODEOPTIONS_HPP
#define SDPLINE_CPP_DECODEOPTIONS_HPP

#include <cstdint>

#include "sdpline/sdpline.h"

namespace sdpline {
inline namespace v1 {

/*
 * What one decode takes, in place of the settings of the process: they go with the call, and are in
 * force while it runs and nowhere else. So decodes with different options may run on different
 * threads, one after the other under decodeMutex() or, with SDPLINE_THREAD_LOCAL, beside each
 * other.
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

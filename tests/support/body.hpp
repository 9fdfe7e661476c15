// Owns a decoded body.
#pragma once

#include <memory>

#include "sdpline/sdpline.h"

namespace support {

struct ReleaseBody {
    void operator()(SdpLine *line) const { SdpLibReleaseSdp(&line); }
};
using Body = std::unique_ptr<SdpLine, ReleaseBody>;

} // namespace support

// The settings of decodes: those of the process, or the options of the decode under way.
#pragma once

#include "sdpline/sdpline.h"

namespace sdpline {

extern SDPDecodeOptions decodeSettings;

// The options of the running decode, null where it has none. Like the rest of the decoder's state
// this is one for the process, or one for each thread.
extern SDPLINE_PER_THREAD const SDPDecodeOptions *decodeOptions;

inline const SDPDecodeOptions &settings() {
    const SDPDecodeOptions *const options = decodeOptions;
    return options != nullptr ? *options : decodeSettings;
}

} // namespace sdpline

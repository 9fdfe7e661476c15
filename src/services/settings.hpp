// The settings of decodes: those of the process, or the options of the decode under way.
#pragma once

#include "sdpline/sdpline.h"

namespace sdpline {

extern SDPDecodeOptions decodeSettings;

// Set while a decode runs that was given options, else null. It is part of the decoder's state:
// decodes run one at a time, or each thread has its own.
extern SDPLINE_PER_THREAD const SDPDecodeOptions *decodeOptions;

inline const SDPDecodeOptions &settings() {
    const SDPDecodeOptions *const options = decodeOptions;
    return options != nullptr ? *options : decodeSettings;
}

} // namespace sdpline

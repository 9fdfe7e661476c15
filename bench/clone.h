/* A copy of a body by the C interface, each line by SdpCopyLine or SdpCloneLine, and its release.
 * Returns whether it succeeded. */
#pragma once

#include "sdpline/sdprecords.h"

#ifdef __cplusplus
extern "C" {
#endif

int cloneByC(const SdpLine *from);

#ifdef __cplusplus
}
#endif

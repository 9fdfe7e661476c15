/* The answer to a call by the C interface: decodes an offer, makes an answer with the supported
 * payload numbers, the other lines copied and the direction reversed, encodes it and releases both.
 * Returns whether it succeeded. */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int answerByC(const char *pcText, uint32_t ulLength);

#ifdef __cplusplus
}
#endif

/* A call's answer by the C interface: decodes an offer, makes an answer with the payload numbers
 * that are spoken, the other lines mirrored and the direction reversed, encodes it and releases
 * both. Returns whether it was done. */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int answerByC(const char *pcText, uint32_t ulLength);

#ifdef __cplusplus
}
#endif

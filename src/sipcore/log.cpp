// The variables of the log. The stack sets them; sdpline reads them and writes the code point.
#include "sdpline/sipcore.h"

SipLmLogHndlr g_gpfnSipLmLogHndlr = nullptr;
uint32_t g_gSipCodePoint = 0;
uint32_t g_gSipStackFileId = 0;

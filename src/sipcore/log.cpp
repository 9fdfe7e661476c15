// The logging globals. They are plain data that the stack sets and sdpline reads and writes.
#include "sdpline/sipcore.h"

SipLmLogHndlr g_gpfnSipLmLogHndlr = nullptr;
uint32_t g_gSipCodePoint = 0;
uint32_t g_gSipStackFileId = 0;

// Log entries for the stack's hook.
#pragma once

#include <cstdint>

#include "sdpline/sipcore.h"

namespace sdpline {

struct LogEntry {
    uint32_t level;
    const char *file;
    const char *function;
    uint32_t line;
    uint32_t category;
    const char *format; // null without a message; else its one argument is the value
    uint32_t value;
};

// Sets g_gSipCodePoint to the place of an entry; also done where no hook is set.
void setCodePoint(uint32_t fileNumber, uint32_t line);

// Calls the stack's hook. The hook may do what a program may do: append to the buffer that is being
// written, change the decoder's memory hooks, decode a body.
void log(SipLmLogHndlr hook, const LogEntry &entry);

} // namespace sdpline

// The stack's log.
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
    const char *format; // null without a text; else with one argument, which is the value
    uint32_t value;
};

// The place of the entry that was made last, be there a hook or not.
void setCodePoint(uint32_t fileNumber, uint32_t line);

// Calls the hook that the stack has set, after the code point was set. The hook may do what a
// program does: append to the buffer that is written, change the decoder's hooks, decode a body.
void log(SipLmLogHndlr hook, const LogEntry &entry);

} // namespace sdpline

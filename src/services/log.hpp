// The stack's log.
#pragma once

#include <cstdint>

namespace sdpline {

struct LogEntry {
    uint32_t level;
    uint32_t fileNumber;
    const char *file;
    const char *function;
    uint32_t line;
    uint32_t category;
    const char *format; // null without a text; else with one argument, which is the value
    uint32_t value;
};

// Sets the code point and calls the hook where there is one. The hook may do what a program does:
// append to the buffer that is written, change the decoder's hooks, decode a body.
void log(const LogEntry &entry);

} // namespace sdpline

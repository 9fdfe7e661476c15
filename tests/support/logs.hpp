// Records the entries of the log hook.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sdpline/sipcore.h"

namespace support {

struct LogEntry {
    uint32_t module;
    uint32_t instance;
    uint32_t level;
    std::string file;
    std::string function;
    uint32_t line;
    uint32_t category;
    bool hasMessage;
    std::string message; // formatted

    // level file function category ["message"], for instance
    //     3 sdpencodetime sdpLibEncodeTimeUnit 21 "Time type = 0"
    // where category 4294967295 is "-".
    std::string text() const;
    // The same with the source line: function:line.
    std::string textWithLine() const;
};

// Records every log entry while the object exists; its destructor restores the previous hook.
// Recorders can be nested: the innermost one records.
class LogRecorder {
public:
    LogRecorder();
    ~LogRecorder();
    LogRecorder(const LogRecorder &) = delete;
    LogRecorder &operator=(const LogRecorder &) = delete;

    const std::vector<LogEntry> &entries() const { return entries_; }
    std::vector<std::string> texts() const;
    std::vector<std::string> textsWithLines() const;
    void clear() { entries_.clear(); }

private:
    static void record(uint32_t module, uint32_t instance, uint32_t level, const char *file,
                       const char *function, uint32_t line, uint32_t category, const char *format,
                       ...) __attribute__((format(printf, 8, 9)));

    static LogRecorder *current;

    std::vector<LogEntry> entries_;
    SipLmLogHndlr previousHook_;
    LogRecorder *previous_;
};

} // namespace support

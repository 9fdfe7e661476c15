// Log entries, and the code point.
#include "services/log.hpp"

#include <atomic>

#include "sdpline/sdpline.h"
#include "services/allocation.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kModule = 17;
constexpr uint32_t kInstance = 0xFFFFFFFF;

} // namespace

void setCodePoint(uint32_t fileNumber, uint32_t line) {
    // Atomic, since operations on different threads may write it at the same time.
    std::atomic_ref(g_gSipCodePoint).store(fileNumber << 16 | line, std::memory_order_relaxed);
}

void log(SipLmLogHndlr hook, const LogEntry &entry) {
    if (entry.format != nullptr) {
        hook(kModule, kInstance, entry.level, entry.file, entry.function, entry.line,
             entry.category, entry.format, entry.value);
    } else {
        hook(kModule, kInstance, entry.level, entry.file, entry.function, entry.line,
             entry.category, nullptr);
    }
    foreignCodeRan();
}

} // namespace sdpline

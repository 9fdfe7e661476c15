#include "services/log.hpp"

#include <atomic>

#include "sdpline/sdpline.h"
#include "services/allocation.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kModule = 17;
constexpr uint32_t kInstance = 0xFFFFFFFF;

} // namespace

void log(const LogEntry &entry) {
    // The one datum of the stack's that operations running beside each other write.
    std::atomic_ref(g_gSipCodePoint)
        .store(entry.fileNumber << 16 | entry.line, std::memory_order_relaxed);
    const SipLmLogHndlr hook = g_gpfnSipLmLogHndlr;
    if (hook == nullptr) {
        return;
    }
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

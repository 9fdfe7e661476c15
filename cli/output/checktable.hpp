// A list of the failing checks of the library, to explain results.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "checks/checks.hpp"

namespace cli {

struct CheckInfo {
    uint32_t file; // number of the source file, without the stack's base
    const char *name;
    const char *function;
    sdpline::Outcome outcome;
    const char *sentence;

    bool returns(sdpline::ResultKind kind) const { return outcome.kind == kind; }
};

std::span<const CheckInfo> allChecks();

// The code that a check returns with this base of file numbers, or its bare result.
uint32_t codeOf(const CheckInfo &check, uint32_t fileBase);

// The source file as log entries name it, with the current g_gSipStackFileId; empty for a file
// whose checks have no codes.
std::string_view sourceOf(const CheckInfo &check);

} // namespace cli

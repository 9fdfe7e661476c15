// The library's failing checks as a list, for explaining results.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace cli {

struct CheckInfo {
    uint32_t file; // number of the source file, without the stack's base
    const char *name;
    const char *function;
    enum { Composed, Bare, PassedUp } kind;
    uint32_t location; // of a bare result: the result itself
    uint32_t errorClass;
    const char *sentence;
};

std::span<const CheckInfo> allChecks();

// The code that a composed check returns under that base of file numbers.
uint32_t codeOf(const CheckInfo &check, uint32_t fileBase);

// The source file as log entries name it, under the present g_gSipStackFileId; empty for a file
// whose checks have no codes.
std::string_view sourceOf(const CheckInfo &check);

} // namespace cli

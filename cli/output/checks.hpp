// The library's failing checks as a list, for explaining results.
#pragma once

#include <cstdint>
#include <span>

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

// The code that a composed check answers under that base of file numbers.
uint32_t codeOf(const CheckInfo &check, uint32_t fileBase);

} // namespace cli

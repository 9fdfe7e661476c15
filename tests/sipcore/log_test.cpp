#include "memcontrols.hpp"

#include <gtest/gtest.h>

#include <cstdarg>

namespace {

using namespace sipcoretests;

struct Entry {
    uint32_t module;
    uint32_t line;
    uint32_t argument;
};

Entry lastEntry;

void remember(uint32_t module, uint32_t, uint32_t, const char *, const char *, uint32_t line,
              uint32_t, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    lastEntry = {module, line, format != nullptr ? va_arg(arguments, uint32_t) : 0};
    va_end(arguments);
}

TEST(LogGlobals, areEmptyByDefault) {
    EXPECT_EQ(g_gpfnSipLmLogHndlr, nullptr);
    EXPECT_EQ(g_gSipCodePoint, 0u);
    EXPECT_EQ(g_gSipStackFileId, 0u);
}

TEST(LogGlobals, takeAHookWithAFormat) {
    g_gpfnSipLmLogHndlr = remember;
    g_gpfnSipLmLogHndlr(17, 0xFFFFFFFF, 3, "file", "function", 140, 0, "ulResult=%u", 42u);
    EXPECT_EQ(lastEntry.module, 17u);
    EXPECT_EQ(lastEntry.line, 140u);
    EXPECT_EQ(lastEntry.argument, 42u);
    g_gpfnSipLmLogHndlr(17, 0xFFFFFFFF, 3, "file", "function", 141, 0, nullptr);
    EXPECT_EQ(lastEntry.argument, 0u);
    g_gpfnSipLmLogHndlr = nullptr;
}

} // namespace

#include "memcontrols.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace sipcoretests;

TEST(MemcpyS, copiesWhatFits) {
    char dest[4] = {'-', '-', '-', '-'};
    EXPECT_EQ(memcpy_s(dest, sizeof dest, "abc", 3), 0);
    EXPECT_EQ(std::string_view(dest, 4), "abc-");
    EXPECT_EQ(memcpy_s(dest, sizeof dest, "wxyz", 4), 0);
    EXPECT_EQ(std::string_view(dest, 4), "wxyz");
}

TEST(MemcpyS, copiesNothingWhenItDoesNotFitOrAPointerIsNull) {
    char dest[4] = {'-', '-', '-', '-'};
    EXPECT_NE(memcpy_s(dest, 3, "wxyz", 4), 0);
    EXPECT_NE(memcpy_s(dest, 0, "w", 1), 0);
    EXPECT_NE(memcpy_s(dest, 4, "w", SIZE_MAX), 0);
    EXPECT_NE(memcpy_s(dest, 4, nullptr, 1), 0);
    EXPECT_NE(memcpy_s(nullptr, 4, "w", 1), 0);
    EXPECT_EQ(std::string_view(dest, 4), "----");
}

TEST(MemcpyS, aCountOfZeroSucceedsWhateverThePointers) {
    char dest[1] = {'-'};
    EXPECT_EQ(memcpy_s(dest, 0, "w", 0), 0);
    EXPECT_EQ(memcpy_s(nullptr, 0, nullptr, 0), 0);
    EXPECT_EQ(dest[0], '-');
}

TEST(MemcpyS, overlappingBytesAreCopiedWhole) {
    std::string text = "abcdef";
    EXPECT_EQ(memcpy_s(text.data() + 1, 5, text.data(), 5), 0);
    EXPECT_EQ(text, "aabcde");
}

TEST(MemsetS, fillsWhatFits) {
    char dest[4] = {'-', '-', '-', '-'};
    EXPECT_EQ(memset_s(dest, sizeof dest, 'x', 3), 0);
    EXPECT_EQ(std::string_view(dest, 4), "xxx-");
    EXPECT_EQ(memset_s(dest, sizeof dest, 'y', 4), 0);
    EXPECT_EQ(std::string_view(dest, 4), "yyyy");
}

TEST(MemsetS, fillsNothingWhenItDoesNotFitOrThePointerIsNull) {
    char dest[4] = {'-', '-', '-', '-'};
    EXPECT_NE(memset_s(dest, 3, 'x', 4), 0);
    EXPECT_NE(memset_s(dest, 3, 'x', SIZE_MAX), 0);
    EXPECT_NE(memset_s(nullptr, 4, 'x', 1), 0);
    EXPECT_EQ(std::string_view(dest, 4), "----");
    EXPECT_EQ(memset_s(nullptr, 0, 'x', 0), 0);
}

TEST(SsMemCmp, isZeroForEqualBytesOnly) {
    EXPECT_EQ(SS_MemCmp("abc", "abd", 2), 0);
    EXPECT_LT(SS_MemCmp("abc", "abd", 3), 0);
    EXPECT_GT(SS_MemCmp("abd", "abc", 3), 0);
    EXPECT_EQ(SS_MemCmp("a", "b", 0), 0);
    EXPECT_GT(SS_MemCmp("\xff", "\x01", 1), 0);
}

TEST(SsMemCmp, nullEqualsOnlyNull) {
    EXPECT_EQ(SS_MemCmp(nullptr, "abc", 0), 0);
    EXPECT_EQ(SS_MemCmp(nullptr, nullptr, 3), 0);
    EXPECT_NE(SS_MemCmp(nullptr, "abc", 3), 0);
    EXPECT_NE(SS_MemCmp("abc", nullptr, 3), 0);
}

TEST(AbnormalReports, areCounted) {
    const uint64_t before = statistics().ulAbnormalReports;
    SIPAbnormalSecureFunc("here", 1);
    SIPAbnormalSecureFuncEx("there", 2);
    SIPAbnormalSecureFuncEx(nullptr, 0);
    EXPECT_EQ(statistics().ulAbnormalReports, before + 3);
}

} // namespace

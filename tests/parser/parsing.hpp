// What the tests of single parsers share: a text under the lexer that ends where readable memory
// ends, the parser's memory under watch, and results in words.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpinternals.h"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace support {

// "ok", or the check's name and the class: "TimeStart 101".
std::string named(SDPResult result);

// The bytes of a counted string; "(null)" for a null pointer or null data.
std::string textOf(const SipString &text);
std::string textOf(const SipString *text);

class ParsingTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes the text the input, a NUL behind it, and its first token current in the SDP context.
    void start(std::string_view text);
    // Makes "a=" and the text the input; what stands behind the attribute's name is current.
    void startValue(std::string_view text);

    // Fails the n-th allocation from now on. Memory comes filled with kDirt, not zeroed.
    static void failAllocation(uint32_t n);
    static constexpr uint32_t kDirt = 0xA5A5A5A5;
    // The sizes asked for since the start of the test.
    static const std::vector<uint32_t> &sizesAskedFor();

    support::LogRecorder log;

private:
    std::optional<support::Guarded> input_;
};

} // namespace support

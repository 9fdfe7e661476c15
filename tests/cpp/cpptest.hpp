// What the tests of the C++ API share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "sdpline/sdpline.hpp"

namespace cpptest {

// A body with every kind of line in it, as the encoder writes it.
extern const std::string_view kEveryLine;

// The first three lines, and a media description for attributes to go to.
extern const std::string_view kPlain;

// A body that must be accepted.
sdpline::Body decoded(std::string_view text);

// Its text.
std::string written(const sdpline::Body &body);

// The lines of a text that begin with a letter and "=", without line ends.
std::string linesOf(const std::string &text, char letter);

// A result that must be a success, or a failure by this argument check.
#define EXPECT_DONE(status)                                                                        \
    do {                                                                                           \
        const auto done_ = (status);                                                               \
        EXPECT_TRUE(done_.ok()) << done_.error().message();                                        \
    } while (false)
#define EXPECT_REFUSED(status, why)                                                                \
    do {                                                                                           \
        const auto refused_ = (status);                                                            \
        ASSERT_FALSE(refused_.ok());                                                               \
        EXPECT_EQ(refused_.error().fault, sdpline::Fault::Argument);                               \
        EXPECT_EQ(refused_.error().sentence, why);                                                 \
    } while (false)

} // namespace cpptest

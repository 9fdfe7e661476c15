// The copy of a text for the lexer: the texts that have one, and its contents.
#include "parser/normalform.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "support/guarded.hpp"

namespace {

using support::Guarded;
using namespace std::string_view_literals;

// The end of the normal form, and the padding.
const std::string kAfterBody = std::string("\n\n") + std::string(1 + 16, '\0');

// The copy with everything that is written after it; no value if none is made.
std::optional<std::string> copiedBody(std::string_view text) {
    Guarded input(text);
    Guarded output(text.size() + kAfterBody.size());
    if (!sdpline::copyBody(input.data(), static_cast<uint32_t>(text.size()), output.data())) {
        return std::nullopt;
    }
    return std::string(reinterpret_cast<const char *>(output.data()), output.size());
}

std::string_view beginningOfBody() {
    static const std::string text = "v=" + std::string(50, 'x');
    return text;
}

// Bodies of every length with the bytes at every offset.
template <class Judge>
void atEachOffset(std::string_view bytes, Judge judge) {
    for (size_t size = 18; size < beginningOfBody().size(); ++size) {
        for (size_t at = 2; at + bytes.size() <= size; ++at) {
            std::string text(beginningOfBody().substr(0, size));
            text.replace(at, bytes.size(), bytes);
            SCOPED_TRACE(testing::PrintToString(text));
            judge(text);
        }
    }
}

TEST(BodyCopy, IsTheTextWithWhatEndsTheNormalForm) {
    for (const std::string_view lineEnd : {"\r\n", "\n", "\n\n", "\r\n\r\n", "\n  ", "\t"}) {
        atEachOffset(lineEnd, [](const std::string &text) {
            EXPECT_EQ(copiedBody(text), text + kAfterBody);
        });
    }
}

TEST(BodyCopy, IsNotMadeWhereACrEndsNoLineOrAByteIsNul) {
    for (const std::string_view other : {"\r"sv, "\r\r\n"sv, "\n\r"sv, "\0"sv, "\r\0\n"sv}) {
        atEachOffset(other,
                     [](const std::string &text) { EXPECT_EQ(copiedBody(text), std::nullopt); });
    }
}

TEST(BodyCopy, IsNotMadeOfOtherBeginnings) {
    EXPECT_EQ(copiedBody(" v=0\r\no=- 1 1 IN IP4 x\r\n"), std::nullopt);
    EXPECT_EQ(copiedBody("v-0\r\no=- 1 1 IN IP4 x\r\n"), std::nullopt);
    EXPECT_EQ(copiedBody("V=0\r\no=- 1 1 IN IP4 x\r\n"), std::nullopt);
    for (size_t size = 0; size < 3; ++size) { // too short to be looked at in whole steps
        EXPECT_EQ(copiedBody(beginningOfBody().substr(0, size)), std::nullopt);
    }
}

} // namespace

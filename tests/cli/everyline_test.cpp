// The lines after a refused one, each judged by the parser of its kind.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "output/everyline.hpp"
#include "support/bodies.hpp"
#include "support/damage.hpp"
#include "support/generator.hpp"

namespace {

// "13 ConnNetType, 30 -": offset and check of every fault.
std::string faultsOf(const std::string &body, size_t refusedAt) {
    std::string text;
    for (const cli::Diagnostic &fault : cli::judgeLines(body, refusedAt)) {
        EXPECT_TRUE(fault.alone);
        text += (text.empty() ? "" : ", ") + std::to_string(fault.offset.value()) + ' ' +
                (fault.error ? std::string(fault.error->check) : "-");
    }
    return text;
}

TEST(EveryLine, JudgesEveryKind) {
    for (const char *const good :
         {"v=0", "o=- 1 1 IN IP4 x", "s=x", "i=x", "u=x", "e=x", "p=x", "c=IN IP6 ::1", "b=x",
          "t=1 2", "r=1d 2h 0", "z=x", "k=x", "a=ptime:20", "m=audio 1 RTP/AVP 0"}) {
        EXPECT_EQ(faultsOf(std::string("x\n") + good, 0), "") << good;
    }
    EXPECT_EQ(faultsOf("x\nv=x", 0), "4 VersionDigits");
    EXPECT_EQ(faultsOf("x\no=- 1 x IN IP4 x", 0), "8 OriginVersion");
    EXPECT_EQ(faultsOf("x\nt=1", 0), "5 TimeStartSpace");
    EXPECT_EQ(faultsOf("x\nr=1x", 0), "5 TypedTimeUnit");
    EXPECT_EQ(faultsOf("x\nm=audio RTP/AVP 0", 0), "10 MediaPort");
    EXPECT_EQ(faultsOf("x\na=setup:holdconn", 0), "10 SetupWord");
}

TEST(EveryLine, NamesLinesOfNoKind) {
    EXPECT_EQ(faultsOf("x\nf=1\nA=1\n=\nhello", 0), "2 -, 6 -, 10 -, 12 -");
}

TEST(EveryLine, StopsAtAnEmptyLine) {
    EXPECT_EQ(faultsOf("x\nf=1\n\ng=1\n", 0), "2 -");
    EXPECT_EQ(faultsOf("x\r\nf=1\r\n  \r\ng=1\r\n", 0), "3 -");
    EXPECT_EQ(faultsOf("x", 0), "");
    EXPECT_EQ(faultsOf("x\n", 1), "");
}

TEST(EveryLine, CountsBytesThatTheParserDrops) {
    EXPECT_EQ(faultsOf(std::string("x\r\n \0 t=1 \0x\r\n", 14), 0), "11 TimeStop");
}

TEST(EveryLine, TakesTheLongestLine) {
    EXPECT_EQ(faultsOf("x\na=" + std::string(5000, 'y') + "\nf=1\n", 0), "4 AttrNameText, 5005 -");
    EXPECT_EQ(faultsOf("x\ns=" + std::string(5000, 'y'), 0), "4 TextTooLong");
}

// When the contents of a line cause the refusal of a body, the line by itself is refused for the
// same reason at the same position.
TEST(EveryLine, AgreesWithTheDecoder) {
    std::mt19937 engine(11);
    size_t compared = 0;
    for (int i = 0; i < 8000; ++i) {
        const std::string body = support::damage(support::generateBody(engine), engine);
        const auto decoded = sdpline::Body::decode(body);
        if (decoded) {
            continue;
        }
        const sdpline::Error &error = decoded.error();
        const bool inLine = error.line > 1 &&
                            (error.code & 0x3FF) != SDP_ERRCLASS_UNEXPECTED_LINE &&
                            error.check != "AfterMedia" && error.check != "AfterMediaLine";
        if (!inLine) {
            continue;
        }
        const size_t lineStart = error.offset - error.column + 1;
        const auto faults = cli::judgeLines(body, lineStart - 1);
        ASSERT_FALSE(faults.empty()) << error.check << ' ' << error.offset << '\n'
                                     << support::readable(body) << ::testing::PrintToString(body);
        ASSERT_TRUE(faults.front().error) << error.check << '\n' << support::readable(body);
        EXPECT_EQ(faults.front().error->code, error.code) << support::readable(body);
        EXPECT_EQ(faults.front().offset, error.offset) << error.check << '\n'
                                                       << support::readable(body);
        ++compared;
    }
    EXPECT_GT(compared, 1500u);
}

} // namespace

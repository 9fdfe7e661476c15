// Copies of whole bodies.
#include <random>

#include "cpp/cpptest.hpp"
#include "support/allocations.hpp"
#include "support/generator.hpp"

using namespace cpptest;
using namespace sdpline;

TEST(CppClone, ACopyIsWrittenTheSame) {
    std::mt19937 engine(20);
    for (int i = 0; i < 300; ++i) {
        const std::string text = support::generateBody(engine);
        Body body = decoded(text);
        auto copy = body.clone();
        ASSERT_TRUE(copy) << copy.error().message();
        EXPECT_EQ(written(*copy), written(body)) << text;
    }
}

TEST(CppClone, ACopyHoldsWhatIsNotWritten) {
    const Body body = decoded("v=0\no=- 1 1 IN IP4 0\ns=-\nt=1 2\nt=3 4\nr=1d 1 0\n"
                              "a=T38FaxFillBitRemoval:0\n");
    const auto copy = body.clone();
    ASSERT_TRUE(copy);
    ASSERT_EQ(copy->times().size(), 2u);
    EXPECT_EQ(copy->times()[1].start(), 3u);
    EXPECT_EQ(copy->times()[1].repeats()[0][0].unit, TimeUnit::Days);
    EXPECT_EQ(copy->attributes().number(AttributeType::T38FillBitRemoval), 0u);
}

TEST(CppClone, ACopyLivesAlone) {
    auto copy = [] {
        const Body body = decoded(kEveryLine);
        return body.clone();
    }();
    ASSERT_TRUE(copy);
    EXPECT_EQ(written(*copy), kEveryLine);
    EXPECT_DONE(copy->media()[0].setPort(4));
    EXPECT_EQ(copy->media()[0].port(), 4u);
}

TEST(CppClone, AnEmptyListStaysOne) {
    Body body = decoded(kEveryLine);
    body.emails().clear();
    const auto copy = body.clone();
    ASSERT_TRUE(copy);
    EXPECT_TRUE(copy->emails().empty());
    EXPECT_NE(copy->emails().record(), nullptr);
    EXPECT_TRUE(copy->emails().record()->ppstStrings == nullptr);
}

TEST(CppClone, ARecordThatCannotBeCopiedIsRefused) {
    const support::Held before = support::Held::now();
    {
        Body body = decoded(kEveryLine);
        body.record()
            ->stMediaSet.ppstMediaDescs[0]
            ->stMediaField.stMediaFmt.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads = 101;
        const auto copy = body.clone();
        ASSERT_FALSE(copy);
        EXPECT_EQ(copy.error().fault, Fault::Argument);
        EXPECT_EQ(copy.error().sentence, "there are more than 100 payload numbers");
    }
    EXPECT_EQ(support::Held::now(), before);
}

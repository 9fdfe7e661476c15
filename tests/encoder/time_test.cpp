// The t= line and its r= lines.
#include "encoder/encodetest.hpp"

namespace {

using namespace support;

class EncodeTime : public EncodeTest {
protected:
    SDPResult encode() { return sdpLibEncodeTimeSet(&prefixed, &set, buffer); }

    // A field whose r= line cannot be written: its first unit is unknown.
    SDPTimeUnit unknownUnit = {0, 5};
    SDPTimeUnit *badUnits[1] = {&unknownUnit};
    SDPRepeatField badRepeat = {1, badUnits};
    SDPRepeatField *badRepeatItems[1] = {&badRepeat};
    SDPRepeatFieldSet badRepeats = {1, badRepeatItems};

    SDPTimeUnit units[2] = {{SDP_TIME_DAYS, 7}, {SDP_TIME_SECONDS, 0}};
    SDPTimeUnit *goodUnits[2] = {&units[0], &units[1]};
    SDPRepeatField goodRepeat = {2, goodUnits};
    SDPRepeatField *goodRepeatItems[2] = {&goodRepeat, &goodRepeat};
    SDPRepeatFieldSet goodRepeats = {1, goodRepeatItems};

    SDPTimeField first = {1, 2, nullptr};
    SDPTimeField second = {3, 4294967295, nullptr};
    SDPTimeField *items[2] = {&first, &second};
    SDPTimeSet set = {2, items};
};

TEST_F(EncodeTime, EmptySetIsTheDefaultLineWhateverTheFlagAndTheLineEnd) {
    set = {0, nullptr};
    for (const uint32_t flag : {0u, 1u, 2u}) {
        for (const SipString &end : g_gstSdpCrlfString) {
            startAnew();
            g_gpstSdpCrlfCfg = &end;
            uint32_t given = flag;
            EXPECT_EQ(sdpLibEncodeTimeSet(&given, &set, buffer), 0u);
            EXPECT_EQ(Appends::texts(), Lines{"t=0 0\r\n"});
            EXPECT_EQ(text(), "t=0 0\r\n");
        }
    }
}

TEST_F(EncodeTime, EmptySetPassesItsRefusedAppendOn) {
    set = {0, nullptr};
    Appends::failAt(1);
    EXPECT_EQ(encode(), Appends::kRefused);
    EXPECT_EQ(text(), "");
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeTime, WritesTheFirstFieldOnly) {
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "t=1 2\r\n");
    EXPECT_EQ(Appends::texts(), (Lines{"t", "=", "1", " ", "2", "\r\n"}));
}

TEST_F(EncodeTime, WritesTheRepeatLinesOfTheFirstField) {
    first.pstRepeatFieldSet = &goodRepeats;
    goodRepeats.ulNoOfRepeatFields = 2;
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "t=1 2\r\nr=7d 0s\r\nr=7d 0s\r\n");
}

TEST_F(EncodeTime, PassesThePrefixFlagOnToTheRepeatLines) {
    first.pstRepeatFieldSet = &goodRepeats;
    EXPECT_EQ(sdpLibEncodeTimeSet(&bare, &set, buffer), 0u);
    EXPECT_EQ(text(), "1 2\r\n7d 0s\r\n");
}

TEST_F(EncodeTime, MovesOnToTheNextFieldAfterAFailure) {
    first.pstRepeatFieldSet = &goodRepeats;
    EXPECT_EQ(trace([this] { return encode(); }), R"("t" ok "t=3 4294967295\r\n"
"=" ok "tt=3 4294967295\r\n"
"1" ok "t=t=3 4294967295\r\n"
" " ok "t=1t=3 4294967295\r\n"
"2" ok "t=1 t=3 4294967295\r\n"
"\r\n" ok "t=1 2t=3 4294967295\r\n"
"r" ok "t=1 2\r\n=7d 0s\r\n"
"=" ok "t=1 2\r\nr7d 0s\r\n"
"7" ok "t=1 2\r\nr=d 0s\r\n"
"d" ok "t=1 2\r\nr=7 0s\r\n"
" " ok "t=1 2\r\nr=7dt=3 4294967295\r\n"
"0" ok "t=1 2\r\nr=7d s\r\n"
"s" ok "t=1 2\r\nr=7d 0\r\n"
"\r\n" ok "t=1 2\r\nr=7d 0st=3 4294967295\r\n"
)");
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeTime, SkipsTheRemainingFieldsWithoutAPrefix) {
    EXPECT_EQ(trace([this] { return sdpLibEncodeTimeSet(&bare, &set, buffer); }), R"("1" refused ""
" " refused "1"
"2" refused "1 "
"\r\n" refused "1 2"
)");
}

TEST_F(EncodeTime, WritesTheNextFieldWhenTheRepeatLinesOfTheFirstFail) {
    first.pstRepeatFieldSet = &badRepeats;
    second.pstRepeatFieldSet = &goodRepeats;
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "t=1 2\r\nr=5t=3 4294967295\r\nr=7d 0s\r\n");
    EXPECT_EQ(log.texts(), Lines{"3 sdpencodetime sdpLibEncodeTimeUnit 21 \"Time type = 0\""});
}

TEST_F(EncodeTime, AnswersTheLastFailureWhenNoFieldCanBeWritten) {
    first.pstRepeatFieldSet = &badRepeats;
    Appends::failAt(11); // "=" of the second t=, after t=1 2 CRLF and r=5
    EXPECT_EQ(encode(), Appends::kRefused);
    EXPECT_EQ(text(), "t=1 2\r\nr=5t");

    startAnew();
    second.pstRepeatFieldSet = &badRepeats;
    EXPECT_EQ(encode(), 0xDF011001u);
    EXPECT_EQ(text(), "t=1 2\r\nr=5t=3 4294967295\r\nr=5");
    EXPECT_EQ(log.texts().size(), 2u);
}

TEST_F(EncodeTime, TriesEveryFieldInAFullBuffer) {
    Appends::failFrom(1);
    EXPECT_EQ(encode(), Appends::kRefused);
    EXPECT_EQ(Appends::texts(), (Lines{"t", "t"}));
}

TEST_F(EncodeTime, LogsAnUnknownUnitOfEachFieldItTries) {
    first.pstRepeatFieldSet = &badRepeats;
    set.ulNoOfTimeFields = 1;
    EXPECT_EQ(encode(), 0xDF011001u);
    EXPECT_EQ(g_gSipCodePoint, 735u << 16 | log.entries().at(0).line);
}

class EncodeRepeat : public EncodeTime {};

TEST_F(EncodeRepeat, SetOfNothingIsNoLine) {
    SDPRepeatFieldSet none = {0, nullptr};
    EXPECT_EQ(sdpLibEncodeRepeatFields(&prefixed, &none, buffer), 0u);
    EXPECT_EQ(Appends::count(), 0u);
}

TEST_F(EncodeRepeat, WritesTheFirstSlotEvenOfAFieldThatCountsNone) {
    goodRepeat.ulNoOfTimeUnits = 0;
    EXPECT_EQ(sdpLibEncodeRepeatFields(&prefixed, &goodRepeats, buffer), 0u);
    EXPECT_EQ(text(), "r=7d\r\n");
}

TEST_F(EncodeRepeat, WritesAFieldWithoutSlotsAsItsKeyAlone) {
    SDPRepeatField none = {0, nullptr};
    SDPRepeatField *noneItems[] = {&none};
    SDPRepeatFieldSet noneSet = {1, noneItems};
    EXPECT_EQ(sdpLibEncodeRepeatFields(&prefixed, &noneSet, buffer), 0u);
    EXPECT_EQ(text(), "r=\r\n");
}

TEST_F(EncodeRepeat, WritesTheUnitOfSecondsThatTheTextLeftOut) {
    FullBody body;
    EXPECT_EQ(sdpLibEncodeRepeatFields(&prefixed, &body.repeats, buffer), 0u);
    EXPECT_EQ(text(), "r=7d 1h 0s 25h\r\n");
}

TEST_F(EncodeRepeat, TestsNeitherItsPrefixNorNumbersAndLetters) {
    EXPECT_EQ(trace([this] { return sdpLibEncodeRepeatFields(&prefixed, &goodRepeats, buffer); }),
              R"("r" ok "=7d 0s\r\n"
"=" ok "r7d 0s\r\n"
"7" ok "r=d 0s\r\n"
"d" ok "r=7 0s\r\n"
" " refused "r=7d"
"0" ok "r=7d s\r\n"
"s" ok "r=7d 0\r\n"
"\r\n" refused "r=7d 0s"
)");
}

TEST_F(EncodeRepeat, StopsAtTheFirstFailure) {
    SDPRepeatField *both[] = {&badRepeat, &goodRepeat};
    SDPRepeatFieldSet fields = {2, both};
    EXPECT_EQ(sdpLibEncodeRepeatFields(&prefixed, &fields, buffer), 0xDF011001u);
    EXPECT_EQ(text(), "r=5");
}

TEST_F(EncodeRepeat, TypedTimeWritesTheUnitsLetter) {
    const std::pair<SDPTimeUnit, const char *> times[] = {
        {{SDP_TIME_DAYS, 7}, "7d"},
        {{SDP_TIME_HOURS, 1}, "1h"},
        {{SDP_TIME_MINUTES, 4294967295}, "4294967295m"},
        {{SDP_TIME_SECONDS, 604800}, "604800s"},
    };
    for (auto [unit, expected] : times) {
        startAnew();
        EXPECT_EQ(sdpLibEncodeTimeUnit(&unit, buffer), 0u);
        EXPECT_EQ(text(), expected);
        EXPECT_EQ(Appends::count(), 2u);
    }
}

TEST_F(EncodeRepeat, TypedTimeRefusesAnUnknownUnitAfterTheNumber) {
    SDPTimeUnit unit = {0, 5};
    const auto write = [&] { return sdpLibEncodeTimeUnit(&unit, buffer); };
    expectCodesRefused(write, unit.enTimeType, 5, 0xDF011001u, "5",
                       {"3 sdpencodetime sdpLibEncodeTimeUnit 21 \"Time type = {}\""});
}

} // namespace

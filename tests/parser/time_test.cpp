// The t= and r= parsers called alone: texts without a line end, counts, and the way lists grow.
#include <cstdarg>

#include "parser/parsing.hpp"

namespace {

using support::named;
using support::TextAndResult;

class ParserTime : public support::ParsingTest {
protected:
    // The times of a list as "start-stop start-stop ...".
    static std::string timesOf(const SDPTimeSet &set) {
        std::string text;
        for (uint32_t i = 0; i < set.ulNoOfTimeFields; ++i) {
            const SDPTimeField &field = *set.ppstTimeFields[i];
            text += text.empty() ? "" : " ";
            text += std::to_string(field.ulStartTime) + '-' + std::to_string(field.ulStopTime);
        }
        return text;
    }

    static std::string timeLines(uint32_t count) {
        std::string text;
        for (uint32_t i = 1; i <= count; ++i) {
            text += "t=" + std::to_string(i) + " 0\n";
        }
        return text;
    }

    // Enters typed-time as r= does: its first token is cut in the alphanumeric context.
    void startTypedTime(const std::string &text) {
        start("r=" + text);
        setLexerContext(SDP_LEXCTX_ALNUM);
        consume();
    }
};

// ---- Texts that no body can hold: every line of a body has an end

TEST_F(ParserTime, TimeLineWithoutEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"t=", "TimeStart 101"},     {"t=1", "TimeStartSpace 101"},
        {"t=1 ", "TimeStop 101"},    {"t=1 2", "TimeEnd 101"},
        {"t=1 2 ", "TimeEnd 101"},   {"r=1", "TimeLine 102"},
        {"t=1 2\n", "ok"},           {"", "TimeLine 102"},
        {"T=1 2\n", "TimeLine 102"}, {" t=1 2\n", "TimeLine 102"},
    };
    expectResults(sdpTimeField, rows);
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(ParserTime, RepeatLineWithoutEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"r=", "TypedTime 101"},         {"r=7", "TypedTimeUnit 101"},
        {"r=7d", "RepeatEnd 101"},       {"r=7d ", "TypedTime 101"},
        {"r=7d 1", "TypedTimeUnit 101"}, {"r=7d 1h", "RepeatEnd 101"},
        {"t=7d\n", "RepeatLine 102"},    {"r=7d 1h\n", "ok"},
        {"", "RepeatLine 102"},
    };
    expectResults(sdpRepeatField, rows);
}

TEST_F(ParserTime, StatedCodes) {
    start("r=1\n");
    SDPTimeField time = {};
    EXPECT_EQ(sdpTimeField(&time), 0x0509D066u);
    start("t=1\n");
    SDPRepeatField repeat = {};
    EXPECT_EQ(sdpRepeatField(&repeat), 0x050B2066u);
}

TEST_F(ParserTime, EndOfInputIsNoUnit) {
    startTypedTime("7");
    SDPTimeUnit unit = {};
    EXPECT_EQ(sdpTypedTime(&unit), 0x050AC065u);
    EXPECT_EQ(log.texts(), std::vector<std::string>{"3 sdpparser sdpTypedTime - \"Datasink = \""});
    EXPECT_EQ(unit.ulTimeValue, 7u);
    EXPECT_EQ(unit.enTimeType, uint32_t{SDP_TIME_SECONDS});
}

// ---- Units

TEST_F(ParserTime, ATypedTimeSwitchesTheContextBeforeItLooks) {
    start("r=x");
    setLexerContext(SDP_LEXCTX_CHAR);
    consume();
    SDPTimeUnit unit = {};
    EXPECT_EQ(named(sdpTypedTime(&unit)), "TypedTime 101");
    EXPECT_EQ(sdpGetLexerContext(), uint32_t{SDP_LEXCTX_ALNUM});
}

TEST_F(ParserTime, BlankAndLineEndAfterATypedTimeStayCurrent) {
    for (const char *const text : {"7 1", "7\n"}) {
        startTypedTime(text);
        SDPTimeUnit unit = {};
        ASSERT_EQ(sdpTypedTime(&unit), 0u);
        EXPECT_EQ(unit.enTimeType, uint32_t{SDP_TIME_SECONDS});
        EXPECT_STREQ(LT(), std::string(1, text[1]).c_str());
    }
}

TEST_F(ParserTime, UnitIsConsumedWithItsRunOfLetters) {
    startTypedTime("7hours55\n");
    SDPTimeUnit unit = {};
    ASSERT_EQ(sdpTypedTime(&unit), 0u);
    EXPECT_EQ(unit.enTimeType, uint32_t{SDP_TIME_HOURS});
    EXPECT_STREQ(LT(), "55");
}

uint32_t loggedArgument;

void keepArgument(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                  const char *, ...) __attribute__((format(printf, 8, 9)));

void keepArgument(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                  const char *pcFormat, ...) {
    va_list arguments;
    va_start(arguments, pcFormat);
    loggedArgument = va_arg(arguments, uint32_t);
    va_end(arguments);
}

TEST_F(ParserTime, UnknownUnitIsLoggedAsAnUnsignedByte) {
    const SipLmLogHndlr recorder = g_gpfnSipLmLogHndlr;
    g_gpfnSipLmLogHndlr = keepArgument;
    for (const uint8_t byte :
         std::initializer_list<uint8_t>{0xE9, 0xFF, 0x7F, '\r', '\t', 'D', 'w', '-', '/'}) {
        startTypedTime(std::string("7") + static_cast<char>(byte) + "\n");
        SDPTimeUnit unit = {};
        EXPECT_EQ(named(sdpTypedTime(&unit)), "TypedTimeUnit 101");
        EXPECT_EQ(loggedArgument, byte);
    }
    g_gpfnSipLmLogHndlr = recorder;
}

// ---- Counts

TEST_F(ParserTime, TimeLinesAreCountedModulo256) {
    struct Row {
        uint32_t lines;
        uint32_t count;
    };
    for (const Row row : {Row{1, 1},
                          {2, 2},
                          {254, 254},
                          {255, 255},
                          {256, 0},
                          {257, 1},
                          {258, 2},
                          {511, 255},
                          {512, 0},
                          {513, 1}}) {
        start(timeLines(row.lines) + "a=x\n");
        SDPTimeSet set = {};
        ASSERT_EQ(sdpTimeFieldsSet(&set), 0u) << row.lines;
        EXPECT_EQ(set.ulNoOfTimeFields, row.count) << row.lines;
        EXPECT_EQ(LA(), uint32_t{SDP_TOK_ATTRIBUTE}) << row.lines;
    }
}

TEST_F(ParserTime, LinesAfterThe256thTakeTheFirstSlots) {
    start(timeLines(257) + "\n");
    SDPTimeSet set = {};
    ASSERT_EQ(sdpTimeFieldsSet(&set), 0u);
    EXPECT_EQ(timesOf(set), "257-0");

    start(timeLines(259) + "\n");
    ASSERT_EQ(sdpTimeFieldsSet(&set), 0u);
    EXPECT_EQ(timesOf(set), "257-0 258-0 259-0");
}

// The array grows by one slot at a time; after the wrap it keeps its size for one line and then
// shrinks to two slots.
TEST_F(ParserTime, TimeArrayGrowsByOneSlotAndStartsAnewAfterTheWrap) {
    start(timeLines(258) + "\n");
    SDPTimeSet set = {};
    ASSERT_EQ(sdpTimeFieldsSet(&set), 0u);
    std::vector<uint32_t> expected;
    for (uint32_t slots = 1; slots <= 256; ++slots) {
        expected.push_back(slots * sizeof(SDPTimeField *));
        expected.push_back(sizeof(SDPTimeField));
    }
    expected.push_back(sizeof(SDPTimeField)); // the 257th line, into slot 0
    expected.push_back(2 * sizeof(SDPTimeField *));
    expected.push_back(sizeof(SDPTimeField));
    EXPECT_EQ(sizesAskedFor(), expected);
}

TEST_F(ParserTime, RepeatLinesAreCountedInFull) {
    std::string text = "t=0 0\n";
    for (uint32_t i = 0; i < 300; ++i) {
        text += "r=" + std::to_string(i) + "m\n";
    }
    start(text + "\n");
    SDPTimeField field = {};
    ASSERT_EQ(sdpTimeFields(&field), 0u);
    const SDPRepeatFieldSet *const set = field.pstRepeatFieldSet;
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->ulNoOfRepeatFields, 300u);
    for (uint32_t i = 0; i < 300; ++i) {
        const SDPRepeatField &repeat = *set->ppstRepeatFields[i];
        ASSERT_EQ(repeat.ulNoOfTimeUnits, 1u);
        EXPECT_EQ(repeat.ppstTimeUnits[0]->ulTimeValue, i);
        EXPECT_EQ(repeat.ppstTimeUnits[0]->enTimeType, uint32_t{SDP_TIME_MINUTES});
    }
}

TEST_F(ParserTime, TypedTimesAreCountedInFull) {
    std::string text = "r=0";
    for (uint32_t i = 1; i < 600; ++i) {
        text += ' ' + std::to_string(i) + 'h';
    }
    start(text + "\n\n");
    SDPRepeatField field = {};
    ASSERT_EQ(sdpRepeatField(&field), 0u);
    ASSERT_EQ(field.ulNoOfTimeUnits, 600u);
    for (uint32_t i = 0; i < 600; ++i) {
        EXPECT_EQ(field.ppstTimeUnits[i]->ulTimeValue, i);
    }
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_LF});
}

TEST_F(ParserTime, TimeFieldWithoutRepeatsHasNoRepeatSet) {
    start("t=1 2\nt=3 4\n");
    SDPTimeField field = {};
    ASSERT_EQ(sdpTimeFields(&field), 0u);
    const SDPRepeatFieldSet *const set = field.pstRepeatFieldSet;
    EXPECT_EQ(set, nullptr);
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_TIME});
}

TEST_F(ParserTime, RecordsStartZeroed) {
    start("t=1 2\n\n");
    SDPTimeSet set = {};
    ASSERT_EQ(sdpTimeFieldsSet(&set), 0u);
    const SDPRepeatFieldSet *const repeats = set.ppstTimeFields[0]->pstRepeatFieldSet;
    EXPECT_EQ(repeats, nullptr);
}

// ---- The contents of the records after a refused line

TEST_F(ParserTime, CountsAreStoredWhenTheirListsEnd) {
    start("t=1 2\nr=7d 1h\nr=x\n");
    SDPTimeSet set = {77, nullptr};
    EXPECT_EQ(named(sdpTimeFieldsSet(&set)), "TypedTime 101");
    EXPECT_EQ(set.ulNoOfTimeFields, 77u);
    SDPTimeField **const fields = set.ppstTimeFields;
    EXPECT_NE(fields, nullptr);
}

TEST_F(ParserTime, RepeatSetIsUsedAsItComes) {
    start("t=1 2\nr=7d\nr=x\n");
    SDPTimeField field = {};
    EXPECT_EQ(named(sdpTimeFields(&field)), "TypedTime 101");
    const SDPRepeatFieldSet *const set = field.pstRepeatFieldSet;
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->ulNoOfRepeatFields, kDirt);
    EXPECT_EQ(set->ppstRepeatFields[0]->ulNoOfTimeUnits, 1u);
}

TEST_F(ParserTime, TypedTimesAreCountedBeforeTheLineEndIsAskedFor) {
    start("r=7d 1h/\n");
    SDPRepeatField field = {};
    EXPECT_EQ(named(sdpRepeatField(&field)), "RepeatEnd 101");
    EXPECT_EQ(field.ulNoOfTimeUnits, 2u);
}

TEST_F(ParserTime, StartIsStoredBeforeTheStopIsRead) {
    start("t=5 x\n");
    SDPTimeField field = {};
    EXPECT_EQ(named(sdpTimeField(&field)), "TimeStop 101");
    EXPECT_EQ(field.ulStartTime, 5u);
}

// ---- Memory

TEST_F(ParserTime, EveryAllocationFailsWithItsOwnCheck) {
    struct Row {
        const char *result;
        uint32_t code;
        const char *logged; // null: not logged
    };
    constexpr Row rows[] = {
        {"TimesArrayAlloc 1", 0x050D4001, "5 sdpparser sdpTimeFieldsSet 1"},
        {"TimesAlloc 1", 0x050DA001, "5 sdpparser sdpTimeFieldsSet 1"},
        {"RepeatSetAlloc 1", 0x050CE001, nullptr},
        {"RepeatsArrayAlloc 1", 0x050C3001, "5 sdpparser sdpRepeatFields 1"},
        {"RepeatsAlloc 1", 0x050C8001, "5 sdpparser sdpRepeatFields 1"},
        {"RepeatArrayAlloc 1", 0x050B3001, "5 sdpparser sdpRepeatField 1"},
        {"RepeatUnitAlloc 1", 0x050B8001, "5 sdpparser sdpRepeatField 1"},
        {"RepeatGrow 1", 0x050B6001, "3 sdpparser sdpRepeatField 1"},
        {"RepeatUnitAlloc 1", 0x050B8001, "5 sdpparser sdpRepeatField 1"},
        {"RepeatsGrow 1", 0x050C6001, "3 sdpparser sdpRepeatFields 1"},
        {"RepeatsAlloc 1", 0x050C8001, "5 sdpparser sdpRepeatFields 1"},
        {"RepeatArrayAlloc 1", 0x050B3001, "5 sdpparser sdpRepeatField 1"},
        {"RepeatUnitAlloc 1", 0x050B8001, "5 sdpparser sdpRepeatField 1"},
        {"TimesGrow 1", 0x050D8001, "3 sdpparser sdpTimeFieldsSet 1"},
        {"TimesAlloc 1", 0x050DA001, "5 sdpparser sdpTimeFieldsSet 1"},
        {"ok", 0, nullptr},
    };
    uint32_t n = 0;
    for (const Row &row : rows) {
        start("t=0 0\nr=7d 1h\nr=1\nt=1 1\n\n");
        failAllocation(++n);
        log.clear();
        SDPTimeSet set = {};
        const SDPResult result = sdpTimeFieldsSet(&set);
        EXPECT_EQ(named(result), row.result) << n;
        EXPECT_EQ(result, row.code) << n;
        EXPECT_EQ(log.texts(), row.logged != nullptr ? std::vector<std::string>{row.logged}
                                                     : std::vector<std::string>{})
            << n;
    }
}

TEST_F(ParserTime, WithoutHooksThereIsNoMemory) {
    start("t=0 0\n\n");
    SdpSetFnAlloc(nullptr);
    SDPTimeSet set = {};
    EXPECT_EQ(named(sdpTimeFieldsSet(&set)), "TimesArrayAlloc 1");
}

} // namespace

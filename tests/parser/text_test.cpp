// The parsers of v=, o= and text lines by themselves: inputs that no whole body can have, and the
// contents of the records.
#include "parser/parsing.hpp"

#include "support/securefaults.hpp"

namespace {

using support::named;
using support::SecureFaults;
using support::TextAndResult;
using support::textOf;
using Texts = std::vector<std::string>;

uint32_t kindOfNext() {
    return sdpGetLexerContext() == SDP_LEXCTX_SDP ? LA() : 0;
}

// Tests of the parser of one line.
template <class Record, SDPResult (*Parse)(Record *)>
class LineTest : public support::ParsingTest {
protected:
    std::string parse(std::string_view text) {
        start(text);
        return named(Parse(&record));
    }

    Record record = {};
};

// ---- v=

class VersionLine : public LineTest<SdpLine, sdpProtoVersion> {};

TEST_F(VersionLine, LeavesTheNextKeyCurrent) {
    EXPECT_EQ(parse("v=12\no=x"), "ok");
    EXPECT_EQ(record.ulProtoVersion, 12u);
    EXPECT_EQ(kindOfNext(), static_cast<uint32_t>(SDP_TOK_ORIGIN));
}

TEST_F(VersionLine, FailsAtTheEndOfInput) {
    EXPECT_EQ(parse("v="), "VersionDigits 101");
    EXPECT_EQ(parse("v=0"), "VersionEnd 101");
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(VersionLine, KeepsTheNumberOfALineThatGoesOn) {
    EXPECT_EQ(parse("v=7 \n"), "VersionEnd 101");
    EXPECT_EQ(record.ulProtoVersion, 7u);
}

// ---- o=

class OriginLine : public LineTest<SDPOrigin, sdpOriginField> {};

TEST_F(OriginLine, FillsTheRecord) {
    SipString other = {};
    record.stNetType.pstrOtherNetType = &other;
    record.stAddrType.pstrOtherAddrType = &other;
    EXPECT_EQ(parse("o=alice 28 007 IN IP6 ::1\ns=x"), "ok");
    EXPECT_EQ(textOf(record.strUserName), "alice");
    EXPECT_EQ(textOf(record.strSessionId), "28");
    EXPECT_EQ(textOf(record.strSessionVersion), "007");
    EXPECT_EQ(textOf(record.strAddress), "::1");
    EXPECT_EQ(record.stNetType.enNetType, 1u);
    EXPECT_EQ(record.stAddrType.enAddrType, 2u);
    EXPECT_TRUE(record.stNetType.pstrOtherNetType == nullptr);
    EXPECT_TRUE(record.stAddrType.pstrOtherAddrType == nullptr);
    EXPECT_EQ(kindOfNext(), static_cast<uint32_t>(SDP_TOK_SESSION_NAME));
    EXPECT_EQ(sizesAskedFor(), (std::vector<uint32_t>{5, 2, 3, 3})) << "no terminators";
}

TEST_F(OriginLine, RefusesAnotherLine) {
    EXPECT_EQ(parse("s=- 1 1 IN IP4 x\n"), "OriginLine 102");
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_SESSION_NAME));
}

TEST_F(OriginLine, FailsWhereverTheInputEnds) {
    constexpr TextAndResult rows[] = {
        {"o=", "OriginUser 101"},
        {"o=-", "OriginUserSpace 101"},
        {"o=- ", "OriginId 101"},
        {"o=- 1", "OriginIdSpace 101"},
        {"o=- 1 ", "OriginVersion 101"},
        {"o=- 1 1", "OriginVersionSpace 101"},
        {"o=- 1 1 ", "OriginNetType 101"},
        {"o=- 1 1 I", "OriginNetType 101"},
        {"o=- 1 1 IN", "OriginNetTypeSpace 101"},
        {"o=- 1 1 IN ", "OriginAddrType 1"},
        {"o=- 1 1 IN IP", "OriginAddrType 1"},
        {"o=- 1 1 IN IP4", "OriginAddrTypeSpace 101"},
        {"o=- 1 1 IN IP4 ", "OriginAddress 101"},
        {"o=- 1 1 IN IP4 x", "OriginEnd 101"},
    };
    expectResults(sdpOriginField, rows);
}

TEST_F(OriginLine, LogsAnAddressTypeAndNoOtherToken) {
    EXPECT_EQ(parse("o=- 1 1 in IP4 x\n"), "OriginNetType 101");
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(parse("o=- 1 1 IN ip4 x\n"), "OriginAddrType 1");
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpOriginField 3"});
}

TEST_F(OriginLine, LogsATextThatCannotBeStored) {
    const char *const checks[] = {"OriginUserStore 1", "OriginIdStore 1", "OriginVersionStore 1",
                                  "OriginAddressStore 1"};
    for (uint32_t i = 0; i < 4; ++i) {
        record = {};
        log.clear();
        failAllocation(i + 1);
        EXPECT_EQ(parse("o=user 22 333 IN IP4 address\n"), checks[i]);
        EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpOriginField 3"});
    }
    EXPECT_EQ(record.strAddress.ulLen, 7u) << "the length stays";
    EXPECT_EQ(textOf(record.strAddress), "(null)");
    EXPECT_EQ(textOf(record.strSessionVersion), "333") << "what came before stays";
}

// ---- One text

class TextLine : public support::ParsingTest {
protected:
    std::string parse(std::string_view text, uint32_t kind = SDP_TOK_SESSION_NAME) {
        start(text);
        return named(sdpStringField(kind, &value));
    }

    SipString value = {};
};

TEST_F(TextLine, StoresTheRestOfTheLine) {
    EXPECT_EQ(parse("s= a\tb \ni=x"), "ok");
    EXPECT_EQ(textOf(value), " a\tb ");
    EXPECT_EQ(sizesAskedFor(), std::vector<uint32_t>{5});
    EXPECT_EQ(kindOfNext(), static_cast<uint32_t>(SDP_TOK_INFO));
}

TEST_F(TextLine, TakesTheKindThatItIsToldTo) {
    EXPECT_EQ(parse("z=a\n", SDP_TOK_ZONE), "ok");
    EXPECT_EQ(parse("k=a\n", SDP_TOK_KEY), "ok");
    EXPECT_EQ(parse("s=a\n", SDP_TOK_INFO), "TextLine 102");
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_SESSION_NAME));
}

TEST_F(TextLine, FailsWhenTheInputEndsBeforeTheValue) {
    EXPECT_EQ(parse("s="), "TextEnded 1");
    EXPECT_TRUE(log.entries().empty());
    EXPECT_TRUE(sizesAskedFor().empty());
}

TEST_F(TextLine, FailsWhenTheInputEndsAfterTheValue) {
    EXPECT_EQ(parse("s=a b"), "TextEnd 101");
    EXPECT_EQ(textOf(value), "a b") << "the value is stored before the line end is looked for";
}

TEST_F(TextLine, LogsAnEmptyValue) {
    EXPECT_EQ(parse("s=\n"), "TextEmpty 101");
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpStringField -"});
}

TEST_F(TextLine, TakesAtMost1023Bytes) {
    EXPECT_EQ(parse("s=" + std::string(1023, 'x') + "\n"), "ok");
    EXPECT_EQ(value.ulLen, 1023u);
    EXPECT_EQ(parse("s=" + std::string(1024, 'x') + "\n"), "TextTooLong 1");
    EXPECT_EQ(parse("s=" + std::string(1023, ' ') + "\n"), "ok");
    EXPECT_EQ(parse("s=" + std::string(1024, ' ') + "\n"), "TextTooLong 1");
    EXPECT_EQ(parse("s=" + std::string(1024, 'x')), "TextTooLong 1");
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(TextLine, PassesUpATextThatCannotBeStored) {
    failAllocation(1);
    EXPECT_EQ(parse("s=abc\n"), "SetString 1");
    EXPECT_EQ(value.ulLen, 3u);
    EXPECT_EQ(textOf(value), "(null)");
    EXPECT_TRUE(log.entries().empty());
}

// ---- Lists of texts

class TextLines : public support::ParsingTest {
protected:
    std::string parse(std::string_view text, uint32_t kind = SDP_TOK_PHONE) {
        start(text);
        return named(sdpStringListFields(kind, &strings, &count));
    }

    SipString **strings = nullptr;
    uint32_t count = 99;
};

TEST_F(TextLines, GathersConsecutiveLinesInOrder) {
    EXPECT_EQ(parse("p=1\np=22\np=333\nc=x"), "ok");
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(textOf(strings[0]), "1");
    EXPECT_EQ(textOf(strings[1]), "22");
    EXPECT_EQ(textOf(strings[2]), "333");
    EXPECT_EQ(kindOfNext(), static_cast<uint32_t>(SDP_TOK_CONNECTION));
}

TEST_F(TextLines, StopsAtAnotherKind) {
    EXPECT_EQ(parse("b=AS:1\ne=a\nb=AS:2\n", SDP_TOK_BANDWIDTH), "ok");
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(textOf(strings[0]), "AS:1");
}

TEST_F(TextLines, GrowsByOneSlotForEachLine) {
    constexpr uint32_t slot = sizeof(void *);
    constexpr uint32_t string = sizeof(SipString);
    ASSERT_EQ(parse("p=1\np=22\np=333\n"), "ok");
    EXPECT_EQ(sizesAskedFor(),
              (std::vector<uint32_t>{slot, string, 1, 2 * slot, string, 2, 3 * slot, string, 3}));
}

TEST_F(TextLines, FailsWithoutMemory) {
    const struct {
        const char *check;
        Texts log;
    } kAllocations[] = {
        {"TextListAlloc 1", {"5 sdpparser sdpStringListFields 1"}},
        {"TextListItemAlloc 1", {"5 sdpparser sdpStringListFields 1"}},
        {"SetString 1", {}},
        {"TextListGrow 1", {"3 sdpparser sdpStringListFields 1"}},
        {"TextListItemAlloc 1", {"5 sdpparser sdpStringListFields 1"}},
        {"SetString 1", {}},
    };
    uint32_t n = 0;
    for (const auto &row : kAllocations) {
        log.clear();
        count = 99;
        failAllocation(++n);
        EXPECT_EQ(parse("p=1\np=22\n"), row.check) << n;
        EXPECT_EQ(log.texts(), row.log) << n;
        EXPECT_EQ(count, 99u) << "the count is set when the list is complete";
    }
}

TEST_F(TextLines, PassesUpTheFailureOfALine) {
    EXPECT_EQ(parse("p=1\np=\n"), "TextEmpty 101");
    EXPECT_EQ(parse("p=1\np=2"), "TextEnd 101");
    EXPECT_EQ(parse("e=1\n"), "TextLine 102");
}

TEST_F(TextLines, ReportsSlotsThatCannotBeCleared) {
    start("p=1\n");
    SecureFaults::reset();
    SecureFaults::failAt(1);
    EXPECT_EQ(sdpStringListFields(SDP_TOK_PHONE, &strings, &count), 0u);
    ASSERT_EQ(SecureFaults::reports().size(), 1u);
    EXPECT_FALSE(SecureFaults::reports()[0].ex);
    EXPECT_EQ(SecureFaults::reports()[0].name, "sdpStringListFields");
    EXPECT_EQ(textOf(strings[0]), "1");
    SecureFaults::reset();
}

// ---- Storing

class SetString : public support::ParsingTest {};

TEST_F(SetString, StoresTheBytesWithoutATerminator) {
    SipString value = {};
    EXPECT_EQ(sdpSetString(&value, "abc"), 0u);
    EXPECT_EQ(textOf(value), "abc");
    EXPECT_EQ(sizesAskedFor(), std::vector<uint32_t>{3});
}

TEST_F(SetString, AsksForNoBytesForAnEmptyText) {
    SipString value = {7, nullptr};
    EXPECT_EQ(sdpSetString(&value, ""), 0u);
    EXPECT_EQ(value.ulLen, 0u);
    EXPECT_TRUE(value.pcData != nullptr);
    EXPECT_EQ(sizesAskedFor(), std::vector<uint32_t>{0});
}

TEST_F(SetString, KeepsTheLengthWithoutMemory) {
    char old[] = "old";
    SipString value = {3, old};
    failAllocation(1);
    EXPECT_EQ(named(sdpSetString(&value, "abcd")), "SetString 1");
    EXPECT_EQ(value.ulLen, 4u);
    EXPECT_TRUE(value.pcData == nullptr);
    EXPECT_TRUE(log.entries().empty());
}

} // namespace

// Names, dispatch, text values and unknown attributes, by the parsers called alone.
#include <cstring>

#include "parser/parsing.hpp"
#include "sdpline/sdpline.h"
#include "support/guarded.hpp"
#include "support/securefaults.hpp"

namespace {

using support::Guarded;
using support::named;
using support::SecureFaults;
using support::TextAndResult;
using support::textOf;

std::string nameOf(const SDPAttr &attr) {
    const SipString *const name = attr.pstAttrName;
    return textOf(name);
}

class ParserAttribute : public support::ParsingTest {};

// ---- The table of names

constexpr const char *kNames[40] = {
    "rtpmap:",
    "sendrecv",
    "sendonly",
    "recvonly",
    "inactive",
    "ptime:",
    "maxptime:",
    "framerate:",
    "fmtp:",
    "cat:",
    "keywds:",
    "tool:",
    "orient:",
    "type:",
    "charset:",
    "sdplang:",
    "lang:",
    "quality:",
    "T38FaxVersion:",
    "T38MaxBitRate:",
    "T38FaxFillBitRemoval",
    "T38FaxTranscodingMMR",
    "T38FaxTranscodingJBIG",
    "T38FaxRateManagement:",
    "T38FaxMaxBuffer:",
    "T38FaxMaxDatagram:",
    "T38FaxUdpEC:",
    "silenceSupp:",
    "ecan:",
    "fax",
    "modem",
    "X-fax",
    "X-modem",
    " ",
    " ",
    "des:",
    "curr:",
    "conf:",
    "ipbcp:",
    "setup:",
};

TEST(AttributeNames, EveryRow) {
    for (uint32_t row = 0; row < 40; ++row) {
        EXPECT_EQ(textOf(sstrSdpAttrNames[row]), kNames[row]) << row;
    }
}

// ---- Texts that no body can hold: every line of a body has an end

TEST_F(ParserAttribute, LineWithoutEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"", "AttrLine 102"},
        {"m=", "AttrLine 102"},
        {"A=sendrecv\n", "AttrLine 102"},
        {"a=", "AttrName 101"},
        {"a=foo", "UnrecEnd 101"},
        {"a=foo:", "UnrecEnded 1"},
        {"a=foo:bar", "UnrecEnd 101"},
        {"a=foo: ", "UnrecEnd 101"},
        {"a=fmtp", "ValueColon 101"},
        {"a=fmtp:", "ValueEnded 1"},
        {"a=fmtp:101 0-15", "ValueEnd 101"},
        {"a=lang:d", "ValueEnd 101"},
        {"a=T38FaxFillBitRemoval", "AttrFlagEnd 101"},
        {"a=FAX", "ModeEnd 101"},
        {"a=foo\n", "ok"},
    };
    expectResults(sdpAttributeField, rows);
    EXPECT_TRUE(log.entries().empty());
}

// ---- Dispatch

TEST_F(ParserAttribute, NamesAreSoughtInTheTable) {
    for (uint32_t type = 1; type <= 40; ++type) {
        const bool unrecognised = type == SDP_ATTR_UNREC_VALUE || type == SDP_ATTR_UNREC_NOVALUE;
        if (unrecognised) {
            continue; // a blank is no name
        }
        std::string name = textOf(sstrSdpAttrNames[type - 1]);
        if (name.back() == ':') {
            name.pop_back();
        }
        start("a=" + name + ":@\n");
        SDPAttr attr = {};
        sdpAttributeField(&attr);
        // Preconditions store their type after the first word.
        const bool precondition = type >= SDP_ATTR_DES && type <= SDP_ATTR_CONF;
        EXPECT_EQ(attr.ulAttrType, precondition ? 0u : type) << name;
    }
}

TEST_F(ParserAttribute, TypeDecidesNotTheName) {
    startValue("ptime\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeFieldType(&attr, "ptime", SDP_ATTR_SENDONLY)), "ok");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_SENDONLY});
}

TEST_F(ParserAttribute, TypesWithoutATableNameGoToTheModeWords) {
    struct Row {
        const char *name;
        uint32_t stored;
    };
    constexpr Row rows[] = {
        {"fax", SDP_ATTR_FAX},         {"FAX", SDP_ATTR_FAX},
        {"MoDem", SDP_ATTR_MODEM},     {"x-FAX", SDP_ATTR_X_FAX},
        {"X-modem", SDP_ATTR_X_MODEM}, {"rtpmap", SDP_ATTR_UNREC_NOVALUE},
    };
    for (const uint32_t type : {34u, 35u, 41u}) {
        for (const Row &row : rows) {
            startValue("name\n");
            SDPAttr attr = {};
            EXPECT_EQ(named(sdpAttributeFieldType(&attr, row.name, type)), "ok") << row.name;
            EXPECT_EQ(attr.ulAttrType, row.stored) << row.name << ' ' << type;
            EXPECT_EQ(nameOf(attr), row.stored == SDP_ATTR_UNREC_NOVALUE ? "rtpmap" : "(null)");
        }
    }
}

TEST_F(ParserAttribute, UnknownTypeWithAValueIsKeptAs34) {
    for (const uint32_t type : {34u, 35u, 41u}) {
        startValue("name:one two\n");
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpAttributeFieldType(&attr, "other", type)), "ok");
        EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_VALUE});
        EXPECT_EQ(nameOf(attr), "other");
        EXPECT_EQ(textOf(attr.unAttrValue.strValue), "one two");
    }
}

TEST_F(ParserAttribute, OnlyWholeWordsAreModeWords) {
    for (const char *const name : {"", "f", "fa", "faxx", "m", "mode", "modems", "x", "X-", "X-fa",
                                   "x-faxx", "X-mode", "y-fax", "-fax", "fax ",
                                   "\xE6"
                                   "ax"}) {
        startValue("name\n");
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpAttributeFieldDataSink(&attr, name)), "ok") << name;
        EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_NOVALUE}) << name;
        EXPECT_EQ(nameOf(attr), name);
    }
}

TEST_F(ParserAttribute, FlagWithAColonIsANumber) {
    startValue("T38FaxTranscodingMMR:0\n");
    SDPAttr attr = {};
    attr.unAttrValue.ulValue = 9;
    EXPECT_EQ(named(sdpAttributeFieldType(&attr, "", SDP_ATTR_T38_TRANSCODING_MMR)), "ok");
    EXPECT_EQ(attr.unAttrValue.ulValue, 0u);

    startValue("T38FaxTranscodingMMR\n");
    EXPECT_EQ(named(sdpAttributeFieldType(&attr, "", SDP_ATTR_T38_TRANSCODING_MMR)), "ok");
    EXPECT_EQ(attr.unAttrValue.ulValue, 1u);
}

TEST_F(ParserAttribute, FlagIsStoredBeforeTheLineEndIsAskedFor) {
    startValue("T38FaxTranscodingJBIG \n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeFieldType(&attr, "", SDP_ATTR_T38_TRANSCODING_JBIG)),
              "AttrFlagEnd 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_T38_TRANSCODING_JBIG});
    EXPECT_EQ(attr.unAttrValue.ulValue, 1u);
}

// ---- Names and values at their limits

TEST_F(ParserAttribute, NamesOf1023Bytes) {
    const std::string name(1023, 'n');
    start("a=" + name + "\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeField(&attr)), "ok");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_NOVALUE});
    EXPECT_EQ(nameOf(attr), name);

    start("a=" + name + ":v\n");
    EXPECT_EQ(named(sdpAttributeField(&attr)), "ok");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_VALUE});
    EXPECT_EQ(nameOf(attr), name);

    start("a=" + name + "n\n");
    EXPECT_EQ(named(sdpAttributeField(&attr)), "AttrNameText 1");
}

TEST_F(ParserAttribute, ValuesOf1023Bytes) {
    for (uint32_t type = SDP_ATTR_FMTP; type <= SDP_ATTR_LANG; ++type) {
        const std::string value = "a b" + std::string(1020, 'x');
        startValue("name:" + value + "\n");
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpOtherRecAttr(&attr, type)), "ok");
        EXPECT_EQ(attr.ulAttrType, type);
        EXPECT_EQ(textOf(attr.unAttrValue.strValue), value);

        startValue("name:" + value + " \n");
        EXPECT_EQ(named(sdpOtherRecAttr(&attr, type)), "ValueTooLong 1");
    }
}

// A token at offset 0 counts as none: the first one after it begins there again.
TEST_F(ParserAttribute, ValueWhoseColonBeginsTheInputHoldsTheColon) {
    start(":one two\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpOtherRecAttr(&attr, SDP_ATTR_TOOL)), "ok");
    EXPECT_EQ(textOf(attr.unAttrValue.strValue), ":one two");
}

TEST_F(ParserAttribute, ValueThatRunsIntoTheEndKeepsItsText) {
    startValue("tool:one two");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpOtherRecAttr(&attr, SDP_ATTR_TOOL)), "ValueEnd 101");
    EXPECT_EQ(textOf(attr.unAttrValue.strValue), "one two");
}

// ---- Unknown attributes, step by step

TEST_F(ParserAttribute, UnknownAttributeKeepsItsNameWhenTheLineGoesOn) {
    startValue("foo bar\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpUnRecAttr("foo", &attr)), "UnrecEnd 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_NOVALUE});
    EXPECT_EQ(nameOf(attr), "foo");
}

TEST_F(ParserAttribute, UnknownAttributeWithoutItsValueHasNoName) {
    startValue("foo:\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpUnRecAttr("foo", &attr)), "UnrecEmpty 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_VALUE});
    EXPECT_EQ(nameOf(attr), "(null)");
    EXPECT_TRUE(sizesAskedFor().empty());
}

TEST_F(ParserAttribute, NameMayStandInTheLexersOwnBuffer) {
    start("a=foo:bar\n");
    setLexerContext(SDP_LEXCTX_TOKEN);
    consume();
    const char *const name = LT();
    consume();
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpUnRecAttr(name, &attr)), "ok");
    EXPECT_EQ(nameOf(attr), "foo");
    EXPECT_EQ(textOf(attr.unAttrValue.strValue), "bar");
}

TEST_F(ParserAttribute, NoValueLeavesTheTokenAlone) {
    startValue("foo;bar\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpUnRecAttrTypeNoVal("foo", &attr)), "ok");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_UNREC_NOVALUE});
    EXPECT_EQ(nameOf(attr), "foo");
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_SEMICOLON});
}

struct BufferRow {
    uint32_t size;
    uint32_t length; // of the value
    const char *result;
};

// The value and a NUL must fit the buffer, and a value has 1023 bytes at most.
TEST_F(ParserAttribute, ValueIsGatheredInTheBuffer) {
    constexpr BufferRow rows[] = {
        {1, 1, "UnrecTooLong 1"},
        {2, 1, "ok"},
        {8, 7, "ok"},
        {8, 8, "UnrecTooLong 1"},
        {1023, 1022, "ok"},
        {1023, 1023, "UnrecTooLong 1"},
        {1024, 1023, "ok"},
        {1024, 1024, "UnrecTooLong 1"},
        {2000, 1023, "ok"},
        {2000, 1024, "UnrecTooLong 1"},
    };
    for (const BufferRow &row : rows) {
        const std::string value(row.length, 'v');
        startValue("foo:" + value + "\n");
        setLexerContext(SDP_LEXCTX_STRING);
        Guarded buffer(size_t{row.size});
        SDPAttr attr = {};
        auto *const bytes = reinterpret_cast<char *>(buffer.data());
        EXPECT_EQ(named(sdpUnRecAttrTypeExtn("foo", &attr, bytes, row.size)), row.result)
            << row.size << ' ' << row.length;
        EXPECT_EQ(nameOf(attr), "foo");
        if (row.result == std::string_view("ok")) {
            EXPECT_EQ(textOf(attr.unAttrValue.strValue), value);
            EXPECT_STREQ(bytes, value.c_str());
            EXPECT_EQ(LA(), uint32_t{SDP_TOK_LF}) << "the line end is the caller's";
        }
    }
}

TEST_F(ParserAttribute, NoBufferHoldsNoValue) {
    startValue("foo:v\n");
    setLexerContext(SDP_LEXCTX_STRING);
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpUnRecAttrTypeExtn("foo", &attr, nullptr, 0)), "UnrecTooLong 1");
}

// ---- The list

TEST_F(ParserAttribute, ListEndsAtTheFirstOtherLine) {
    start("a=sendrecv\na=foo:bar baz\nm=audio\n");
    SDPAttrList list = {};
    ASSERT_EQ(named(sdpAttributeFields(&list)), "ok");
    ASSERT_EQ(list.ulNoOfAttrs, 2u);
    EXPECT_EQ(list.ppstAttrs[0]->ulAttrType, uint32_t{SDP_ATTR_SENDRECV});
    EXPECT_EQ(nameOf(*list.ppstAttrs[0]), "(null)");
    EXPECT_EQ(list.ppstAttrs[1]->ulAttrType, uint32_t{SDP_ATTR_UNREC_VALUE});
    EXPECT_EQ(nameOf(*list.ppstAttrs[1]), "foo");
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_MEDIA});
}

TEST_F(ParserAttribute, CountIsStoredWhenTheListEnds) {
    start("a=sendrecv\na=foo:\n");
    SDPAttrList list = {77, nullptr};
    EXPECT_EQ(named(sdpAttributeFields(&list)), "UnrecEmpty 101");
    EXPECT_EQ(list.ulNoOfAttrs, 77u);
    EXPECT_EQ(list.ppstAttrs[0]->ulAttrType, uint32_t{SDP_ATTR_SENDRECV});
    const SDPAttr *const refused = list.ppstAttrs[1];
    EXPECT_EQ(refused, nullptr) << "the attribute that was refused is not in the list";
}

TEST_F(ParserAttribute, ListGrowsByOneSlot) {
    start("a=fax\na=fax\na=fax\n\n");
    SDPAttrList list = {};
    ASSERT_EQ(named(sdpAttributeFields(&list)), "ok");
    constexpr uint32_t slot = sizeof(SDPAttr *);
    EXPECT_EQ(sizesAskedFor(), (std::vector<uint32_t>{slot, sizeof(SDPAttr), 2 * slot,
                                                      sizeof(SDPAttr), 3 * slot, sizeof(SDPAttr)}));
}

TEST_F(ParserAttribute, UnsetFieldsAreZero) {
    start("a=sendrecv\n\n");
    SDPAttrList list = {};
    ASSERT_EQ(named(sdpAttributeFields(&list)), "ok");
    SDPAttr expected = {};
    expected.ulAttrType = SDP_ATTR_SENDRECV;
    EXPECT_EQ(std::memcmp(list.ppstAttrs[0], &expected, sizeof expected), 0);
}

// ---- Memory

struct MemoryRow {
    const char *result;
    const char *logged;
};

TEST_F(ParserAttribute, EveryAllocationFailsWithItsOwnCheck) {
    constexpr MemoryRow rows[] = {
        {"AttrArrayAlloc 1", "5 sdpparser sdpAttributeFields 1"},
        {"AttrAlloc 1", "5 sdpparser sdpAttributeFields 1"},
        {"UnrecNameAlloc 1", "5 sdpparser sdpUnRecAttrTypeExtn 1"},
        {"UnrecNameStore 1", "3 sdpparser sdpUnRecAttrTypeExtn 3"},
        {"UnrecStore 1", "3 sdpparser sdpUnRecAttrTypeExtn 3"},
        {"AttrGrow 1", "3 sdpparser sdpAttributeFields 0"},
        {"AttrAlloc 1", "5 sdpparser sdpAttributeFields 1"},
        {"UnrecFlagNameAlloc 1", "5 sdpparser sdpUnRecAttrTypeNoVal 1"},
        {"UnrecFlagNameStore 1", "3 sdpparser sdpUnRecAttrTypeNoVal 3"},
        {"AttrGrow 1", "3 sdpparser sdpAttributeFields 0"},
        {"AttrAlloc 1", "5 sdpparser sdpAttributeFields 1"},
        {"ValueStore 1", "3 sdpparser sdpOtherRecAttr 3"},
    };
    uint32_t n = 0;
    for (const MemoryRow &row : rows) {
        start("a=foo:bar\na=foo\na=cat:x\n\n");
        failAllocation(++n);
        log.clear();
        SDPAttrList list = {};
        EXPECT_EQ(named(sdpAttributeFields(&list)), row.result) << n;
        EXPECT_EQ(log.texts(), std::vector<std::string>{row.logged}) << n;
    }
    start("a=foo:bar\na=foo\na=cat:x\n\n");
    failAllocation(n + 1);
    SDPAttrList list = {};
    EXPECT_EQ(named(sdpAttributeFields(&list)), "ok");
}

TEST_F(ParserAttribute, TextWithoutMemoryKeepsItsLength) {
    startValue("tool:sdp\n");
    failAllocation(1);
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpOtherRecAttr(&attr, SDP_ATTR_TOOL)), "ValueStore 1");
    EXPECT_EQ(attr.unAttrValue.strValue.ulLen, 3u);
    const char *const data = attr.unAttrValue.strValue.pcData;
    EXPECT_EQ(data, nullptr);
}

// A failing fill is reported, and the work goes on.
TEST_F(ParserAttribute, FailingFillsAreReported) {
    for (uint32_t n = 1; n <= 2; ++n) {
        start("a=sendrecv\n\n");
        SecureFaults::reset();
        SecureFaults::failAt(n);
        SDPAttrList list = {};
        EXPECT_EQ(named(sdpAttributeFields(&list)), "ok");
        ASSERT_EQ(SecureFaults::reports().size(), 1u);
        EXPECT_FALSE(SecureFaults::reports()[0].ex);
        EXPECT_EQ(SecureFaults::reports()[0].name, "sdpAttributeFields");
    }
    EXPECT_EQ(SecureFaults::count(), 3u) << "the array, the attribute, the text of its name";
    SecureFaults::reset();
}

// ---- Each text that is taken clears the text buffer

struct Taking {
    SDPResult (*parse)();
    const char *value;
    uint32_t texts;
};

template <SDPResult (*Parse)(SDPAttr *, uint32_t), uint32_t type>
SDPResult parseAs() {
    SDPAttr attr = {};
    return Parse(&attr, type);
}

SDPResult parseIpBcp() {
    SDPAttr attr = {};
    return sdpIpBcpAttr(&attr);
}

constexpr Taking kTakings[] = {
    {parseAs<sdpModeAttr, SDP_ATTR_FAX>, "n\n", 0},
    {parseAs<sdpPacketizationAttr, SDP_ATTR_FRAMERATE>, "n:29.97\n", 1},
    {parseAs<sdpFaxRateMgmtAttr, SDP_ATTR_T38_RATE_MANAGEMENT>, "n:localTCF\n", 1},
    {parseAs<sdpOtherRecAttr, SDP_ATTR_FMTP>, "n:a b\tc \n", 6},
    {parseAs<sdpSilenceSuppression, SDP_ATTR_SILENCE_SUPP>, "n:on - -\n", 5},
    {parseAs<sdpEchoCacellation, SDP_ATTR_ECAN>, "n:fb on x\n", 4},
    {parseAs<sdpT120Attr, SDP_ATTR_SETUP>, "n:active\n", 1},
    {parseAs<sdpResourceStatus, SDP_ATTR_DES>, "n:qos optional e2e send\n", 4},
    {parseAs<sdpResourceStatus, SDP_ATTR_CURR>, "n:qos e2e send\n", 3},
    {parseIpBcp, "n:1 Request\n", 2},
};

TEST_F(ParserAttribute, EachTextTakenIsACallOfTheFill) {
    for (const Taking &taking : kTakings) {
        startValue(taking.value);
        SecureFaults::reset();
        EXPECT_EQ(named(taking.parse()), "ok") << taking.value;
        EXPECT_EQ(SecureFaults::count(), taking.texts) << taking.value;
    }
}

TEST_F(ParserAttribute, AFailingClearOfTheTextBufferIsReportedAndTheWorkGoesOn) {
    for (const Taking &taking : kTakings) {
        for (uint32_t n = 1; n <= taking.texts; ++n) {
            startValue(taking.value);
            SecureFaults::reset();
            SecureFaults::failAt(n);
            EXPECT_EQ(named(taking.parse()), "ok") << taking.value;
            ASSERT_EQ(SecureFaults::reports().size(), 1u) << taking.value << n;
            EXPECT_TRUE(SecureFaults::reports()[0].ex);
            EXPECT_EQ(SecureFaults::reports()[0].name, "sdplexer");
        }
    }
    SecureFaults::reset();
}

// ---- A body full of attributes

TEST(ManyAttributes, FillABodyOfTheGreatestLength) {
    std::string text = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nt=0 0\n";
    uint32_t attributes = 1;
    while (text.size() + 2 * std::string_view("a=x\n").size() <= SDP_MAX_BODY) {
        text += "a=x\n";
        ++attributes;
    }
    text += "a=" + std::string(SDP_MAX_BODY - text.size() - 3, 'x') + "\n";
    ASSERT_EQ(text.size(), 4093u);

    const Guarded input(text);
    const SipString counted = input.text();
    SdpLine *line = nullptr;
    ASSERT_EQ(SdpLibDecodeSdp(&counted, &line), 0u);
    const SDPAttrList *const list = line->pstAttrList;
    EXPECT_EQ(list->ulNoOfAttrs, attributes);
    EXPECT_GT(attributes, 1000u);
    for (uint32_t i = 0; i + 1 < attributes; ++i) {
        ASSERT_EQ(nameOf(*list->ppstAttrs[i]), "x");
    }
    EXPECT_EQ(nameOf(*list->ppstAttrs[attributes - 1]), "xxx");
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
}

} // namespace

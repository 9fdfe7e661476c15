// The driver: the order of lines, the normal form, the growth of lists, and the state after a
// parse. Whole bodies are in the case documents.
#include "parser/parsing.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>

#include "support/each.hpp"
#include "support/securefaults.hpp"

namespace {

using support::Guarded;
using support::LogRecorder;
using support::named;
using support::SecureFaults;
using Texts = std::vector<std::string>;

// ---- Line order

struct Line {
    const char *key;
    const char *text;
    uint32_t kind;
};

// One good line of every kind.
constexpr Line kLines[] = {
    {"v", "v=0", SDP_TOK_VERSION},
    {"o", "o=- 1 1 IN IP4 x", SDP_TOK_ORIGIN},
    {"s", "s=-", SDP_TOK_SESSION_NAME},
    {"i", "i=a", SDP_TOK_INFO},
    {"u", "u=a", SDP_TOK_URI},
    {"e", "e=a", SDP_TOK_EMAIL},
    {"p", "p=a", SDP_TOK_PHONE},
    {"c", "c=IN IP4 1.2.3.4", SDP_TOK_CONNECTION},
    {"b", "b=AS:1", SDP_TOK_BANDWIDTH},
    {"t", "t=0 0", SDP_TOK_TIME},
    {"r", "r=1d", SDP_TOK_REPEAT},
    {"z", "z=0 0", SDP_TOK_ZONE},
    {"k", "k=prompt", SDP_TOK_KEY},
    {"a", "a=recvonly", SDP_TOK_ATTRIBUTE},
    {"m", "m=audio 0 TCP x", SDP_TOK_MEDIA},
};

// Lines of an unknown type, with their first token.
constexpr Line kOddLines[] = {
    {"f", "f=1", SDP_TOK_ALPHA},      {"V", "V=0", SDP_TOK_ALPHA},
    {"t", "t 0 0", SDP_TOK_ALPHA},    {"0", "0=1", SDP_TOK_DIGIT},
    {"IN", "IN", SDP_TOK_IN},         {"IP4", "IP4", SDP_TOK_IP4},
    {"IP6", "IP6", SDP_TOK_IP6},      {"X-", "X-a=1", SDP_TOK_X_DASH},
    {"I", "IP5", SDP_TOK_ALPHA},      {"tab", "\tt=0 0", SDP_TOK_TAB},
    {"cr", "\rt=0 0", SDP_TOK_OTHER}, {"=", "=", SDP_TOK_EQUAL},
    {"\xff", "\xff", SDP_TOK_OTHER},
};

struct State {
    const char *lines; // after v=, o= and s=, by their keys
    const char *next;  // keys of the lines that may follow
    const char *refusal;
};

// Lists accept more lines of their type, t= its r= lines.
constexpr State kStates[] = {
    {"", "pbctmuie", "AfterName 102"},
    {"i", "pbctue", "AfterInfo 102"},
    {"u", "pbcte", "AfterUri 102"},
    {"e",
     "pcbt"
     "e",
     "AfterEmail 102"},
    {"ee",
     "pcbt"
     "e",
     "AfterEmail 102"},
    {"p",
     "cbt"
     "p",
     "AfterPhone 102"},
    {"c", "btm", "AfterConnection 102"},
    {"b",
     "t"
     "b",
     "AfterBandwidth 102"},
    {"t",
     "kamz"
     "tr",
     "AfterTime 102"},
    {"tt",
     "kamz"
     "tr",
     "AfterTime 102"},
    {"tr",
     "kamz"
     "tr",
     "AfterTime 102"},
    {"tz", "kam", "AfterZone 102"},
    {"tk", "am", "AfterKey 102"},
    {"tzk", "am", "AfterKey 102"},
    {"ta",
     "m"
     "a",
     "AfterAttributes 102"},
    {"tzkaa",
     "m"
     "a",
     "AfterAttributes 102"},
};

void PrintTo(const State &state, std::ostream *out) {
    *out << "vos" << state.lines;
}

const Line &lineOf(char key) {
    for (const Line &line : kLines) {
        if (line.key[0] == key) {
            return line;
        }
    }
    std::abort();
}

std::string bodyOf(const char *keys) {
    std::string body;
    for (; *keys != '\0'; ++keys) {
        body += lineOf(*keys).text + std::string("\n");
    }
    return body;
}

std::string decode(const std::string &body) {
    const Guarded input(body);
    const SipString text = input.text();
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdp(&text, &line);
    SdpLibReleaseSdp(&line);
    return named(result);
}

class LineOrder : public testing::TestWithParam<State> {
protected:
    std::string before() const { return bodyOf("vos") + bodyOf(GetParam().lines); }

    void expectRefused(const Line &line) const {
        const LogRecorder log;
        EXPECT_EQ(decode(before() + line.text + "\n"), GetParam().refusal) << line.text;
        ASSERT_FALSE(log.entries().empty());
        EXPECT_EQ(log.texts()[0],
                  "3 sdpparser startSdpParsing - \"Token = " + std::to_string(line.kind) + '"');
    }
};

TEST_P(LineOrder, AdmitsTheLinesOfItsTableOnly) {
    for (const Line &line : kLines) {
        if (std::strchr(GetParam().next, line.key[0]) != nullptr) {
            EXPECT_EQ(decode(before() + line.text + "\n"), "ok") << line.text;
        } else {
            expectRefused(line);
        }
    }
}

TEST_P(LineOrder, RefusesLinesOfNoKind) {
    for (const Line &line : kOddLines) {
        expectRefused(line);
    }
}

TEST_P(LineOrder, EndsAtAnEmptyLine) {
    EXPECT_EQ(decode(before()), "ok");
    EXPECT_EQ(decode(before() + "\nwhatever\n"), "ok");
}

std::string stateName(const testing::TestParamInfo<State> &info) {
    return std::string("After_vos") + info.param.lines;
}

INSTANTIATE_TEST_SUITE_P(Driver, LineOrder, testing::ValuesIn(kStates), stateName);

// Which kinds follow each in the table of docs/grammar.md, "t= r=" by its first: 'z' is "kam". The
// document leaves out that lists take lines of their kind again.
std::map<char, std::string> documentedOrder() {
    std::ifstream document(SDPLINE_CASES "/../../docs/grammar.md");
    std::map<char, std::string> order;
    for (std::string line; std::getline(document, line);) {
        const size_t bar = line.find(" | ");
        if (line.size() < 4 || line[0] != '|' || line[3] != '=' || bar == std::string::npos) {
            continue;
        }
        std::string &followers = order[line[2]];
        for (size_t at = line.find('=', bar); at != std::string::npos;
             at = line.find('=', at + 1)) {
            followers += line[at - 1];
        }
        std::sort(followers.begin(), followers.end());
    }
    return order;
}

TEST(LineOrderDocument, SaysWhatIsAdmitted) {
    const std::map<char, std::string> order = documentedOrder();
    for (const State &state : kStates) {
        const char last = state.lines[0] == '\0' ? 's' : state.lines[std::strlen(state.lines) - 1];
        const char kind = last == 'r' ? 't' : last;
        std::string followers;
        for (const char next : std::string_view(state.next)) {
            if (next != kind && next != 'r') {
                followers += next;
            }
        }
        std::sort(followers.begin(), followers.end());
        ASSERT_TRUE(order.contains(kind)) << kind;
        EXPECT_EQ(order.at(kind), followers) << "after " << kind << '=';
    }
}

TEST(FirstLines, AreVersionOriginAndName) {
    for (const Line &line : kLines) {
        const std::string text = line.text + std::string("\n");
        const char key = line.key[0];
        const LogRecorder log;
        EXPECT_EQ(decode(text), key == 'v' ? "StartOrigin 102" : "StartVersion 100");
        EXPECT_EQ(decode("v=0\n" + text), key == 'o' ? "StartName 102" : "StartOrigin 102");
        EXPECT_EQ(decode(bodyOf("vo") + text), key == 's' ? "ok" : "StartName 102");
        for (const std::string &entry : log.texts()) {
            EXPECT_EQ(entry.find('"'), std::string::npos) << "an entry with a message: " << entry;
        }
    }
    for (const Line &line : kOddLines) {
        EXPECT_EQ(decode(line.text), "StartVersion 100");
        EXPECT_EQ(decode(std::string("v=0\n") + line.text), "StartOrigin 102");
        EXPECT_EQ(decode(bodyOf("vo") + line.text), "StartName 102");
    }
}

// Below an m= line other rules apply; after its attributes the driver's rules apply again.
TEST(LastLines, AreThoseOfTheMedia) {
    for (const Line &line : kLines) {
        const bool follows = line.key[0] == 'a' || line.key[0] == 'm';
        const LogRecorder log;
        EXPECT_EQ(decode(bodyOf("vosma") + line.text + "\n"), follows ? "ok" : "AfterMedia 1");
        if (!follows) {
            EXPECT_EQ(log.texts()[0], "3 sdpparser startSdpParsing -");
        }
    }
    EXPECT_EQ(decode(bodyOf("vosma") + "\nwhatever\n"), "ok");
}

// ---- Normal form

// The copy, without the NUL that must be there.
std::string normalForm(std::string_view text) {
    Guarded input(text);
    Guarded output(text.size() + 3);
    std::memset(output.data(), 0xEE, output.size());
    convertCRLFToCR(input.data(), static_cast<uint32_t>(text.size()), output.data(),
                    static_cast<uint32_t>(output.size()));
    return reinterpret_cast<const char *>(output.data());
}

template <size_t Size>
std::string_view bytes(const char (&literal)[Size]) {
    return {literal, Size - 1};
}

TEST(NormalForm, EndsInTwoLineFeeds) {
    support::expectEach(normalForm, {{"", "\n\n"}, {"a", "a\n\n"}, {"a\n", "a\n\n\n"}});
}

TEST(NormalForm, DropsTheCrOfCrLfOnly) {
    support::expectEach(normalForm, {{"a\r\nb\r\n", "a\nb\n\n\n"},
                                     {"\r\n\r\n", "\n\n\n\n"},
                                     {"a\rb", "a\rb\n\n"},
                                     {"a\r\r\nb", "a\r\nb\n\n"},
                                     {"\n\rb", "\n\rb\n\n"}});
}

// The line feed after it was not in the text.
TEST(NormalForm, KeepsACrAtTheVeryEnd) {
    support::expectEach(normalForm, {{"a\r", "a\r\n\n"}, {"\r", "\r\n\n"}, {"a\n\r", "a\n\r\n\n"}});
}

TEST(NormalForm, DropsBlanksAtLineStarts) {
    support::expectEach(
        normalForm,
        {{"a\n b", "a\nb\n\n"}, {"a\r\n    b \n  ", "a\nb \n\n\n"}, {"\n \n \n", "\n\n\n\n\n"}});
}

TEST(NormalForm, KeepsBlanksOfTheFirstLineAndAfterACr) {
    support::expectEach(
        normalForm,
        {{"  a", "  a\n\n"}, {" ", " \n\n"}, {"a\r b", "a\r b\n\n"}, {"a\n\r b", "a\n\r b\n\n"}});
}

TEST(NormalForm, KeepsTabs) {
    support::expectEach(
        normalForm,
        {{"a\n\tb", "a\n\tb\n\n"}, {"a\n \t b", "a\n\t b\n\n"}, {"\ta\t", "\ta\t\n\n"}});
}

TEST(NormalForm, DropsNulBytes) {
    support::expectEach(
        normalForm,
        {{bytes("\0a\0\0b\0"), "ab\n\n"}, {bytes("\0"), "\n\n"}, {bytes("a\n\0b"), "a\nb\n\n"}});
}

// The last byte that was written decides about a blank, the next byte of the text about a CR.
TEST(NormalForm, LooksThroughNulBytesAtBlanksButNotAtLineFeeds) {
    support::expectEach(normalForm, {{bytes("a\n\0 b"), "a\nb\n\n"},
                                     {bytes("a\n \0 \0\0 b"), "a\nb\n\n"},
                                     {bytes("a\r\0\nb"), "a\r\nb\n\n"},
                                     {bytes("\0 a"), " a\n\n"},
                                     {bytes("a\n\0\r\n b"), "a\n\nb\n\n"}});
}

TEST(NormalForm, KeepsEveryOtherByte) {
    std::string text;
    for (int byte = 1; byte < 256; ++byte) {
        text += static_cast<char>(byte);
    }
    EXPECT_EQ(normalForm(text), text + "\n\n");
}

TEST(NormalForm, ReportsAnOutputThatCannotBeCleared) {
    SecureFaults::reset();
    SecureFaults::failAt(1);
    EXPECT_EQ(normalForm("a\r\nb"), "a\nb\n\n");
    ASSERT_EQ(SecureFaults::reports().size(), 1u);
    EXPECT_FALSE(SecureFaults::reports()[0].ex);
    EXPECT_EQ(SecureFaults::reports()[0].name, "convertCRLFToCR   ");
    SecureFaults::reset();
}

// ---- Lists

std::vector<void *> givenBack;

class ExtendDP : public support::ParsingTest {
protected:
    void SetUp() override {
        ParsingTest::SetUp();
        givenBack.clear();
        SdpSetFnFree([](void *memory) { givenBack.push_back(memory); });
    }

    int items_[3] = {};
    void *array_[2] = {&items_[0], &items_[1]};
};

TEST_F(ExtendDP, CopiesThePointersAndClearsTheRest) {
    void **const longer = SdpLibUtilExtendDP(array_, 2, 5);
    ASSERT_NE(longer, nullptr);
    EXPECT_EQ(longer[0], &items_[0]);
    EXPECT_EQ(longer[1], &items_[1]);
    for (uint32_t i = 2; i < 5; ++i) {
        EXPECT_EQ(longer[i], nullptr);
    }
    EXPECT_EQ(sizesAskedFor(), std::vector<uint32_t>{5 * sizeof(void *)});
    EXPECT_EQ(givenBack, std::vector<void *>{array_});
}

TEST_F(ExtendDP, LeavesTheOldArrayWithoutMemory) {
    failAllocation(1);
    EXPECT_EQ(SdpLibUtilExtendDP(array_, 2, 3), nullptr);
    EXPECT_EQ(array_[0], &items_[0]);
    EXPECT_EQ(array_[1], &items_[1]);
    EXPECT_TRUE(givenBack.empty());
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(ExtendDP, NeitherClearsNorGivesBackForAnEmptyArray) {
    void *dirt = nullptr;
    std::memset(&dirt, 0xA5, sizeof dirt);
    void **const withoutArray = SdpLibUtilExtendDP(nullptr, 2, 2);
    ASSERT_NE(withoutArray, nullptr);
    EXPECT_EQ(withoutArray[0], dirt);
    void **const withoutCount = SdpLibUtilExtendDP(array_, 0, 2);
    ASSERT_NE(withoutCount, nullptr);
    EXPECT_EQ(withoutCount[1], dirt);
    EXPECT_TRUE(givenBack.empty());
}

TEST_F(ExtendDP, FailsWithoutAHook) {
    SdpSetFnAlloc(nullptr);
    EXPECT_EQ(SdpLibUtilExtendDP(array_, 2, 3), nullptr);
}

TEST_F(ExtendDP, NeedsNoHookToGiveBack) {
    SdpSetFnFree(nullptr);
    EXPECT_NE(SdpLibUtilExtendDP(array_, 2, 3), nullptr);
}

// ---- A parse

class ParseSdp : public support::ParsingTest {
protected:
    std::string parse(const std::string &body) {
        const Guarded input(body);
        const SipString text = input.text();
        line = reinterpret_cast<SdpLine *>(this);
        return named(SdpLibParseSdp(&text, &line));
    }

    SdpLine *line = nullptr;
};

const std::string kBody = "v=0\no=- 1 1 IN IP4 x\ns=-\n";

TEST_F(ParseSdp, ZeroesTheBody) {
    ASSERT_EQ(parse(kBody), "ok");
    EXPECT_EQ(sizesAskedFor()[0], sizeof(SdpLine));
    EXPECT_TRUE(line->pstKey == nullptr);
    EXPECT_TRUE(line->pstMemCp == nullptr) << "the block is none of the parser's business";
    EXPECT_EQ(line->stMediaSet.ulNoOfMediaDescs, 0u);
}

TEST_F(ParseSdp, ResetsTheLexer) {
    ASSERT_EQ(parse(kBody), "ok");
    EXPECT_EQ(sdpGetStartToken(), 0u);
    EXPECT_EQ(sdpGetEndToken(), 0u);
    EXPECT_EQ(sdpGetEnd(), 0u);
    EXPECT_EQ(sdpGetIndex(), 0u);
    ASSERT_EQ(parse(kBody + "x\n"), "AfterName 102");
    EXPECT_EQ(sdpGetStartToken(), 0u);
    EXPECT_EQ(sdpGetEndToken(), 0u);
    EXPECT_EQ(sdpGetEnd(), 0u);
}

TEST_F(ParseSdp, StartsInTheContextOfLines) {
    setLexerContext(SDP_LEXCTX_TOKEN);
    EXPECT_EQ(parse(kBody), "ok");
}

TEST_F(ParseSdp, GivesTheTopRecordBackOnly) {
    givenBack.clear();
    SdpSetFnFree([](void *memory) { givenBack.push_back(memory); });
    ASSERT_EQ(parse(kBody + "i=a\nx\n"), "AfterInfo 102");
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(givenBack.size(), 1u);
    EXPECT_EQ(log.texts().back(), "3 sdpparser SdpLibParseSdp -");
}

TEST_F(ParseSdp, RefusesMissingArguments) {
    SipString text = {4, const_cast<char *>("v=0\n")};
    SdpLine *const untouched = reinterpret_cast<SdpLine *>(this);
    SdpLine *result = untouched;
    EXPECT_EQ(named(SdpLibParseSdp(nullptr, &result)), "ParseArgument 1");
    EXPECT_EQ(named(SdpLibParseSdp(&text, nullptr)), "ParseArgument 1");
    text.ulLen = 0;
    EXPECT_EQ(named(SdpLibParseSdp(&text, &result)), "ParseArgument 1");
    text.ulLen = 4094;
    EXPECT_EQ(named(SdpLibParseSdp(&text, &result)), "ParseArgument 1");
    text = {4, nullptr};
    EXPECT_EQ(named(SdpLibParseSdp(&text, &result)), "ParseArgument 1");
    EXPECT_EQ(result, untouched);
    EXPECT_TRUE(sizesAskedFor().empty());
    EXPECT_EQ(log.texts(), Texts(5, "3 sdpparser SdpLibParseSdp 0"));
}

TEST_F(ParseSdp, FailsWithoutMemoryForTheBody) {
    failAllocation(1);
    EXPECT_EQ(parse(kBody), "ParseAlloc 1");
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(log.texts(), Texts{"5 sdpparser SdpLibParseSdp 1"});
}

TEST_F(ParseSdp, FailsWithoutAHook) {
    SdpSetFnAlloc(nullptr);
    EXPECT_EQ(parse(kBody), "ParseAlloc 1");
}

TEST_F(ParseSdp, LogsEveryAllocationOfTheDriver) {
    const struct {
        const char *lines;
        const char *check;
    } kAllocations[] = {
        {"i", "InfoAlloc 1"},  {"u", "UriAlloc 1"},        {"e", "EmailAlloc 1"},
        {"p", "PhoneAlloc 1"}, {"c", "ConnectionAlloc 1"}, {"b", "BandwidthAlloc 1"},
        {"tz", "ZoneAlloc 1"}, {"tk", "KeyAlloc 1"},       {"ta", "AttributesAlloc 1"},
    };
    for (const auto &row : kAllocations) {
        log.clear();
        // The body and four texts of o= and one of s=, or the slot and the field of t= too.
        failAllocation(row.lines[1] == '\0' ? 7 : 9);
        EXPECT_EQ(parse(kBody + bodyOf(row.lines)), row.check);
        EXPECT_EQ(log.texts(),
                  (Texts{"5 sdpparser startSdpParsing 1", "3 sdpparser SdpLibParseSdp -"}));
    }
}

TEST_F(ParseSdp, FailsWithoutInput) {
    const SipString none = {0, nullptr};
    clearSdpLexer();
    setInput(&none);
    SdpLine body = {};
    EXPECT_EQ(named(startSdpParsing(&body)), "StartVersion 100");
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser startSdpParsing -"});
}

TEST_F(ParseSdp, ReadsFromTheLexersInput) {
    const std::string text = kBody + "\n";
    const SipString input = {0, const_cast<char *>(text.c_str())};
    clearSdpLexer();
    setInput(&input);
    setLexerContext(SDP_LEXCTX_SDP);
    SdpLine body = {};
    EXPECT_EQ(named(startSdpParsing(&body)), "ok");
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_LF));
    EXPECT_EQ(body.strSessionName.ulLen, 1u);
}

} // namespace

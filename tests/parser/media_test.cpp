// The list of media descriptions and the order of the lines in one: every line after every other,
// memory that fails, and the counter of 8 bits.
#include "parser/parsing.hpp"

#include <algorithm>

namespace {

using support::named;
using support::textOf;

using Texts = std::vector<std::string>;

class MediaTest : public support::ParsingTest {
protected:
    SDPResult parseOne(const std::string &text) {
        start(text);
        desc = {};
        return sdpMediaDescription(&desc);
    }

    SDPResult parseAll(const std::string &text) {
        start(text);
        set = {kDirt, nullptr};
        return sdpMediaDescriptions(&set);
    }

    uint32_t portOf(uint32_t i) const { return set.ppstMediaDescs[i]->stMediaField.ulPort; }

    SDPMediaDesc desc = {};
    SDPMediaSet set = {};
};

// ---- The order of lines

struct FirstToken {
    const char *text;
    uint32_t kind;
};

constexpr const char *kMedia = "m=audio 1 RTP/AVP 0\n";
constexpr const char *kConnection = "c=IN IP4 192.0.2.1\n";

// Every kind of line, and first tokens of no line.
constexpr FirstToken kFirstTokens[] = {
    {"v=0\n", 37},
    {"o=- 1 1 IN IP4 192.0.2.1\n", 35},
    {"s=-\n", 36},
    {"i=info\n", 39},
    {"u=http://example.com/\n", 38},
    {"e=jane@example.com\n", 40},
    {"p=+1\n", 41},
    {kConnection, 42},
    {"b=AS:64\n", 43},
    {"t=0 0\n", 44},
    {"r=1 1\n", 48},
    {"z=0 1h\n", 49},
    {"k=prompt\n", 45},
    {"a=x\n", 46},
    {kMedia, 47},
    {"\n", 15},
    {"f=x\n", 2},
    {"A=x\n", 2},
    {"7=x\n", 3},
    {"=x\n", 14},
    {"\t\n", 32},
    {"IN\n", 57},
    {"IP4\n", 58},
    {"IP6\n", 59},
    {"X-a\n", 62},
    {"", 30},
};

// The line and the empty line after it, unless the text ends there.
std::string after(const FirstToken &line) {
    return line.kind == SDP_TOK_EOF ? "" : std::string(line.text) + '\n';
}

// The lines that may follow another, and the check that refuses the others.
struct Order {
    const char *line;
    std::vector<uint32_t> followers;
    const char *refusal;
};

TEST_F(MediaTest, LinesFollowEachOtherInOneOrderOnly) {
    constexpr uint32_t i = 39;
    constexpr uint32_t c = 42;
    constexpr uint32_t b = 43;
    constexpr uint32_t k = 45;
    constexpr uint32_t a = 46;
    constexpr uint32_t m = 47;
    constexpr uint32_t end = 15;
    const Order orders[] = {
        {"", {i, c, b, k, a, m, end}, "AfterMediaLine 1"},
        {"i=info\n", {c, b, k, a, m, end}, "AfterMediaInfo 102"},
        {kConnection, {b, k, a, m, end}, "AfterMediaConnection 102"},
        {"b=AS:64\n", {b, k, a, m, end}, "AfterMediaBandwidth 102"},
        {"k=prompt\n", {a, m, end}, "AfterMediaKey 102"},
    };
    for (const Order &order : orders) {
        for (const FirstToken &line : kFirstTokens) {
            log.clear();
            const std::string text = std::string(kMedia) + order.line + after(line);
            const bool follows = std::find(order.followers.begin(), order.followers.end(),
                                           line.kind) != order.followers.end();
            const std::string token = "Token = " + std::to_string(line.kind);
            EXPECT_EQ(named(parseOne(text)), follows ? "ok" : order.refusal) << text;
            EXPECT_EQ(log.texts(),
                      follows ? Texts{}
                              : Texts{"3 sdpparser sdpMediaDescription - \"" + token + '"'})
                << text;
        }
    }
}

TEST_F(MediaTest, AnyLineAfterTheAttributesIsLeftToTheCaller) {
    for (const FirstToken &line : kFirstTokens) {
        if (line.kind != SDP_TOK_ATTRIBUTE) {
            EXPECT_EQ(named(parseOne(std::string(kMedia) + "a=x\na=y\n" + after(line))), "ok");
            EXPECT_EQ(LA(), line.kind) << line.text;
            EXPECT_EQ(desc.pstAttrList->ulNoOfAttrs, 2u);
        }
    }
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(MediaTest, TheNextDescriptionAndTheEmptyLineAreLeftToTheCaller) {
    for (const std::string line : {"", "i=info\n", kConnection, "b=AS:64\n", "k=prompt\n"}) {
        EXPECT_EQ(named(parseOne(kMedia + line + kMedia)), "ok");
        EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_MEDIA)) << line;
        EXPECT_EQ(desc.stMediaField.ulPort, 1u);
        EXPECT_EQ(named(parseOne(kMedia + line + '\n')), "ok");
        EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_LF)) << line;
    }
}

TEST_F(MediaTest, ADescriptionBeginsWithItsMediaLine) {
    for (const FirstToken &line : kFirstTokens) {
        if (line.kind != SDP_TOK_MEDIA) {
            EXPECT_EQ(named(parseOne(after(line))), "MediaLine 102") << line.text;
        }
    }
}

TEST_F(MediaTest, EveryLineFillsItsRecord) {
    ASSERT_EQ(named(parseOne(std::string(kMedia) + "i=info\n" + kConnection +
                             "b=AS:64\nb=CT:1\nk=prompt\na=x\n\n")),
              "ok");
    EXPECT_EQ(textOf(desc.pstrMediaInfo), "info");
    EXPECT_EQ(desc.pstConnection->stTptAddr.unTptAddr.aucIpv4[0], 192);
    ASSERT_EQ(desc.pstBandwidthList->ulNoOfStrings, 2u);
    EXPECT_EQ(textOf(desc.pstBandwidthList->ppstStrings[1]), "CT:1");
    EXPECT_EQ(textOf(desc.pstKey->strKey), "prompt");
    ASSERT_EQ(desc.pstAttrList->ulNoOfAttrs, 1u);
    EXPECT_EQ(textOf(desc.pstAttrList->ppstAttrs[0]->pstAttrName), "x");
}

TEST_F(MediaTest, AbsentLinesAreNullThoughMemoryComesDirty) {
    ASSERT_EQ(named(parseAll(std::string(kMedia) + '\n')), "ok");
    const SDPMediaDesc &first = *set.ppstMediaDescs[0];
    EXPECT_TRUE(first.pstrMediaInfo == nullptr);
    EXPECT_TRUE(first.pstConnection == nullptr);
    EXPECT_TRUE(first.pstBandwidthList == nullptr);
    EXPECT_TRUE(first.pstKey == nullptr);
    EXPECT_TRUE(first.pstAttrList == nullptr);
    EXPECT_TRUE(first.stMediaField.stMedia.pstrOtherMedia == nullptr);
}

// ---- Memory

TEST_F(MediaTest, WithoutMemoryForALineTheDescriptionFails) {
    struct Failure {
        std::string line;
        const char *refusal;
    };
    // The first allocation is that of the payload numbers.
    const Failure failures[] = {
        {"i=info\n", "MediaInfoAlloc 1"},       {kConnection, "MediaConnectionAlloc 102"},
        {"b=AS:64\n", "MediaBandwidthAlloc 1"}, {"k=prompt\n", "MediaKeyAlloc 1"},
        {"a=x\n", "MediaAttributesAlloc 1"},
    };
    for (const Failure &failure : failures) {
        log.clear();
        failAllocation(2);
        EXPECT_EQ(named(parseOne(kMedia + failure.line + '\n')), failure.refusal);
        EXPECT_EQ(log.texts(), Texts{"5 sdpparser sdpMediaDescription 1"}) << failure.line;
    }
}

TEST_F(MediaTest, FailuresOfTheLinesArePassedUpAsTheyAre) {
    failAllocation(3);
    EXPECT_EQ(named(parseOne(std::string(kMedia) + "i=info\n\n")), "SetString 1");
    failAllocation(3);
    EXPECT_EQ(named(parseOne(std::string(kMedia) + "b=AS:1\n\n")), "TextListAlloc 1");
    failAllocation(3);
    EXPECT_EQ(named(parseOne(std::string(kMedia) + "a=x\n\n")), "AttrArrayAlloc 1");
    failAllocation(1);
    EXPECT_EQ(named(parseOne(kMedia)), "PayloadsAlloc 1");
}

TEST_F(MediaTest, WithoutMemoryTheListFailsAndItsCountStays) {
    struct Failure {
        uint32_t allocation;
        const char *refusal;
        const char *logged;
    };
    const Failure failures[] = {
        {1, "MediaArrayAlloc 1", "5 sdpparser sdpMediaDescriptions 1"},
        {2, "MediaAlloc 1", "5 sdpparser sdpMediaDescriptions 1"},
        {3, "PayloadsAlloc 1", "5 sdpparser sdpRtpAvpMediaFmt 1"},
        {4, "MediaGrow 1", "3 sdpparser sdpMediaDescriptions 3"},
        {5, "MediaAlloc 1", "5 sdpparser sdpMediaDescriptions 1"},
    };
    for (const Failure &failure : failures) {
        log.clear();
        failAllocation(failure.allocation);
        EXPECT_EQ(named(parseAll(std::string(kMedia) + kMedia + '\n')), failure.refusal);
        EXPECT_EQ(log.texts(), Texts{failure.logged}) << failure.allocation;
        EXPECT_EQ(set.ulNoOfMediaDescs, kDirt);
    }
}

TEST_F(MediaTest, ARefusedDescriptionLeavesTheCount) {
    EXPECT_EQ(named(parseAll(std::string(kMedia) + "m=audio 1 RTP/AVP\n\n")),
              "PayloadsMissing 101");
    EXPECT_EQ(set.ulNoOfMediaDescs, kDirt);
}

// ---- The counter of 8 bits

// That number of lines with ports 1, 2, 3 ..., which need no memory.
std::string manyLines(uint32_t count) {
    std::string text;
    for (uint32_t port = 1; port <= count; ++port) {
        text += "m=audio " + std::to_string(port) + " udp t38\n";
    }
    return text + '\n';
}

constexpr uint32_t kMediaSlot = sizeof(SDPMediaDesc *);

TEST_F(MediaTest, TheListGrowsByOneSlotAtATime) {
    ASSERT_EQ(named(parseAll(manyLines(4))), "ok");
    EXPECT_EQ(set.ulNoOfMediaDescs, 4u);
    const uint32_t size = sizeof(SDPMediaDesc);
    EXPECT_EQ(sizesAskedFor(), (std::vector<uint32_t>{kMediaSlot, size, 2 * kMediaSlot, size,
                                                      3 * kMediaSlot, size, 4 * kMediaSlot, size}));
}

TEST_F(MediaTest, DescriptionsUpTo255AreKept) {
    ASSERT_EQ(named(parseAll(manyLines(255))), "ok");
    ASSERT_EQ(set.ulNoOfMediaDescs, 255u);
    for (uint32_t i = 0; i < 255; ++i) {
        ASSERT_EQ(portOf(i), i + 1);
    }
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_LF));
}

TEST_F(MediaTest, TheCountWrapsWithThe256thDescription) {
    ASSERT_EQ(named(parseAll(manyLines(256))), "ok");
    EXPECT_EQ(set.ulNoOfMediaDescs, 0u);
    EXPECT_EQ(sizesAskedFor().size(), 512u) << "256 descriptions, 256 arrays";
    EXPECT_EQ(sizesAskedFor()[510], 256 * kMediaSlot);
}

TEST_F(MediaTest, The257thDescriptionTakesTheFirstSlotOfTheSameArray) {
    ASSERT_EQ(named(parseAll(manyLines(257))), "ok");
    ASSERT_EQ(set.ulNoOfMediaDescs, 1u);
    EXPECT_EQ(portOf(0), 257u);
    EXPECT_EQ(portOf(1), 2u) << "the array has not shrunk yet";
    EXPECT_EQ(sizesAskedFor().size(), 513u);
}

TEST_F(MediaTest, AfterTheWrapTheArrayGrowsFromOneSlotAgain) {
    ASSERT_EQ(named(parseAll(manyLines(259))), "ok");
    ASSERT_EQ(set.ulNoOfMediaDescs, 3u);
    EXPECT_EQ(portOf(0), 257u);
    EXPECT_EQ(portOf(1), 258u);
    EXPECT_EQ(portOf(2), 259u);
    const uint32_t size = sizeof(SDPMediaDesc);
    const std::vector<uint32_t> last(sizesAskedFor().end() - 5, sizesAskedFor().end());
    EXPECT_EQ(last, (std::vector<uint32_t>{size, 2 * kMediaSlot, size, 3 * kMediaSlot, size}));
}

TEST_F(MediaTest, TheCountWrapsTwice) {
    ASSERT_EQ(named(parseAll(manyLines(512 + 2))), "ok");
    ASSERT_EQ(set.ulNoOfMediaDescs, 2u);
    EXPECT_EQ(portOf(0), 513u);
    EXPECT_EQ(portOf(1), 514u);
}

} // namespace

// Copy, clone, clear and free of every line of the bodies in the case documents and of random
// bodies.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>

#include "copy/linememory.hpp"
#include "copy/linesamples.hpp"
#include "sdpline/sdpcopy.h"
#include "support/allocations.hpp"
#include "support/bodies.hpp"
#include "support/cases.hpp"
#include "support/generator.hpp"

namespace {

using dsmtest::Look;
using dsmtest::lookAt;
using dsmtest::recordSize;
using support::Body;
using support::BodyLine;
using support::Held;

constexpr int kBodies = 3000;
constexpr uint32_t kSeed = 20240117;

// The bytes of a record after SdpClearLine: an m= line and an attribute are all zero; the others
// lose only their texts and lists.
std::string clearedBytes(const BodyLine &line) {
    std::string bytes(static_cast<const char *>(line.record), recordSize(line.lineType));
    const auto lose = [&bytes](size_t offset, size_t size) {
        bytes.replace(offset, size, size, '\0');
    };
    switch (line.lineType) {
    case SDP_LINE_VERSION:
    case SDP_LINE_CONNECTION: break; // a decoded one has no allocated members
    case SDP_LINE_ORIGIN:
        lose(offsetof(SDPOrigin, strUserName), 3 * sizeof(SipString));
        lose(offsetof(SDPOrigin, strAddress), sizeof(SipString));
        break;
    case SDP_LINE_TIME: lose(offsetof(SDPTimeField, pstRepeatFieldSet), sizeof(void *)); break;
    default: lose(0, bytes.size()); break;
    }
    return bytes;
}

// A copy and a clone of one line in one block, and their expected contents.
class Twins {
public:
    Twins(SDPMemCp *block, const BodyLine &source) : block_(block), lineType_(source.lineType) {
        std::memset(copy_, dsmtest::kRubbish, sizeof copy_);
        EXPECT_EQ(SdpCopyLine(block, lineType_, source.record, copy_ + kMisplaced), 0u);
        EXPECT_EQ(SdpCloneLine(block, lineType_, source.record, &clone_), 0u);
        look_ = lookAt(lineType_, source.record).text;
        text_ = support::encodedLine(lineType_, source.record);
        cleared_ = clearedBytes(source);
    }

    // Appends every pointer to memory of the two.
    void pointers(std::vector<const void *> &all) const {
        for (const void *record : {copy(), static_cast<const void *>(clone_)}) {
            const Look look = lookAt(lineType_, record);
            all.insert(all.end(), look.allocations.begin(), look.allocations.end());
        }
        all.push_back(clone_);
    }

    void expectEqualToSource() const {
        for (const void *record : {copy(), static_cast<const void *>(clone_)}) {
            EXPECT_EQ(lookAt(lineType_, record).text, look_);
            EXPECT_EQ(support::encodedLine(lineType_, record), text_);
        }
    }

    void clearAndFree() {
        EXPECT_EQ(SdpClearLine(block_, lineType_, copy_ + kMisplaced), 0u);
        EXPECT_EQ(std::memcmp(copy(), cleared_.data(), cleared_.size()), 0)
            << "something is left of " << text_;
        EXPECT_EQ(SdpFreeLine(block_, lineType_, &clone_), 0u);
        EXPECT_EQ(clone_, nullptr);
    }

private:
    // A record can be at any multiple of 4.
    static constexpr size_t kMisplaced = 4;

    const void *copy() const { return copy_ + kMisplaced; }

    SDPMemCp *block_;
    uint32_t lineType_;
    alignas(8) unsigned char copy_[kMisplaced + sizeof(SDPOrigin)];
    void *clone_ = nullptr;
    std::string look_;
    std::string text_;
    std::string cleared_;
};

static_assert(sizeof(SDPOrigin) >= sizeof(SDPConnection) &&
                  sizeof(SDPOrigin) >= sizeof(SDPMediaField) &&
                  sizeof(SDPOrigin) >= sizeof(SDPAttr),
              "the greatest record of a line");

// In a block that counts its allocations, a clone is one allocation plus those of its members.
void expectCloneOwnsExactlyItsPieces(const BodyLine &source) {
    const Held before = Held::now();
    void *clone = nullptr;
    ASSERT_EQ(SdpCloneLine(gSipSystemMemCp, source.lineType, source.record, &clone), 0u);
    EXPECT_EQ(Held::now().heapBlocks,
              before.heapBlocks + 1 + lookAt(source.lineType, clone).allocations.size());
    EXPECT_EQ(SdpFreeLine(gSipSystemMemCp, source.lineType, &clone), 0u);
    EXPECT_TRUE(Held::now() == before);
}

// Copies, clears and frees the lines of the body; returns their number.
size_t checkLinesOf(Body body) {
    SDPMemCp *block = nullptr;
    EXPECT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
    std::deque<Twins> twins;
    std::vector<const void *> pointers;
    for (const BodyLine &line : support::linesOf(*body)) {
        expectCloneOwnsExactlyItsPieces(line);
        twins.emplace_back(block, line);
        // The r= lines that a t= line points to are also visited as lines.
        if (line.lineType != SDP_LINE_REPEAT) {
            const Look source = lookAt(line.lineType, line.record);
            pointers.insert(pointers.end(), source.allocations.begin(), source.allocations.end());
        }
        twins.back().pointers(pointers);
        twins.back().expectEqualToSource();
    }
    std::sort(pointers.begin(), pointers.end());
    EXPECT_EQ(std::adjacent_find(pointers.begin(), pointers.end()), pointers.end())
        << "two records share a pointer";
    body.reset();
    for (Twins &line : twins) {
        line.expectEqualToSource();
        line.clearAndFree();
    }
    EXPECT_EQ(SipMmReleaseBufMem(&block), 0u);
    return twins.size();
}

void checkLines(std::string_view text, size_t *kinds) {
    const Held before = Held::now();
    Body body = support::decoded(text);
    ASSERT_NE(body, nullptr);
    for (const BodyLine &line : support::linesOf(*body)) {
        ++kinds[line.lineType];
    }
    EXPECT_GE(checkLinesOf(std::move(body)), 3u);
    EXPECT_TRUE(Held::now() == before) << "something leaked";
    EXPECT_FALSE(testing::Test::HasFailure()) << support::readable(text);
}

class LinesOfBodies : public testing::Test {
protected:
    void SetUp() override { support::Allocations::reset(); }

    void TearDown() override {
        for (uint32_t lineType = 0; lineType < SDP_LINE_COUNT; ++lineType) {
            EXPECT_NE(kinds_[lineType], 0u) << "no line of type " << lineType;
        }
    }

    size_t kinds_[SDP_LINE_COUNT] = {};
};

TEST_F(LinesOfBodies, OfEveryCaseAreCopiedClearedAndFreed) {
    for (const support::Case &current : support::readCases(SDPLINE_CASES)) {
        if (!current.refused) {
            SCOPED_TRACE(current.file + ": " + current.title);
            const support::Configured configured(current);
            checkLines(current.body, kinds_);
        }
        if (HasFailure()) {
            return;
        }
    }
}

TEST_F(LinesOfBodies, MadeByChanceAreCopiedClearedAndFreed) {
    const support::Configured configured(SDP_T38_STYLE_VALUE, 0, SDP_LINE_END_CRLF);
    std::mt19937 engine(kSeed);
    for (int i = 0; i < kBodies && !HasFailure(); ++i) {
        checkLines(support::generateBody(engine), kinds_);
    }
}

} // namespace

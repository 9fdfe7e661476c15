// What the line operations refuse, and how they say so.
#include "copy/linememory.hpp"
#include "copy/linesamples.hpp"

#include <gtest/gtest.h>

#include <functional>

#include "sdpline/sdpcopy.h"
#include "support/logs.hpp"

namespace {

using dsmtest::LineMemory;
using dsmtest::textOf;
using Texts = std::vector<std::string>;

// The four arguments of copy and clone; clear and free do without the source.
struct Arguments {
    bool memory = true;
    uint32_t lineType = SDP_LINE_KEY;
    bool source = true;
    bool target = true;
};

const Arguments kRefused[] = {
    {false, SDP_LINE_KEY, true, true},      {true, SDP_LINE_COUNT, true, true},
    {true, 0xFFFFFFFFu, true, true},        {true, SDP_LINE_KEY, true, false},
    {false, SDP_LINE_MEDIA, true, true},    {true, SDP_LINE_MEDIA, true, false},
    {true, SDP_LINE_ATTRIBUTE, true, false}};
const Arguments kRefusedSources[] = {{true, SDP_LINE_KEY, false, true},
                                     {true, SDP_LINE_MEDIA, false, true},
                                     {true, SDP_LINE_ATTRIBUTE, false, true}};

class LineArguments : public testing::Test {
protected:
    using Operation = std::function<SDPResult(SDPMemCp *, const Arguments &)>;

    void expectRefusal(const Operation &operation, const Arguments &arguments, SDPResult result,
                       const Texts &entries) {
        LineMemory memory;
        support::LogRecorder logs;
        g_gSipCodePoint = 12345;
        EXPECT_EQ(operation(arguments.memory ? memory.control() : nullptr, arguments), result);
        EXPECT_EQ(logs.textsWithLines(), entries);
        if (entries.empty()) {
            EXPECT_EQ(g_gSipCodePoint, 12345u);
        } else {
            EXPECT_EQ(g_gSipCodePoint, 2u << 16 | logs.entries().back().line);
            EXPECT_EQ(logs.entries().back().module, 17u);
            EXPECT_EQ(logs.entries().back().instance, 0xFFFFFFFFu);
        }
        EXPECT_EQ(memory.requests(), 0u);
    }

    void expectRefusals(const Operation &operation, bool hasSource, SDPResult result,
                        const Texts &entries) {
        for (const Arguments &arguments : kRefused) {
            expectRefusal(operation, arguments, result, entries);
        }
        for (const Arguments &arguments : kRefusedSources) {
            if (hasSource) {
                expectRefusal(operation, arguments, result, entries);
            }
        }
    }

    const void *source(const Arguments &arguments) const {
        return arguments.source ? &source_ : nullptr;
    }
    void *target(const Arguments &arguments) { return arguments.target ? &target_ : nullptr; }
    void **slot(const Arguments &arguments) { return arguments.target ? &slot_ : nullptr; }

    const SDPKey source_ = {textOf("prompt")};
    SDPMediaField target_ = {}; // has room for an attribute too
    void *slot_ = &target_;
};

TEST_F(LineArguments, CopyIsLoggedByTheValidatorAndByTheOperation) {
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpCopyLineValidate(memory, given.lineType, source(given), target(given));
        },
        true, 0x0206d001, {"3 sdpdsm SdpCopyLineValidate:435 0"});
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpCopyLine(memory, given.lineType, source(given), target(given));
        },
        true, 0x02074001, {"3 sdpdsm SdpCopyLineValidate:435 0", "3 sdpdsm SdpCopyLine:464 0"});
}

TEST_F(LineArguments, CloneIsLoggedByTheValidatorAndByTheOperation) {
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpCloneLineValidate(memory, given.lineType, source(given), slot(given));
        },
        true, 0x02080001, {"3 sdpdsm SdpCloneLineValidate:513 0"});
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpCloneLine(memory, given.lineType, source(given), slot(given));
        },
        true, 0x02088001, {"3 sdpdsm SdpCloneLineValidate:513 0", "3 sdpdsm SdpCloneLine:544 0"});
    EXPECT_EQ(slot_, &target_) << "a refused clone leaves the target pointer";
}

TEST_F(LineArguments, ClearIsNotLogged) {
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpClearLineValidate(memory, given.lineType, target(given));
        },
        false, 0x02092001, {});
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpClearLine(memory, given.lineType, target(given));
        },
        false, 0x02092001, {});
}

TEST_F(LineArguments, FreeIsNotLogged) {
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpFreeLineValidate(memory, given.lineType, slot(given));
        },
        false, 0x020a1001, {});
    expectRefusals(
        [this](SDPMemCp *memory, const Arguments &given) {
            return SdpFreeLine(memory, given.lineType, slot(given));
        },
        false, 0x020a1001, {});
    EXPECT_EQ(slot_, &target_);
}

TEST_F(LineArguments, ValidatorsAcceptEveryKindOfLine) {
    LineMemory memory;
    for (uint32_t lineType = 0; lineType < SDP_LINE_COUNT; ++lineType) {
        SDPMemCp *const control = memory.control();
        EXPECT_EQ(SdpCopyLineValidate(control, lineType, &source_, &target_), 0u);
        EXPECT_EQ(SdpCloneLineValidate(control, lineType, &source_, &slot_), 0u);
        EXPECT_EQ(SdpClearLineValidate(control, lineType, &target_), 0u);
        EXPECT_EQ(SdpFreeLineValidate(control, lineType, &slot_), 0u);
    }
    slot_ = nullptr;
    EXPECT_EQ(SdpFreeLineValidate(memory.control(), SDP_LINE_KEY, &slot_), 0u);
}

TEST_F(LineArguments, ResultsAndCodePointsStandOnTheStacksFileBase) {
    g_gSipStackFileId = 0x1F0;
    g_gSipCodePoint = 0;
    LineMemory memory;
    EXPECT_EQ(SdpCopyLine(memory.control(), SDP_LINE_COUNT, &source_, &target_), 0xF2074001u);
    EXPECT_EQ(g_gSipCodePoint, 0x1F2u << 16 | 464u);
    EXPECT_EQ(SdpClearLine(memory.control(), SDP_LINE_COUNT, &target_), 0xF2092001u);
    g_gSipStackFileId = 0;
}

} // namespace

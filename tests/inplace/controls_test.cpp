// Memory controls: the library works in place only if each of their functions is libsipcore's. A
// program that sets one function of a control receives every call of it.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include "inplace/manylines.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpinternals.h"
#include "sdpline/sdpline.h"
#include "services/allocation.hpp"
#include "services/output.hpp"
#include "support/bodies.hpp"

namespace {

using support::Body;

std::string repeated(std::string_view line, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += line;
    }
    return text;
}

// One function is the program's and counts its calls; the other is libsipcore's.
class CountingControl {
public:
    CountingControl(SDPMemCp &original, bool ofFree) : control(original) {
        calls = 0;
        functions_ = original;
        if (ofFree) {
            control.pfnFree = [](void *memory) { return ++calls, functions_.pfnFree(memory); };
        } else {
            control.pfnAlloc = [](SDPMemCp *memCp, uint32_t size) {
                return ++calls, functions_.pfnAlloc(memCp, size);
            };
        }
    }

    SDPMemCp control;
    static inline uint32_t calls;

private:
    static inline SDPMemCp functions_;
};

TEST(MemoryControl, callsTheFunctionsOfABlockWhereOneIsThePrograms) {
    for (const bool ofFree : {false, true}) {
        SDPMemCp *block = nullptr;
        ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
        const CountingControl counting(*block, ofFree);
        *block = counting.control;
        sdpline::beginDecode(block);
        EXPECT_FALSE(sdpline::allocatesInPlace());
        sdpline::freeBytes(sdpline::allocateBytes(24));
        sdpline::endDecode(true);
        EXPECT_EQ(CountingControl::calls, 1u);
        SipMmReleaseBufMem(&block);
    }
}

// The text of the body in a buffer that starts with 16 bytes and grows four times, and whether it
// was written by calls or in place.
std::string textIn(SDPMemCp *memCp, bool inPlace) {
    const Body body = support::decoded(kManyLines);
    SipStringBuffer *buffer = nullptr;
    EXPECT_EQ(SipSbCreateStringBufferNew(memCp, 16, 16, &buffer), 0u);
    EXPECT_EQ(sdpline::Output(buffer).isInPlace(), inPlace);
    EXPECT_EQ(SdpLibEncodeSdpInt(body.get(), buffer), 0u);
    EXPECT_EQ(sdpline::Output(buffer).isInPlace(), inPlace);
    SipRefString *reference = nullptr;
    EXPECT_EQ(SipSbConvertToRefString(buffer, &reference), 0u);
    std::string text(SipSmGetDataFromRefString(reference), SipSmGetLenFromRefString(reference));
    SipSmReleaseRefString(reference);
    SipSbReleaseStringBuffer(buffer);
    return text;
}

// Text is written by calls into a buffer whose memory control, of the system or of a block, has one
// function of the program: the record and the reference string, and each growth.
TEST(MemoryControl, writesByCallsIntoABufferOfAControlWhereOneFunctionIsThePrograms) {
    SDPMemCp *block = nullptr;
    ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
    for (SDPMemCp *original : {gSipSystemMemCp, block}) {
        const std::string text = textIn(original, true);
        for (const bool ofFree : {false, true}) {
            CountingControl counting(*original, ofFree);
            EXPECT_EQ(textIn(&counting.control, false), text);
            EXPECT_EQ(CountingControl::calls, 2u + 4u) << (ofFree ? "freed" : "allocated");
        }
    }
    SipMmReleaseBufMem(&block);
}

// The library frees with pfnFree of the system's control everything that it allocated with
// pfnAlloc, and nothing else, when the program counts the calls of one of them.
TEST(MemoryControl, givesBackByTheSystemsControlWhatItTookThere) {
    const std::string longBody = kManyLines + repeated("a=x:" + std::string(1000, 'y') + "\r\n", 4);
    const auto callsOf = [&](bool ofFree) {
        CountingControl counting(*gSipSystemMemCp, ofFree);
        const SDPMemCp before = std::exchange(*gSipSystemMemCp, counting.control);
        SipString text = {static_cast<uint32_t>(longBody.size()),
                          const_cast<char *>(longBody.data())};
        SDPDecodeOptions options = {};
        options.ulMaxBodySize = SDP_MAX_LONG_BODY;
        SdpLine *line = nullptr;
        EXPECT_EQ(SdpLibDecodeSdpWithOptions(&text, &options, &line), 0u);
        SipStringBuffer *written = nullptr;
        EXPECT_EQ(SdpLibEncodeSdp(line, &written), 0u);
        SipSbReleaseStringBuffer(written);
        uint8_t bytes[100];
        uint32_t length = 0;
        EXPECT_NE(SdpLibSerializeSdp(line, bytes, sizeof bytes, &length), 0u) << "it does not fit";
        uint32_t prefixed = 1;
        SipRefString *single = nullptr;
        EXPECT_EQ(SdpLibEncodeSdpLine(&prefixed, SDP_LINE_ORIGIN, &line->stOrigin, &single), 0u);
        SipSmReleaseRefString(single);
        SDPOrigin *origin = nullptr;
        EXPECT_EQ(SdpCloneLine(gSipSystemMemCp, SDP_LINE_ORIGIN, &line->stOrigin,
                               reinterpret_cast<void **>(&origin)),
                  0u);
        EXPECT_EQ(SdpFreeLine(gSipSystemMemCp, SDP_LINE_ORIGIN, reinterpret_cast<void **>(&origin)),
                  0u);
        SdpLibReleaseSdp(&line);
        *gSipSystemMemCp = before;
        return CountingControl::calls;
    };
    const uint32_t taken = callsOf(false);
    EXPECT_GT(taken, 10u);
    EXPECT_EQ(callsOf(true), taken);
}

// The copy of a long body is allocated by the system's control. Its functions may set the hooks of
// the decode, as a log hook may; later requests go to the new hooks.
class LongBody : public testing::Test {
protected:
    void SetUp() override {
        before_ = *gSipSystemMemCp;
        options_.ulMaxBodySize = SDP_MAX_LONG_BODY;
        taken_ = given_ = 0;
        functions_ = before_;
    }
    void TearDown() override {
        *gSipSystemMemCp = before_;
        g_gSdpFnAlloc = nullptr;
        g_gSdpFnFree = nullptr;
    }

    static void setHooks() {
        SdpSetFnAlloc([](uint32_t size) { return ++taken_, SdpLibAllocSdpMem(size); });
        SdpSetFnFree([](void *memory) { ++given_, SdpLibFreeSdpMem(memory); });
    }

    SDPResult decode(const std::string &body) {
        const SipString text = {static_cast<uint32_t>(body.size()),
                                const_cast<char *>(body.data())};
        SdpLine *line = nullptr;
        const SDPResult result = SdpLibDecodeSdpWithOptions(&text, &options_, &line);
        SdpLibReleaseSdp(&line);
        return result;
    }

    static inline SDPMemCp functions_;
    static inline uint32_t taken_;
    static inline uint32_t given_;
    SDPMemCp before_ = {};
    SDPDecodeOptions options_ = {};
    const std::string accepted_ =
        "v=0\no=- 1 2 IN IP4 h\ns=-\nt=0 0\n" + repeated("a=x:yyyyyyyyyyyyyyy\n", 250);
};

TEST_F(LongBody, isDecodedThroughTheHooksThatPfnAllocHasSet) {
    gSipSystemMemCp->pfnAlloc = [](SDPMemCp *memCp, uint32_t size) {
        setHooks();
        return functions_.pfnAlloc(memCp, size);
    };
    EXPECT_EQ(decode(accepted_), 0u);
    EXPECT_GT(taken_, 250u * 3) << "a record, a name and a value for each attribute";
    EXPECT_GT(given_, 0u) << "the lists that grew";
}

TEST_F(LongBody, isGivenBackThroughTheHooksThatPfnFreeHasSet) {
    gSipSystemMemCp->pfnFree = [](void *memory) {
        setHooks();
        return functions_.pfnFree(memory);
    };
    EXPECT_NE(decode(accepted_ + "x"), 0u);
    EXPECT_EQ(given_, 1u) << "the body itself";
}

} // namespace

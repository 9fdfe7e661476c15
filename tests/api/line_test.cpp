// Single lines as text: SdpLibEncodeSdpLine.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "copy/linememory.hpp"
#include "copy/linesamples.hpp"
#include "sdpline/sdpline.h"
#include "support/appends.hpp"
#include "support/logs.hpp"

namespace {

using dsmtest::Sample;
using dsmtest::sampleNamed;
using dsmtest::SystemMemory;
using dsmtest::textOf;
using support::Appends;
using Texts = std::vector<std::string>;

uint32_t prefixed = 1;
uint32_t bare = 0;

// A pointer that no operation has overwritten.
SipRefString *const kUntouchedLine = reinterpret_cast<SipRefString *>(&prefixed);

// The line's text; "failed" when there is none.
std::string encoded(uint32_t lineType, const void *record, uint32_t withPrefix = 1) {
    SipRefString *text = kUntouchedLine;
    if (SdpLibEncodeSdpLine(&withPrefix, lineType, const_cast<void *>(record), &text) != 0) {
        return "failed";
    }
    const std::string bytes(SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text));
    SipSmReleaseRefString(text);
    return bytes;
}

TEST(EncodeSdpLine, WritesAKeyWithOrWithoutItsPrefix) {
    SDPKey key = {textOf("prompt")};
    EXPECT_EQ(encoded(SDP_LINE_KEY, &key, 1), "k=prompt\r\n");
    EXPECT_EQ(encoded(SDP_LINE_KEY, &key, 0), "prompt\r\n");
    EXPECT_EQ(encoded(SDP_LINE_KEY, &key, 2), "prompt\r\n");
}

TEST(EncodeSdpLine, EndsTheLineAsConfigured) {
    SDPKey key = {textOf("prompt")};
    uint32_t lineEnd = SDP_LINE_END_LF;
    ASSERT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
    EXPECT_EQ(encoded(SDP_LINE_KEY, &key), "k=prompt\n");
    lineEnd = SDP_LINE_END_CR;
    ASSERT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
    EXPECT_EQ(encoded(SDP_LINE_KEY, &key), "k=prompt\r");
    lineEnd = SDP_LINE_END_CRLF;
    ASSERT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
}

TEST(EncodeSdpLine, WritesEveryKindOfLine) {
    const struct {
        const char *sample;
        const char *text;
    } kLines[] = {
        {"v=", "v=7\r\n"},
        {"c= IPv4", "c=IN IP4 240.241.242.243/127\r\n"},
        {"o= IN IP4", "o=jdoe 2890844526 2890842807 IN IP4 10.47.16.5\r\n"},
        {"m= three payloads", "m=audio 49170/2 RTP/AVP 0 3 6\r\n"},
        {"a= type 1", "a=rtpmap:101 telephone-event/8000\r\n"},
        {"a= type 34", "a=foo:bar\r\n"},
        {"t= with r=", "t=2873397496 2873404696\r\n"},
        {"r=", "r=7d 1h 0s 25h\r\n"},
        {"text of line type 7", "i=some words\r\n"},
        {"text of line type 8", "s=some words\r\n"},
        {"text of line type 9", "u=some words\r\n"},
        {"text of line type 10", "e=some words\r\n"},
        {"text of line type 11", "p=some words\r\n"},
        {"text of line type 12", "b=some words\r\n"},
        {"text of line type 13", "z=some words\r\n"},
        {"k=", "k=prompt\r\n"},
    };
    for (const auto &line : kLines) {
        const Sample &sample = sampleNamed(line.sample);
        EXPECT_EQ(encoded(sample.lineType, sample.record), line.text) << line.sample;
    }
}

TEST(EncodeSdpLine, AnAttributeThatCannotBeWrittenIsAShortLine) {
    SDPAttr attribute = {};
    attribute.ulAttrType = SDP_ATTR_UNKNOWN;
    EXPECT_EQ(encoded(SDP_LINE_ATTRIBUTE, &attribute), "a=\r\n");
}

TEST(EncodeSdpLine, RefusesOtherArgumentsBeforeAnythingIsAllocated) {
    SDPKey key = {textOf("prompt")};
    SipRefString *text = kUntouchedLine;
    const struct {
        uint32_t *flag;
        uint32_t lineType;
        void *record;
        SipRefString **text;
    } refused[] = {{nullptr, SDP_LINE_KEY, &key, &text},
                   {&prefixed, SDP_LINE_COUNT, &key, &text},
                   {&prefixed, 0xFFFFFFFFu, &key, &text},
                   {&prefixed, SDP_LINE_KEY, nullptr, &text},
                   {&prefixed, SDP_LINE_KEY, &key, nullptr}};
    const SystemMemory system;
    for (const auto &given : refused) {
        support::LogRecorder logs;
        EXPECT_EQ(SdpLibEncodeSdpLine(given.flag, given.lineType, given.record, given.text),
                  0x04069001u);
        EXPECT_EQ(logs.textsWithLines(), (Texts{"3 sdpintf SdpLibEncodeSdpLineValidate:388 0",
                                                "3 sdpintf SdpLibEncodeSdpLine:420 0"}));
        EXPECT_EQ(g_gSipCodePoint, 4u << 16 | 420u);
        EXPECT_EQ(SdpLibEncodeSdpLineValidate(given.flag, given.lineType, given.record, given.text),
                  0x04061001u);
    }
    EXPECT_EQ(text, kUntouchedLine);
    EXPECT_EQ(system.memory.requests(), 0u);
    for (uint32_t lineType = 0; lineType < SDP_LINE_COUNT; ++lineType) {
        EXPECT_EQ(SdpLibEncodeSdpLineValidate(&bare, lineType, &key, &text), 0u);
    }
}

// Without memory for the buffer it is a code of the operation, without that for the text the
// service's.
TEST(EncodeSdpLine, WithoutMemoryNothingIsKept) {
    const struct {
        SDPResult result;
        Texts entries;
    } failures[] = {{0x0406b001, {"3 sdpintf SdpLibEncodeSdpLine:430 1 \"retVal=2\""}},
                    {SIP_NO_MEMORY, {}}};
    SDPKey key = {textOf("prompt")};
    uint32_t n = 0;
    for (const auto &failure : failures) {
        SystemMemory system;
        system.memory.refuse(++n);
        support::LogRecorder logs;
        SipRefString *text = kUntouchedLine;
        EXPECT_EQ(SdpLibEncodeSdpLine(&prefixed, SDP_LINE_KEY, &key, &text), failure.result);
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(logs.textsWithLines(), failure.entries);
        EXPECT_EQ(system.memory.live(), 0u);
    }
}

TEST(EncodeSdpLine, PassesAFailedAppendUpAndKeepsNothing) {
    SDPKey key = {textOf("prompt")};
    for (uint32_t n = 1; n <= 4; ++n) { // k, =, prompt, line end
        const SystemMemory system;
        support::LogRecorder logs;
        SipRefString *text = kUntouchedLine;
        Appends::reset();
        Appends::failAt(n);
        EXPECT_EQ(SdpLibEncodeSdpLine(&prefixed, SDP_LINE_KEY, &key, &text), Appends::kRefused);
        EXPECT_EQ(Appends::count(), n);
        Appends::off();
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(logs.textsWithLines(), Texts{"3 sdpintf SdpLibEncodeSdpLine:439 21"});
        EXPECT_EQ(system.memory.live(), 0u);
    }
}

// A text longer than the buffer's first 64 bytes: the buffer must grow, which can fail.
TEST(EncodeSdpLine, GrowsForLongText) {
    const std::string words(1000, 'x');
    SipString text = textOf(words.c_str());
    EXPECT_EQ(encoded(SDP_LINE_NAME, &text), "s=" + words + "\r\n");
    SystemMemory system;
    system.memory.refuse(2);
    EXPECT_EQ(encoded(SDP_LINE_NAME, &text), "failed");
    EXPECT_EQ(system.memory.live(), 0u);
}

// The encoder returns success for an attribute that did not fit; the conversion of the broken
// buffer then fails.
TEST(EncodeSdpLine, ATextThatTheBufferLostIsNotHandedOut) {
    const std::string words(1000, 'x');
    SDPAttr attribute = {};
    attribute.ulAttrType = SDP_ATTR_TOOL;
    attribute.unAttrValue.strValue = textOf(words.c_str());
    SystemMemory system;
    system.memory.refuse(2);
    EXPECT_EQ(encoded(SDP_LINE_ATTRIBUTE, &attribute), "failed");
    EXPECT_EQ(system.memory.live(), 0u);
}

} // namespace

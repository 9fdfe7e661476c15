// The settings and the two memory hooks.
#include <gtest/gtest.h>

#include <string>

#include "sdpline/sdpline.h"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using support::LogRecorder;
using Texts = std::vector<std::string>;

constexpr SDPResult kValidate = 0x040A7001;
constexpr SDPResult kRefusedArgument = 0x040B9001;
constexpr SDPResult kRefusedLineEnd = 0x040AB001;
constexpr SDPResult kRefusedAvpf = 0x040BE001;

std::string textOf(const SipString &text) {
    return {text.pcData, text.ulLen};
}

SDPResult configure(uint32_t type, uint32_t value) {
    return SdpLibExtConfig(type, &value);
}

SDPResult configureLineEnd(uint32_t value) {
    return SdpLibExtConfigCrlf(&value);
}

// The text that is written for the body; "" if it cannot be read or written.
std::string writtenBack(const std::string &body) {
    const support::Guarded input(body);
    const SipString text = input.text();
    SdpLine *line = nullptr;
    SipStringBuffer *buffer = nullptr;
    SipRefString *written = nullptr;
    std::string result;
    if (SdpLibDecodeSdp(&text, &line) == 0 && SdpLibEncodeSdp(line, &buffer) == 0 &&
        SipSbConvertToRefString(buffer, &written) == 0) {
        result.assign(SipSmGetDataFromRefString(written), SipSmGetLenFromRefString(written));
    }
    SipSmReleaseRefString(written);
    SipSbReleaseStringBuffer(buffer);
    SdpLibReleaseSdp(&line);
    return result;
}

// The protocol code of a body's one m= line.
uint32_t protocolOf(const char *protocol) {
    const support::Guarded input("v=0\no=- 1 1 IN IP4 x\ns=-\nm=audio 5004 " +
                                 std::string(protocol) + " 0\n");
    const SipString text = input.text();
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDecodeSdp(&text, &line), 0u);
    const uint32_t code =
        line != nullptr ? line->stMediaSet.ppstMediaDescs[0]->stMediaField.stProto.enProto : 0;
    SdpLibReleaseSdp(&line);
    return code;
}

class Config : public testing::Test {
protected:
    void SetUp() override { restore(); }
    void TearDown() override { restore(); }

    static void restore() {
        EXPECT_EQ(configure(SDP_CONFIG_LINE_END, SDP_LINE_END_CRLF), 0u);
        EXPECT_EQ(configure(SDP_CONFIG_RTP_AVPF, 0), 0u);
        EXPECT_EQ(SdpSetT38OptCfg(SDP_T38_STYLE_FLAG), 0u);
    }

    LogRecorder log;
};

// ---- Line ends

TEST_F(Config, TableOfLineEndsHoldsThree) {
    EXPECT_EQ(textOf(g_gstSdpCrlfString[0]), "\r\n");
    EXPECT_EQ(textOf(g_gstSdpCrlfString[1]), "\n");
    EXPECT_EQ(textOf(g_gstSdpCrlfString[2]), "\r");
    EXPECT_EQ(g_gpstSdpCrlfCfg, &g_gstSdpCrlfString[0]);
}

TEST_F(Config, LineEndIsSelectedByItsNumber) {
    EXPECT_EQ(configure(1, 2), 0u);
    EXPECT_EQ(g_gpstSdpCrlfCfg, &g_gstSdpCrlfString[1]);
    EXPECT_EQ(configure(1, 3), 0u);
    EXPECT_EQ(g_gpstSdpCrlfCfg, &g_gstSdpCrlfString[2]);
    EXPECT_EQ(configure(1, 1), 0u);
    EXPECT_EQ(g_gpstSdpCrlfCfg, &g_gstSdpCrlfString[0]);
    EXPECT_EQ(configureLineEnd(3), 0u);
    EXPECT_EQ(textOf(SdpGetCrlfString(0)), "\r");
    EXPECT_TRUE(log.entries().empty());
}

// The default t= line keeps its CR LF; no other line does, whichever encoder writes it.
TEST_F(Config, EveryLineIsEndedAsConfigured) {
    const std::string lines[] = {"v=0",
                                 "o=- 1 1 IN IP4 x",
                                 "s=-",
                                 "i=a",
                                 "u=a",
                                 "e=a",
                                 "e=b",
                                 "p=a",
                                 "c=IN IP4 1.2.3.4",
                                 "b=AS:1",
                                 "t=0 0",
                                 "r=7d 1h",
                                 "z=0 0",
                                 "k=prompt",
                                 "a=recvonly",
                                 "m=audio 5004 RTP/AVP 0",
                                 "i=a",
                                 "c=IN IP4 1.2.3.4",
                                 "b=AS:1",
                                 "k=prompt",
                                 "a=ptime:20"};
    std::string body;
    std::string endedByLf;
    std::string endedByCr;
    for (const std::string &line : lines) {
        body += line + "\r\n";
        endedByLf += line + "\n";
        endedByCr += line + "\r";
    }
    EXPECT_EQ(writtenBack(body), body);
    ASSERT_EQ(configure(1, SDP_LINE_END_LF), 0u);
    EXPECT_EQ(writtenBack(body), endedByLf);
    ASSERT_EQ(configure(1, SDP_LINE_END_CR), 0u);
    EXPECT_EQ(writtenBack(body), endedByCr);
}

TEST_F(Config, DefaultTimeLineKeepsItsLineEnd) {
    ASSERT_EQ(configure(1, SDP_LINE_END_LF), 0u);
    EXPECT_EQ(writtenBack("v=0\no=- 1 1 IN IP4 x\ns=-\n"), "v=0\no=- 1 1 IN IP4 x\ns=-\nt=0 0\r\n");
}

TEST_F(Config, LineEndSettingDoesNotChangeWhatIsRead) {
    ASSERT_EQ(configure(1, SDP_LINE_END_LF), 0u);
    EXPECT_NE(writtenBack("v=0\r\no=- 1 1 IN IP4 x\r\ns=-\r\n"), "");
    ASSERT_EQ(configure(1, SDP_LINE_END_CR), 0u);
    EXPECT_EQ(writtenBack("v=0\ro=- 1 1 IN IP4 x\rs=-\r"), "");
}

TEST_F(Config, UnknownLineEndIsRefusedAndTheOldOneStays) {
    ASSERT_EQ(configure(1, SDP_LINE_END_LF), 0u);
    EXPECT_EQ(configure(1, 4), kRefusedLineEnd);
    EXPECT_EQ(configure(1, 0), kRefusedLineEnd);
    EXPECT_EQ(configureLineEnd(0xFFFFFFFF), kRefusedLineEnd);
    EXPECT_EQ(textOf(SdpGetCrlfString(0)), "\n");
    EXPECT_EQ(log.textsWithLines(), Texts(3, "3 sdpintf SdpLibExtConfigCrlf:685 0"));
}

TEST_F(Config, CrlfStringCountsFromTheSelectedOne) {
    EXPECT_EQ(textOf(SdpGetCrlfString(0)), "\r\n");
    EXPECT_EQ(textOf(SdpGetCrlfString(1)), "\n");
    EXPECT_EQ(textOf(SdpGetCrlfString(2)), "\r");
    ASSERT_EQ(configure(1, SDP_LINE_END_LF), 0u);
    EXPECT_EQ(textOf(SdpGetCrlfString(0)), "\n");
    EXPECT_EQ(textOf(SdpGetCrlfString(1)), "\r");
}

// ---- Types

TEST_F(Config, UnknownTypeAndNullValueFailValidation) {
    EXPECT_EQ(configure(0, 1), kRefusedArgument);
    EXPECT_EQ(configure(5, 1), kRefusedArgument);
    EXPECT_EQ(configure(0xFFFFFFFF, 1), kRefusedArgument);
    EXPECT_EQ(SdpLibExtConfig(1, nullptr), kRefusedArgument);
    EXPECT_EQ(SdpLibExtConfig(2, nullptr), kRefusedArgument);
    Texts expected;
    for (int i = 0; i < 5; ++i) {
        expected.push_back("3 sdpintf SdpLibExtConfigValidate:668 0");
        expected.push_back("3 sdpintf SdpLibExtConfig:739 0");
    }
    EXPECT_EQ(log.textsWithLines(), expected);
}

TEST_F(Config, ValidationAloneHasACodeOfItsOwn) {
    uint32_t value = 99;
    for (uint32_t type = 1; type <= 4; ++type) {
        EXPECT_EQ(SdpLibExtConfigValidate(type, &value), 0u) << "the value is not looked at";
        EXPECT_EQ(SdpLibExtConfigValidate(type, nullptr), kValidate);
    }
    EXPECT_EQ(SdpLibExtConfigValidate(0, &value), kValidate);
    EXPECT_EQ(SdpLibExtConfigValidate(5, &value), kValidate);
    EXPECT_EQ(log.textsWithLines(), Texts(6, "3 sdpintf SdpLibExtConfigValidate:668 0"));
}

TEST_F(Config, TypesTwoAndThreeAreAcceptedAndIgnored) {
    for (const uint32_t value : {0u, 1u, 2u, 99u, 0xFFFFFFFFu}) {
        EXPECT_EQ(configure(2, value), 0u);
        EXPECT_EQ(configure(3, value), 0u);
    }
    EXPECT_EQ(g_gpstSdpCrlfCfg, &g_gstSdpCrlfString[0]);
    EXPECT_EQ(SdpGetT380ptCfg(), 0u);
    EXPECT_EQ(SdpGetSupMedProtoRtpAvpf(), 0u);
    EXPECT_TRUE(log.entries().empty());
}

// ---- RTP/AVPF

TEST_F(Config, AvpfSwitchTakesZeroAndOne) {
    EXPECT_EQ(configure(4, 1), 0u);
    EXPECT_EQ(g_bSupMedProtoRtpAvpf, 1u);
    EXPECT_EQ(configure(4, 2), kRefusedAvpf);
    EXPECT_EQ(g_bSupMedProtoRtpAvpf, 1u);
    EXPECT_EQ(configure(4, 0), 0u);
    EXPECT_EQ(g_bSupMedProtoRtpAvpf, 0u);
    EXPECT_EQ(log.textsWithLines(), Texts{"3 sdpintf SdpLibExtConfig:761 0"});
}

TEST_F(Config, AvpfIsRecognisedForExactlyOne) {
    EXPECT_EQ(protocolOf("RTP/AVPF"), SDP_PROTO_OTHER) << "off at first";
    SdpSetSupMedProtoRtpAvpf(1);
    EXPECT_EQ(protocolOf("RTP/AVPF"), SDP_PROTO_RTP_AVPF);
    SdpSetSupMedProtoRtpAvpf(2); // the setter checks nothing
    EXPECT_EQ(SdpGetSupMedProtoRtpAvpf(), 2u);
    EXPECT_EQ(protocolOf("RTP/AVPF"), SDP_PROTO_OTHER);
    EXPECT_EQ(protocolOf("RTP/AVP"), SDP_PROTO_RTP_AVP);
}

TEST_F(Config, AvpfIsWrittenBackAsItCame) {
    const std::string body =
        "v=0\r\no=- 1 1 IN IP4 x\r\ns=-\r\nt=0 0\r\nm=audio 5004 RTP/AVPF 0\r\n";
    EXPECT_EQ(writtenBack(body), body);
    SdpSetSupMedProtoRtpAvpf(1);
    EXPECT_EQ(writtenBack(body), body);
}

// ---- T.38 style

TEST_F(Config, T38StyleTakesZeroToTwo) {
    for (const uint32_t style : {1u, 2u, 0u}) {
        EXPECT_EQ(SdpSetT38OptCfg(style), 0u);
        EXPECT_EQ(SdpGetT380ptCfg(), style);
        EXPECT_EQ(g_gstSdpT38OptCfg, style);
    }
}

TEST_F(Config, T38StyleAboveTwoIsABareOneAndNotLogged) {
    ASSERT_EQ(SdpSetT38OptCfg(2), 0u);
    g_gSipCodePoint = 0;
    EXPECT_EQ(SdpSetT38OptCfg(3), 1u);
    EXPECT_EQ(SdpSetT38OptCfg(0xFFFFFFFF), 1u);
    EXPECT_EQ(SdpGetT380ptCfg(), 2u);
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(g_gSipCodePoint, 0u) << "what is not logged sets no code point";
}

TEST_F(Config, T38StyleTellsHowFlagsAreWritten) {
    const std::string head = "v=0\r\no=- 1 1 IN IP4 x\r\ns=-\r\nt=0 0\r\n";
    const std::string body = head + "a=T38FaxFillBitRemoval:1\r\na=T38FaxTranscodingMMR:0\r\n";
    EXPECT_EQ(writtenBack(body), head + "a=T38FaxFillBitRemoval\r\n");
    ASSERT_EQ(SdpSetT38OptCfg(1), 0u);
    EXPECT_EQ(writtenBack(body), head + "a=T38FaxFillBitRemoval\r\n");
    ASSERT_EQ(SdpSetT38OptCfg(2), 0u);
    EXPECT_EQ(writtenBack(body), body);
}

// ---- Hooks

void *noMemory(uint32_t) {
    return nullptr;
}

void keepMemory(void *) {}

TEST(Hooks, AreStoredUnchecked) {
    SdpSetFnAlloc(noMemory);
    SdpSetFnFree(keepMemory);
    EXPECT_EQ(SdpGetFnAlloc(), noMemory);
    EXPECT_EQ(SdpGetFnFree(), keepMemory);
    EXPECT_EQ(g_gSdpFnAlloc, noMemory);
    EXPECT_EQ(g_gSdpFnFree, keepMemory);
    SdpSetFnAlloc(nullptr);
    SdpSetFnFree(nullptr);
    EXPECT_EQ(SdpGetFnAlloc(), nullptr);
    EXPECT_EQ(SdpGetFnFree(), nullptr);
}

} // namespace

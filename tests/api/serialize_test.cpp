// Bodies in buffers of the caller: SdpLibSerializeSdp and SdpLibDeSerializeSdp.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "copy/linememory.hpp"
#include "sdpline/sdpline.h"
#include "support/allocations.hpp"
#include "support/appends.hpp"
#include "support/body.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using dsmtest::SystemMemory;
using support::Allocations;
using support::Appends;
using support::Body;
using support::Guarded;
using support::Held;
using Texts = std::vector<std::string>;

// Ends in an attribute, whose failure the encoder does not report.
constexpr std::string_view kBodyText = "v=0\r\n"
                                       "o=jdoe 1 2 IN IP4 10.47.16.5\r\n"
                                       "s=Seminar\r\n"
                                       "i=On SDP\r\n"
                                       "e=j.doe@example.com\r\n"
                                       "c=IN IP4 224.2.17.12/127\r\n"
                                       "b=AS:128\r\n"
                                       "t=2873397496 2873404696\r\n"
                                       "r=7d 1h 0s 25h\r\n"
                                       "k=prompt\r\n"
                                       "a=recvonly\r\n"
                                       "m=audio 49170 RTP/AVP 0 8 101\r\n"
                                       "a=rtpmap:101 telephone-event/8000\r\n"
                                       "a=curr:qos local sendrecv\r\n"
                                       "a=foo:bar\r\n";

uint8_t *bytesOf(std::string_view text) {
    return reinterpret_cast<uint8_t *>(const_cast<char *>(text.data()));
}

Body deserialized(std::string_view text) {
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDeSerializeSdp(bytesOf(text), static_cast<uint32_t>(text.size()), &line), 0u);
    return Body(line);
}

TEST(SerializeSdp, WritesTheTextThatWasDeserialized) {
    const Body body = deserialized(kBodyText);
    ASSERT_NE(body, nullptr);
    std::string bytes(2 * kBodyText.size(), '#');
    uint32_t length = 0;
    ASSERT_EQ(SdpLibSerializeSdp(body.get(), bytesOf(bytes), static_cast<uint32_t>(bytes.size()),
                                 &length),
              0u);
    EXPECT_EQ(bytes.substr(0, length), kBodyText);
    EXPECT_EQ(bytes.substr(length), std::string(bytes.size() - length, '#')) << "wrote after it";
}

TEST(SerializeSdp, RoundTripsUnderEveryLineEnd) {
    const Body body = deserialized(kBodyText);
    for (uint32_t lineEnd : {2u, 1u}) { // LF, then CR LF again
        ASSERT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
        std::string first(kBodyText.size(), '#');
        uint32_t length = 0;
        ASSERT_EQ(SdpLibSerializeSdp(body.get(), bytesOf(first),
                                     static_cast<uint32_t>(first.size()), &length),
                  0u);
        first.resize(length);
        const Body again = deserialized(first);
        ASSERT_NE(again, nullptr);
        std::string second(kBodyText.size(), '#');
        ASSERT_EQ(SdpLibSerializeSdp(again.get(), bytesOf(second),
                                     static_cast<uint32_t>(second.size()), &length),
                  0u);
        second.resize(length);
        EXPECT_EQ(second, first);
    }
}

TEST(SerializeSdp, NeedsExactlyTheLengthOfTheText) {
    const Body body = deserialized(kBodyText);
    const auto fits = static_cast<uint32_t>(kBodyText.size());
    for (uint32_t room = 0; room <= fits + 1; ++room) {
        SCOPED_TRACE(room);
        const SystemMemory system;
        Guarded bytes(room);
        uint32_t length = 12345;
        const SDPResult result = SdpLibSerializeSdp(body.get(), bytes.data(), room, &length);
        EXPECT_EQ(result, room == 0 ? 0x0407f001u : room < fits ? 0x04084001u : 0u);
        EXPECT_EQ(length, room == 0 ? 12345u : room < fits ? 0u : fits);
        EXPECT_EQ(system.memory.live(), 0u);
        if (room >= fits) {
            EXPECT_EQ(std::memcmp(bytes.data(), kBodyText.data(), fits), 0);
        }
    }
}

TEST(SerializeSdp, ATooSmallBufferHoldsTheStartOfTheText) {
    const Body body = deserialized(kBodyText);
    support::LogRecorder logs;
    std::string bytes(20, '#');
    uint32_t length = 1;
    EXPECT_EQ(SdpLibSerializeSdp(body.get(), bytesOf(bytes), 20, &length), 0x04084001u);
    EXPECT_EQ(bytes, "v=0\r\no=jdoe 1 2 IN #");
    EXPECT_EQ(logs.textsWithLines().back(), "3 sdpintf SdpLibSerializeSdp:528 21");
    EXPECT_EQ(g_gSipCodePoint, 4u << 16 | 528u);
}

TEST(SerializeSdp, SeesThatAnAttributeDidNotFit) {
    const Body body = deserialized(kBodyText);
    std::string bytes(kBodyText.size() - 3, '#');
    uint32_t length = 1;
    EXPECT_EQ(SdpLibSerializeSdp(body.get(), bytesOf(bytes), static_cast<uint32_t>(bytes.size()),
                                 &length),
              0x04084001u);
    EXPECT_EQ(length, 0u);
}

TEST(SerializeSdp, MakesOneEmptyAppendAfterTheText) {
    const Body body = deserialized(kBodyText);
    std::string bytes(kBodyText.size(), '#');
    uint32_t length = 0;
    Appends::reset();
    EXPECT_EQ(SdpLibSerializeSdp(body.get(), bytesOf(bytes), static_cast<uint32_t>(bytes.size()),
                                 &length),
              0u);
    const uint32_t count = Appends::count();
    EXPECT_EQ(Appends::texts().back(), "");
    EXPECT_EQ(Appends::texts()[count - 2], "\r\n");

    Appends::reset();
    Appends::failAt(count);
    EXPECT_EQ(SdpLibSerializeSdp(body.get(), bytesOf(bytes), static_cast<uint32_t>(bytes.size()),
                                 &length),
              0x04084001u);
    EXPECT_EQ(length, 0u);
    Appends::off();
}

TEST(SerializeSdp, WithoutMemoryForTheWrapperFailsWithItsOwnCode) {
    const Body body = deserialized(kBodyText);
    SystemMemory system;
    system.memory.refuse(1);
    support::LogRecorder logs;
    uint8_t byte = '#';
    uint32_t length = 1;
    EXPECT_EQ(SdpLibSerializeSdp(body.get(), &byte, 1, &length), 0x04082001u);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(logs.textsWithLines(), Texts{"3 sdpintf SdpLibSerializeSdp:519 1"});
}

TEST(SerializeSdp, RefusesNullPointersAndNoRoom) {
    const Body body = deserialized(kBodyText);
    uint8_t byte = '#';
    uint32_t length = 12345;
    const struct {
        SdpLine *line;
        uint8_t *bytes;
        uint32_t room;
        uint32_t *length;
    } refused[] = {{nullptr, &byte, 1, &length},
                   {body.get(), nullptr, 1, &length},
                   {body.get(), &byte, 0, &length},
                   {body.get(), &byte, 1, nullptr}};
    for (const auto &given : refused) {
        support::LogRecorder logs;
        EXPECT_EQ(SdpLibSerializeSdp(given.line, given.bytes, given.room, given.length),
                  0x0407f001u);
        EXPECT_EQ(logs.textsWithLines(), (Texts{"3 sdpintf SdpLibSerializeSdpValidate:474 0",
                                                "3 sdpintf SdpLibSerializeSdp:507 0"}));
        EXPECT_EQ(SdpLibSerializeSdpValidate(given.line, given.bytes, given.room, given.length),
                  0x04076001u);
    }
    EXPECT_EQ(length, 12345u);
    EXPECT_EQ(SdpLibSerializeSdpValidate(body.get(), &byte, 1, &length), 0u);
}

TEST(DeSerializeSdp, MakesABodyInABlockOfItsOwn) {
    const Held before = Held::now();
    SdpLine *line = nullptr;
    ASSERT_EQ(
        SdpLibDeSerializeSdp(bytesOf(kBodyText), static_cast<uint32_t>(kBodyText.size()), &line),
        0u);
    EXPECT_EQ(line->stMediaSet.ulNoOfMediaDescs, 1u);
    EXPECT_TRUE(line->pstMemCp != nullptr);
    EXPECT_EQ(Held::now().blocks, before.blocks + 1);
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    EXPECT_EQ(line, nullptr);
    EXPECT_TRUE(Held::now() == before);
}

TEST(DeSerializeSdp, ReadsNoByteAfterTheText) {
    Guarded bytes(kBodyText);
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDeSerializeSdp(bytes.data(), static_cast<uint32_t>(kBodyText.size()), &line),
              0u);
    EXPECT_EQ(std::memcmp(bytes.data(), kBodyText.data(), kBodyText.size()), 0);
    SdpLibReleaseSdp(&line);
}

TEST(DeSerializeSdp, LeavesTheHooksSetAfterASuccessAndWithoutABlock) {
    const Body body = deserialized(kBodyText);
    EXPECT_EQ(SdpGetFnAlloc(), SdpLibAllocSdpMem);
    EXPECT_EQ(SdpGetFnFree(), SdpLibFreeSdpMem);
    EXPECT_EQ(g_mSdpDecodeMemCp, nullptr);
    EXPECT_EQ(SdpLibAllocSdpMem(8), nullptr);
}

TEST(DeSerializeSdp, OfARefusedTextAnswersTheParsersCodeAndKeepsNothing) {
    const std::string_view refused = "v=0\r\nx=1\r\n";
    const SipString text = {static_cast<uint32_t>(refused.size()),
                            const_cast<char *>(refused.data())};
    SdpLine *line = nullptr;
    const SDPResult decoded = SdpLibDecodeSdp(&text, &line);
    ASSERT_NE(decoded, 0u);

    const Held before = Held::now();
    support::LogRecorder logs;
    SdpLine other = {};
    line = &other;
    EXPECT_EQ(SdpLibDeSerializeSdp(bytesOf(refused), text.ulLen, &line), decoded);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(logs.textsWithLines().back(), "3 sdpintf SdpLibDeSerializeSdp:627 22");
    EXPECT_EQ(SdpGetFnAlloc(), nullptr);
    EXPECT_EQ(SdpGetFnFree(), nullptr);
    EXPECT_EQ(g_mSdpDecodeMemCp, nullptr);
    EXPECT_TRUE(Held::now() == before);
}

TEST(DeSerializeSdp, WithoutABlockAnswersTheServicesCode) {
    Allocations::failAt(1);
    support::LogRecorder logs;
    SdpLine other = {};
    SdpLine *line = &other;
    EXPECT_EQ(
        SdpLibDeSerializeSdp(bytesOf(kBodyText), static_cast<uint32_t>(kBodyText.size()), &line),
        uint32_t{SIP_NO_MEMORY});
    Allocations::reset();
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(logs.textsWithLines(), Texts{"3 sdpintf SdpLibDeSerializeSdp:605 1"});
}

TEST(DeSerializeSdp, RefusesNullPointersAndNoBytes) {
    SdpLine other = {};
    SdpLine *line = &other;
    const struct {
        uint8_t *bytes;
        uint32_t length;
        SdpLine **line;
    } refused[] = {
        {nullptr, 4, &line}, {bytesOf(kBodyText), 0, &line}, {bytesOf(kBodyText), 4, nullptr}};
    for (const auto &given : refused) {
        support::LogRecorder logs;
        EXPECT_EQ(SdpLibDeSerializeSdp(given.bytes, given.length, given.line), 0x04093001u);
        EXPECT_EQ(logs.textsWithLines(), (Texts{"3 sdpintf SdpLibDeSerializeSdpValidate:558 0",
                                                "3 sdpintf SdpLibDeSerializeSdp:590 0"}));
        EXPECT_EQ(SdpLibDeSerializeSdpValidate(given.bytes, given.length, given.line), 0x0408b001u);
    }
    EXPECT_EQ(line, &other);
    EXPECT_EQ(SdpLibDeSerializeSdpValidate(bytesOf(kBodyText), 1, &line), 0u);
}

} // namespace

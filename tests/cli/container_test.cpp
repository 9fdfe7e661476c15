// Capture files: the packets are the same in every format, and a damaged file ends with a reason.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "capture/container.hpp"
#include "support/packets.hpp"

namespace {

using cli::Container;
using support::CaptureForm;
using support::CaptureWriter;

constexpr int64_t kTime = 1'700'000'000'123'456'000;

struct Packets {
    std::vector<cli::Frame> frames;
    std::vector<std::string> bytes;
    std::string error;
    size_t rest = 0;
};

// Reads `chunk` bytes at a time, as from a pipe.
Packets packetsOf(const std::string &text, size_t chunk = ~size_t(0)) {
    Packets packets;
    Container container;
    size_t begin = 0;
    for (size_t end = std::min(chunk, text.size());;) {
        const std::string copy = text.substr(begin, end - begin); // exactly what there is
        cli::Frame frame;
        size_t used = 0;
        switch (container.step(copy, used, frame)) {
        case Container::Step::Packet:
            packets.frames.push_back(frame);
            packets.bytes.emplace_back(frame.bytes);
            break;
        case Container::Step::Passed: break;
        case Container::Step::Bad: packets.error = container.error(); return packets;
        case Container::Step::More:
            if (end == text.size()) {
                packets.rest = text.size() - begin;
                return packets;
            }
            end += std::min(chunk, text.size() - end);
        }
        begin += used;
    }
}

std::string written(CaptureForm form) {
    CaptureWriter writer(form, 101);
    writer.add("first", kTime);
    writer.add("the second", kTime + 1000, 6);
    writer.add("", kTime);
    return writer.take();
}

constexpr CaptureForm kForms[] = {CaptureForm::Pcap, CaptureForm::PcapNanoseconds,
                                  CaptureForm::PcapBigEndian, CaptureForm::PcapNg,
                                  CaptureForm::PcapNgBigEndian};

TEST(Container, EveryFormGivesThePackets) {
    for (const CaptureForm form : kForms) {
        const std::string text = written(form);
        EXPECT_TRUE(Container::begins(text));
        for (const size_t chunk : {size_t(1), size_t(7), text.size()}) {
            const Packets packets = packetsOf(text, chunk);
            EXPECT_EQ(packets.error, "");
            EXPECT_EQ(packets.rest, 0u);
            ASSERT_EQ(packets.bytes, (std::vector<std::string>{"first", "the se", ""}));
            EXPECT_EQ(packets.frames[1].number, 2u);
            EXPECT_EQ(packets.frames[1].time, kTime + 1000);
            EXPECT_EQ(packets.frames[1].wireSize, 10u);
            EXPECT_EQ(packets.frames[1].linkType, 101u);
        }
    }
}

TEST(Container, ACutFileEndsInsideAPacket) {
    for (const CaptureForm form : kForms) {
        const std::string text = written(form);
        for (size_t size = 24; size < text.size(); ++size) {
            const Packets packets = packetsOf(text.substr(0, size));
            EXPECT_EQ(packets.error, "");
            EXPECT_LE(packets.bytes.size(), 2u + (size + 4 > text.size()));
        }
    }
}

TEST(Container, DamagedSizesEndIt) {
    std::string pcap = written(CaptureForm::Pcap);
    pcap.replace(24 + 8, 4, "\xff\xff\xff\x7f");
    EXPECT_EQ(packetsOf(pcap).error,
              "packet 1 has a length of 2147483647 bytes: the capture is damaged");
    for (const char size : {'\x04', '\x0d'}) { // too little, and not a multiple of 4
        std::string next = written(CaptureForm::PcapNg);
        next[28 + 4] = size;
        EXPECT_EQ(packetsOf(next).error, "a block after packet 0 has a length of " +
                                             std::to_string(int(size)) +
                                             " bytes: the capture is damaged");
    }
    std::string section = written(CaptureForm::PcapNg);
    section[8] = 'x';
    EXPECT_EQ(packetsOf(section).error,
              "a section of the capture has no byte-order magic: the capture is damaged");
}

// A block in little endian order.
std::string block(char type, const std::string &body) {
    const auto size = static_cast<char>(body.size() + 12);
    const std::string length = {size, 0, 0, 0};
    return std::string{type, 0, 0, 0} + length + body + length;
}

TEST(Container, BlocksOfOtherKindsArePassedOver) {
    const std::string text = written(CaptureForm::PcapNg);
    const std::string interface("\x65\0\0\0"
                                "\x04\0\0\0"   // the length that packets are cut to
                                "\x0e\0\x08\0" // an offset of seconds
                                "\x0a\0\0\0\0\0\0\0",
                                20);
    const std::string more =
        block(5, "statistics--") + block(1, interface) +
        block(3, std::string("\x06\0\0\0simp", 8)) + // of the first interface
        block(6, std::string("\x01\0\0\0\0\0\0\0\x40\x42\x0f\0\x04\0\0\0\x04\0\0\0body", 24)) +
        block(6, std::string("\x09\0\0\0\0\0\0\0\0\0\0\0\x04\0\0\0\x04\0\0\0body", 24)) +
        block(6, std::string("\x01\0\0\0\0\0\0\0\0\0\0\0\x05\0\0\0\x05\0\0\0body", 24));
    const Packets packets = packetsOf(text + more);
    EXPECT_EQ(packets.error, "");
    ASSERT_EQ(packets.bytes, (std::vector<std::string>{"first", "the se", "", "simp", "body"}));
    EXPECT_EQ(packets.frames[3].wireSize, 6u);
    EXPECT_EQ(packets.frames[4].number, 5u);
    EXPECT_EQ(packets.frames[4].time, 11'000'000'000); // a second, and ten
}

TEST(Container, OtherFilesAreNoCaptures) {
    EXPECT_FALSE(Container::begins("v=0\r\n"));
    EXPECT_FALSE(Container::begins(""));
    EXPECT_FALSE(Container::begins("\xd4\xc3\xb2"));
}

} // namespace

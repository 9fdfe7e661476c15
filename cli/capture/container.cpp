#include "capture/container.hpp"

#include <algorithm>

#include "capture/bytes.hpp"

namespace cli {

namespace {

enum Magic : uint32_t {
    kMicroseconds = 0xa1b2c3d4,
    kNanoseconds = 0xa1b23c4d,
    kByteOrder = 0x1a2b3c4d
};

constexpr size_t kFileHeader = 24;
constexpr size_t kRecordHeader = 16;
constexpr size_t kBlockHeader = 8;
constexpr size_t kLeastBlock = 12; // type, length, length again
constexpr size_t kMostInterfaces = 4096;

enum Block : uint32_t {
    kInterface = 1,
    kSimplePacket = 3,
    kEnhancedPacket = 6,
    kSection = 0x0a0d0d0a
};
enum InterfaceOption : uint16_t { kTimeResolution = 9, kTimeOffset = 14 };

constexpr int64_t kSecond = 1'000'000'000;

bool isPcapMagic(uint32_t magic) {
    return magic == kMicroseconds || magic == kNanoseconds;
}

// Units per second: 10 to the power of the resolution, or 2 with the high bit set. A resolution
// that does not fit counts as microseconds.
uint64_t unitsOf(uint8_t resolution) {
    const unsigned power = resolution & 0x7f;
    if ((resolution & 0x80) != 0) {
        return power < 63 ? uint64_t(1) << power : 1'000'000;
    }
    uint64_t units = 1;
    for (unsigned i = 0; i < power && power < 19; ++i) {
        units *= 10;
    }
    return power < 19 ? units : 1'000'000;
}

// Seconds are kept in 32 bits, so that no capture can make the time overflow.
int64_t nanosecondsOf(uint64_t units, uint64_t unitsPerSecond, int64_t offset) {
    const uint64_t seconds = (units / unitsPerSecond) & 0xffffffff;
    const double below =
        static_cast<double>(units % unitsPerSecond) / static_cast<double>(unitsPerSecond);
    const int64_t bounded = std::clamp<int64_t>(offset, -0x7fffffff, 0x7fffffff);
    if (unitsPerSecond <= kSecond && kSecond % unitsPerSecond == 0) {
        const uint64_t rest = units % unitsPerSecond * (kSecond / unitsPerSecond);
        return (static_cast<int64_t>(seconds) + bounded) * kSecond + static_cast<int64_t>(rest);
    }
    return (static_cast<int64_t>(seconds) + bounded) * kSecond +
           static_cast<int64_t>(below * kSecond);
}

} // namespace

bool Container::begins(std::string_view text) {
    return text.size() >= 4 && (isPcapMagic(big32(text, 0)) || isPcapMagic(little32(text, 0)) ||
                                big32(text, 0) == kSection);
}

uint16_t Container::number16(std::string_view bytes, size_t at) const {
    return big_ ? big16(bytes, at) : little16(bytes, at);
}

uint32_t Container::number32(std::string_view bytes, size_t at) const {
    return big_ ? big32(bytes, at) : little32(bytes, at);
}

Container::Step Container::bad(std::string text) {
    error_ = std::move(text);
    return Step::Bad;
}

Container::Step Container::step(std::string_view text, size_t &used, Frame &frame) {
    used = 0;
    switch (kind_) {
    case Kind::Pcap: return record(text, used, frame);
    case Kind::PcapNg: return block(text, used, frame);
    case Kind::Unknown: break;
    }
    return begin(text, used);
}

Container::Step Container::begin(std::string_view text, size_t &used) {
    if (text.size() < kFileHeader) {
        return Step::More;
    }
    if (big32(text, 0) == kSection) {
        kind_ = Kind::PcapNg;
        return Step::Passed;
    }
    kind_ = Kind::Pcap;
    big_ = isPcapMagic(big32(text, 0));
    nanoseconds_ = number32(text, 0) == kNanoseconds;
    const uint32_t linkType = number32(text, 20) & 0x0fffffff; // the bits above describe the FCS
    interfaces_.push_back({linkType, 0, 0, 0});
    used = kFileHeader;
    return Step::Passed;
}

Container::Step Container::record(std::string_view text, size_t &used, Frame &frame) {
    if (text.size() < kRecordHeader) {
        return Step::More;
    }
    const size_t size = number32(text, 8);
    if (size > kLongestRecord) {
        return bad("packet " + std::to_string(frames_ + 1) + " has a length of " +
                   std::to_string(size) + " bytes: the capture is damaged");
    }
    if (text.size() - kRecordHeader < size) {
        return Step::More;
    }
    const int64_t below = number32(text, 4);
    frame.number = ++frames_;
    frame.time = number32(text, 0) * kSecond + below * (nanoseconds_ ? 1 : 1000);
    frame.linkType = interfaces_.front().linkType;
    frame.bytes = text.substr(kRecordHeader, size);
    frame.wireSize = number32(text, 12);
    used = kRecordHeader + size;
    return Step::Packet;
}

Container::Step Container::block(std::string_view text, size_t &used, Frame &frame) {
    if (text.size() < kLeastBlock) {
        return Step::More;
    }
    // The type of the block that begins a section is a palindrome; its byte-order magic follows.
    const bool section = big32(text, 0) == kSection;
    if (section) {
        big_ = big32(text, 8) == kByteOrder;
        if (!big_ && little32(text, 8) != kByteOrder) {
            return bad("a section of the capture has no byte-order magic: the capture is damaged");
        }
        interfaces_.clear();
    }
    const size_t size = number32(text, 4);
    if (size < kLeastBlock || size % 4 != 0 || size > kLongestRecord) {
        return bad("a block after packet " + std::to_string(frames_) + " has a length of " +
                   std::to_string(size) + " bytes: the capture is damaged");
    }
    if (text.size() < size) {
        return Step::More;
    }
    used = size;
    return content(number32(text, 0), text.substr(kBlockHeader, size - kLeastBlock), frame);
}

Container::Step Container::content(uint32_t type, std::string_view body, Frame &frame) {
    switch (type) {
    case kInterface: addInterface(body); return Step::Passed;
    case kSimplePacket: return simplePacket(body, frame);
    case kEnhancedPacket: return enhancedPacket(body, frame);
    default: return Step::Passed;
    }
}

void Container::addInterface(std::string_view body) {
    if (interfaces_.size() == kMostInterfaces) {
        return;
    }
    Interface added;
    added.linkType = number16(body, 0);
    added.snapLength = number32(body, 4);
    for (size_t at = 8; at + 4 <= body.size();) {
        const uint16_t code = number16(body, at);
        const size_t size = number16(body, at + 2);
        if (code == kTimeResolution && size >= 1) {
            added.unitsPerSecond = unitsOf(byteAt(body, at + 4));
        } else if (code == kTimeOffset && size >= 8) {
            const uint64_t low = number32(body, at + (big_ ? 8 : 4));
            const uint64_t high = number32(body, at + (big_ ? 4 : 8));
            added.offset = static_cast<int64_t>(high << 32 | low);
        }
        at += 4 + (size + 3) / 4 * 4;
    }
    interfaces_.push_back(added);
}

Container::Step Container::enhancedPacket(std::string_view body, Frame &frame) {
    constexpr size_t kHeader = 20;
    const size_t interface = number32(body, 0);
    const size_t size = number32(body, 12);
    ++frames_;
    if (body.size() < kHeader || size > body.size() - kHeader || interface >= interfaces_.size()) {
        return Step::Passed;
    }
    const Interface &from = interfaces_[interface];
    const uint64_t units = uint64_t(number32(body, 4)) << 32 | number32(body, 8);
    frame.number = frames_;
    frame.time = nanosecondsOf(units, from.unitsPerSecond, from.offset);
    frame.linkType = from.linkType;
    frame.bytes = body.substr(kHeader, size);
    frame.wireSize = number32(body, 16);
    return Step::Packet;
}

Container::Step Container::simplePacket(std::string_view body, Frame &frame) {
    ++frames_;
    if (interfaces_.empty() || body.size() < 4) {
        return Step::Passed;
    }
    const Interface &from = interfaces_.front();
    frame.number = frames_;
    frame.time = 0;
    frame.linkType = from.linkType;
    frame.wireSize = number32(body, 0);
    size_t size = std::min(frame.wireSize, body.size() - 4);
    if (from.snapLength != 0) {
        size = std::min<size_t>(size, from.snapLength);
    }
    frame.bytes = body.substr(4, size);
    return Step::Packet;
}

} // namespace cli

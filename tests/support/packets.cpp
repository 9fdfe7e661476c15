#include "support/packets.hpp"

#include <algorithm>
#include <cstdlib>

namespace support {

namespace {

std::string big(uint64_t value, size_t bytes) {
    std::string text;
    while (bytes-- > 0) {
        text += static_cast<char>(value >> 8 * bytes & 0xff);
    }
    return text;
}

// Numbers with a separator between them, each of that number of bytes.
std::string numbers(std::string_view text, char separator, int base, size_t bytes) {
    std::string result;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(separator, at), text.size());
        const std::string number(text.substr(at, end - at));
        result += big(std::strtoul(number.c_str(), nullptr, base), bytes);
        at = end + 1;
    }
    return result;
}

uint16_t typeOf(std::string_view packet) {
    return !packet.empty() && static_cast<uint8_t>(packet[0]) >> 4 == 6 ? 0x86dd : 0x0800;
}

} // namespace

std::string udp(uint16_t source, uint16_t destination, std::string_view payload) {
    return big(source, 2) + big(destination, 2) + big(payload.size() + 8, 2) + big(0, 2) +
           std::string(payload);
}

std::string tcp(uint16_t source, uint16_t destination, uint32_t sequence, uint8_t flags,
                std::string_view payload) {
    return big(source, 2) + big(destination, 2) + big(sequence, 4) + big(0, 4) + big(5 << 4, 1) +
           big(flags, 1) + big(65535, 2) + big(0, 4) + std::string(payload);
}

std::string ipv4(std::string_view source, std::string_view destination, uint8_t protocol,
                 std::string_view payload, const Fragment &part) {
    const uint64_t fragment = part.offset / 8 | (part.more ? 0x2000u : 0u);
    return big(0x45, 1) + big(0, 1) + big(payload.size() + 20, 2) + big(part.id, 2) +
           big(fragment, 2) + big(64, 1) + big(protocol, 1) + big(0, 2) +
           numbers(source, '.', 10, 1) + numbers(destination, '.', 10, 1) + std::string(payload);
}

std::string ipv6(std::string_view source, std::string_view destination, uint8_t protocol,
                 std::string_view payload, std::string_view extensions) {
    return big(0x60000000, 4) + big(extensions.size() + payload.size(), 2) + big(protocol, 1) +
           big(64, 1) + numbers(source, ':', 16, 2) + numbers(destination, ':', 16, 2) +
           std::string(extensions) + std::string(payload);
}

std::string fragmentHeader(uint8_t next, const Fragment &part) {
    return big(next, 1) + big(0, 1) + big(part.offset | (part.more ? 1u : 0u), 2) + big(part.id, 4);
}

std::vector<std::string> ipv4Fragments(std::string_view source, std::string_view destination,
                                       uint8_t protocol, std::string_view payload, uint32_t id,
                                       size_t size) {
    std::vector<std::string> packets;
    for (size_t at = 0; at < payload.size(); at += size) {
        packets.push_back(ipv4(source, destination, protocol, payload.substr(at, size),
                               {id, at, at + size < payload.size()}));
    }
    return packets;
}

std::string ethernet(std::string_view packet, const std::vector<uint16_t> &vlanTypes) {
    std::string frame = big(0x020000000001, 6) + big(0x020000000002, 6);
    for (const uint16_t type : vlanTypes) {
        frame += big(type, 2) + big(100, 2);
    }
    return frame + big(typeOf(packet), 2) + std::string(packet);
}

std::string cooked(std::string_view packet) {
    return big(0, 2) + big(1, 2) + big(6, 2) + big(0x020000000001, 8) + big(typeOf(packet), 2) +
           std::string(packet);
}

std::string cooked2(std::string_view packet) {
    return big(typeOf(packet), 2) + big(0, 2) + big(1, 4) + big(1, 2) + big(0, 1) + big(6, 1) +
           big(0x020000000001, 8) + std::string(packet);
}

std::string loopback(std::string_view packet) {
    return std::string("\x02\0\0\0", 4) + std::string(packet);
}

std::string webSocketFrame(std::string_view payload, uint8_t opcode, bool final,
                           std::string_view mask) {
    const size_t masked = mask.empty() ? 0 : 0x80;
    std::string frame = big((final ? 0x80u : 0u) | opcode, 1);
    if (payload.size() < 126) {
        frame += big(masked | payload.size(), 1);
    } else if (payload.size() < 65536) {
        frame += big(masked | 126, 1) + big(payload.size(), 2);
    } else {
        frame += big(masked | 127, 1) + big(payload.size(), 8);
    }
    frame += mask;
    for (size_t i = 0; i < payload.size(); ++i) {
        frame += mask.empty() ? payload[i] : static_cast<char>(payload[i] ^ mask[i % mask.size()]);
    }
    return frame;
}

CaptureWriter::CaptureWriter(CaptureForm form, uint32_t linkType)
    : form_(form),
      big_(form == CaptureForm::PcapBigEndian || form == CaptureForm::PcapNgBigEndian) {
    if (form == CaptureForm::PcapNg || form == CaptureForm::PcapNgBigEndian) {
        std::string section;
        std::swap(section, bytes_);
        number(0x1a2b3c4d, 4);
        number(1, 2);
        number(0, 2);
        number(~uint64_t(0), 8);
        std::swap(section, bytes_);
        block(0x0a0d0d0a, section);
        std::string interface;
        std::swap(interface, bytes_);
        number(linkType, 2);
        number(0, 2);
        number(0, 4);
        number(9, 2); // nanoseconds
        number(1, 2);
        bytes_ += std::string("\x09\0\0\0", 4);
        number(0, 4);
        std::swap(interface, bytes_);
        block(1, interface);
        return;
    }
    number(form == CaptureForm::PcapNanoseconds ? 0xa1b23c4d : 0xa1b2c3d4, 4);
    number(2, 2);
    number(4, 2);
    number(0, 8);
    number(262144, 4);
    number(linkType, 4);
}

void CaptureWriter::number(uint64_t value, size_t bytes) {
    std::string text = big(value, bytes);
    if (!big_) {
        std::reverse(text.begin(), text.end());
    }
    bytes_ += text;
}

void CaptureWriter::block(uint32_t type, const std::string &body) {
    const size_t padded = (body.size() + 3) / 4 * 4;
    number(type, 4);
    number(padded + 12, 4);
    bytes_ += body + std::string(padded - body.size(), '\0');
    number(padded + 12, 4);
}

void CaptureWriter::add(std::string_view frame, int64_t time, size_t keep) {
    const std::string_view kept = frame.substr(0, keep);
    const auto stamp = static_cast<uint64_t>(time);
    if (form_ == CaptureForm::PcapNg || form_ == CaptureForm::PcapNgBigEndian) {
        std::string packet;
        std::swap(packet, bytes_);
        number(0, 4);
        number(stamp >> 32, 4);
        number(stamp & 0xffffffff, 4);
        number(kept.size(), 4);
        number(frame.size(), 4);
        bytes_ += kept;
        std::swap(packet, bytes_);
        return block(6, packet);
    }
    const uint64_t unit = form_ == CaptureForm::PcapNanoseconds ? 1 : 1000;
    number(stamp / 1'000'000'000, 4);
    number(stamp % 1'000'000'000 / unit, 4);
    number(kept.size(), 4);
    number(frame.size(), 4);
    bytes_ += kept;
}

std::string CaptureWriter::take() {
    std::string bytes;
    std::swap(bytes, bytes_);
    return bytes;
}

} // namespace support

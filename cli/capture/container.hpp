// Reads capture files: pcap, with microseconds or nanoseconds and in either byte order, and pcapng.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// One packet as it was captured.
struct Frame {
    uint64_t number = 0; // from 1
    int64_t time = 0;    // nanoseconds since 1970
    uint32_t linkType = 0;
    std::string_view bytes;
    size_t wireSize = 0; // before the capture truncated it
};

class Container {
public:
    // A record or block with a greater length ends the reading.
    static constexpr size_t kLongestRecord = 16u << 20;

    // Whether the text begins like a capture file.
    static bool begins(std::string_view text);

    enum class Step {
        Packet, // `frame` is set
        Passed, // the record holds no packet
        More,   // the record is longer than the text
        Bad     // the rest of the file cannot be read: see error()
    };

    // Reads one record at the start of the text; `used` is its size.
    Step step(std::string_view text, size_t &used, Frame &frame);

    const std::string &error() const { return error_; }

private:
    struct Interface {
        uint32_t linkType = 0;
        uint64_t unitsPerSecond = 1'000'000;
        int64_t offset = 0; // seconds
        uint32_t snapLength = 0;
    };

    uint16_t number16(std::string_view bytes, size_t at) const;
    uint32_t number32(std::string_view bytes, size_t at) const;
    Step bad(std::string text);

    Step begin(std::string_view text, size_t &used);
    Step record(std::string_view text, size_t &used, Frame &frame);
    Step block(std::string_view text, size_t &used, Frame &frame);
    Step content(uint32_t type, std::string_view body, Frame &frame);
    Step enhancedPacket(std::string_view body, Frame &frame);
    Step simplePacket(std::string_view body, Frame &frame);
    void addInterface(std::string_view body);

    enum class Kind { Unknown, Pcap, PcapNg } kind_ = Kind::Unknown;
    bool big_ = false;
    bool nanoseconds_ = false;
    uint64_t frames_ = 0;
    std::vector<Interface> interfaces_; // pcap has one
    std::string error_;
};

} // namespace cli

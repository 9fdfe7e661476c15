// Numbers in packets. A read beyond the bytes returns 0, so that no header can lead out of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cli {

inline uint8_t byteAt(std::string_view bytes, size_t at) {
    return at < bytes.size() ? static_cast<uint8_t>(bytes[at]) : uint8_t(0);
}

inline uint16_t big16(std::string_view bytes, size_t at) {
    return static_cast<uint16_t>(byteAt(bytes, at) << 8 | byteAt(bytes, at + 1));
}

inline uint32_t big32(std::string_view bytes, size_t at) {
    return uint32_t(big16(bytes, at)) << 16 | big16(bytes, at + 2);
}

inline uint16_t little16(std::string_view bytes, size_t at) {
    return static_cast<uint16_t>(byteAt(bytes, at) | byteAt(bytes, at + 1) << 8);
}

inline uint32_t little32(std::string_view bytes, size_t at) {
    return little16(bytes, at) | uint32_t(little16(bytes, at + 2)) << 16;
}

// The bytes after the first `size` ones; empty where there are fewer.
inline std::string_view after(std::string_view bytes, size_t size) {
    return size < bytes.size() ? bytes.substr(size) : std::string_view();
}

} // namespace cli

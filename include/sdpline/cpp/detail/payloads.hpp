/*
 * payloads.hpp: which static RTP payload numbers the profiles of sdpline.h have (RFC 3551 section
 * 6).
 */
#ifndef SDPLINE_DETAIL_PAYLOADS_HPP
#define SDPLINE_DETAIL_PAYLOADS_HPP

#include <cstddef>
#include <cstdint>

namespace sdpline::tables {

inline constexpr std::uint8_t kDynamic = 255;

/* Indexed by row of g_aStrRtpmapProfiles. */
inline constexpr std::uint8_t kStaticPayloads[] = {
    0,        3,        4,        5,        6,        7,        8,        9,        10,
    11,       12,       13,       14,       15,       16,       17,       18,       kDynamic,
    kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic,
    25,       26,       28,       31,       32,       33,       34,       kDynamic};

/* L16 at 44100 Hz over two channels; all others have one. */
inline constexpr std::uint32_t kTwoChannelRow = 8;

inline constexpr std::size_t kNoStaticRow = sizeof kStaticPayloads;

/* The row of a payload number; kNoStaticRow for one without an encoding. */
constexpr std::size_t staticRow(std::uint32_t payload) {
    std::size_t row = 0;
    while (row < kNoStaticRow && (payload == kDynamic || kStaticPayloads[row] != payload)) {
        ++row;
    }
    return row;
}

} // namespace sdpline::tables

#endif

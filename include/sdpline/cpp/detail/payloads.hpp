/*
 * payloads.hpp: the static RTP payload numbers of the profiles of sdpline.h (RFC 3551 section 6).
 */
#ifndef SDPLINE_DETAIL_PAYLOADS_HPP
#define SDPLINE_DETAIL_PAYLOADS_HPP

#include <array>
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

/* L16 at 44100 Hz with two channels; all others have one channel. */
inline constexpr std::uint32_t kTwoChannelRow = 8;

inline constexpr std::size_t kNoStaticRow = sizeof kStaticPayloads;

/* The row of each payload number below 35; all above are dynamic or have no encoding. */
inline constexpr auto kStaticRows = [] {
    std::array<std::uint8_t, 35> rows{};
    rows.fill(static_cast<std::uint8_t>(kNoStaticRow));
    for (std::size_t row = 0; row < kNoStaticRow; ++row) {
        if (kStaticPayloads[row] != kDynamic) {
            rows[kStaticPayloads[row]] = static_cast<std::uint8_t>(row);
        }
    }
    return rows;
}();

/* The row of a payload number; kNoStaticRow for one without a static encoding. */
constexpr std::size_t staticRow(std::uint32_t payload) {
    return payload < kStaticRows.size() ? kStaticRows[payload] : kNoStaticRow;
}

} // namespace sdpline::tables

#endif

// The words that the rows of the failing checks (*.def) are written with: the result of a check,
// and how it is logged. Included only by source files that make a table of the rows.
#pragma once

#include "checks/checks.hpp"

namespace sdpline::rowwords {

inline constexpr Outcome PASS = {ResultKind::Forwarded, 0, 0};
constexpr Outcome CODE(uint16_t location, uint16_t errorClass) {
    return {ResultKind::Composed, location, errorClass};
}
constexpr Outcome BARE(uint16_t result) {
    return {ResultKind::Bare, result, 0};
}

inline constexpr uint16_t RESOURCE = SDP_ERRCLASS_RESOURCE;
inline constexpr uint16_t NOT_SDP = SDP_ERRCLASS_NOT_SDP;
inline constexpr uint16_t FIELD_SYNTAX = SDP_ERRCLASS_FIELD_SYNTAX;
inline constexpr uint16_t UNEXPECTED_LINE = SDP_ERRCLASS_UNEXPECTED_LINE;
inline constexpr uint16_t BAD_ADDRESS = SDP_ERRCLASS_BAD_ADDRESS;

inline constexpr Logged QUIET = {0, kNoCategory, nullptr, 0};
constexpr Logged LOG(uint8_t level, uint32_t category, const char *format = nullptr) {
    return {level, category, format, 0};
}
constexpr Logged LOG_AT(uint32_t line, uint8_t level, uint32_t category,
                        const char *format = nullptr) {
    return {level, category, format, line};
}

// Log categories.
inline constexpr uint32_t NULL_ARGUMENT = 0;
inline constexpr uint32_t ALLOCATION = 1;
inline constexpr uint32_t STORE_OR_WORD = 3;
inline constexpr uint32_t ENCODER = 21;
inline constexpr uint32_t PARSER = 22;
inline constexpr uint32_t NO_CATEGORY = kNoCategory;

} // namespace sdpline::rowwords

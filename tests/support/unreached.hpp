// The checks that no input and no call can make fail, each with its reason. A whole run of
// sdpline_tests must make every other check fail at least once.
#pragma once

#include "checks/checks.hpp"

namespace support {

struct Unreachable {
    sdpline::Check check;
    const char *reason;
};

inline constexpr Unreachable kUnreachable[] = {
    {sdpline::Check::PayloadsEnd, "payloads are gathered up to the line end or not at all"},
    {sdpline::Check::EncodeAttributes, "the encoder of attribute lists always returns 0"},
};

} // namespace support

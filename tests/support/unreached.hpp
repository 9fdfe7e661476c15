// The checks that no input and no call can make fail, each with its reason. Every other check must
// have failed somewhere in a whole run of sdpline_tests.
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

// The keyword tables, which the C++ API shares, under the library's namespace.
#pragma once

#include "sdpline/cpp/detail/keywords.hpp"

namespace sdpline {

using namespace tables;

} // namespace sdpline

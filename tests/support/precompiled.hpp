// The headers that nearly every test includes, parsed once for all of them. A source must still
// include what it uses: the clang preset builds without this file.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// What many sources of the program include, parsed once for all of them. A source still includes
// what it uses: the clang preset builds without this file.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "sdpline/sdpline.hpp"

// Compressed inputs, where the program is built with the libraries that unpack them.
#pragma once

#include <memory>
#include <string_view>

#include "input/source.hpp"

namespace cli {

// A source of the unpacked data, recognised by its first bytes, with which `packed` still begins;
// null where the data is not compressed, or in a format that this build cannot unpack.
std::unique_ptr<Source> unpackerFor(std::string_view begin, std::unique_ptr<Source> &packed);

} // namespace cli

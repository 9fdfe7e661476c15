// Compressed inputs, where the program is built with the libraries that unpack them.
#pragma once

#include <memory>
#include <string_view>

#include "input/source.hpp"

namespace cli {

// A source of what the other one holds compressed, by how it begins; null where it is not
// compressed, or by something that this build cannot unpack. The other source begins with the
// bytes.
std::unique_ptr<Source> unpackerFor(std::string_view begin, std::unique_ptr<Source> &packed);

} // namespace cli

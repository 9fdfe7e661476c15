// Several inputs read at once, and handed to one user in their order.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "input/input.hpp"

namespace cli {

// Reads one input for a user; returns whether it could be read.
using ReadInput = std::function<bool(const std::string &path, InputUser &user)>;

// As many threads as the user's jobs() read, find messages and bodies, have each body prepared by
// the user where the library has a decoder for each thread, and keep them until the user's turn
// comes: at most about kMostAhead bytes. But for prepare() the user is called by this thread alone,
// file after file.
void readAhead(const std::vector<std::string> &paths, const ReadInput &read, InputUser &user);

inline constexpr size_t kMostAhead = 48u << 20;

} // namespace cli

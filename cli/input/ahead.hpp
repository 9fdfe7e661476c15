// Several inputs read at once, and handed to one user in their order.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "input/input.hpp"

namespace cli {

// Reads one input for a user; returns whether it could be read.
using ReadInput = std::function<bool(const std::string &path, InputUser &user)>;

// `jobs` threads read, find messages and bodies, and keep them until the user's turn comes: at most
// about kMostAhead bytes. The user is called by this thread alone, file after file.
void readAhead(const std::vector<std::string> &paths, unsigned jobs, const ReadInput &read,
               InputUser &user);

inline constexpr size_t kMostAhead = 48u << 20;

} // namespace cli

// Reads several inputs at once, and passes what is found to one user in the order of the inputs.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "input/input.hpp"

namespace cli {

// Reads one input for a user; returns whether it could be read.
using ReadInput = std::function<bool(const std::string &path, InputUser &user)>;

// jobs() threads read the files, find messages and bodies, and have the user prepare each body
// where the library has a decoder for each thread. What is found is kept until the user has read
// the files before: at most about kMostAhead bytes. Only the calling thread calls the user, except
// for prepare().
void readAhead(const std::vector<std::string> &paths, const ReadInput &read, InputUser &user);

inline constexpr size_t kMostAhead = 48u << 20;

} // namespace cli

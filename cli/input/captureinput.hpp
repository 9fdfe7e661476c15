// The bodies in a capture of packets.
#pragma once

#include <string>

#include "input/input.hpp"
#include "input/window.hpp"

namespace cli {

// Hands the messages of the capture that the window begins with to the user, each with its packet,
// and says what was not read. `path` and `name` are the input's. Returns false where reading fails.
//
// Memory is bounded by the limits of Capture, whatever the packets hold.
bool readCapture(Window &window, const std::string &path, const std::string &name, InputUser &user);

} // namespace cli

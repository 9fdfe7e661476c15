// Reads the bodies in a packet capture.
#pragma once

#include <string>

#include "input/input.hpp"
#include "input/window.hpp"

namespace cli {

// Passes the messages of the capture at the start of the window to the user, each with its packet,
// and reports what was not read. `path` and `name` are those of the input. Returns false where
// reading fails.
//
// Memory is bounded by the limits of Capture, whatever the packets hold.
bool readCapture(Window &window, const std::string &path, const std::string &name, InputUser &user);

} // namespace cli

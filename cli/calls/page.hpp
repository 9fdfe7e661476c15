// Writes calls as one page of HTML that needs neither scripts nor the network.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "calls/call.hpp"

namespace cli {

// Returns the text of a body with masks, if wanted.
using ShowBody = std::function<std::string(const std::string &body)>;

void writePage(std::ostream &out, const std::vector<const Call *> &calls, const ShowBody &shown);

} // namespace cli

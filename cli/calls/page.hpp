// Calls as one page of HTML that needs nothing else: no script, no network.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "calls/call.hpp"

namespace cli {

// `shown` makes of a body the text that may be shown.
using ShowBody = std::function<std::string(const std::string &body)>;

void writePage(std::ostream &out, const std::vector<const Call *> &calls, const ShowBody &shown);

} // namespace cli

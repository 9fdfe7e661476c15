// The a= line, and its repair.
#pragma once

#include "tidy/values.hpp"

namespace sdpline::tidy {

// Of both, `value` is the text after "a=".

// Looks at an attribute of the given text. Sets `cut` where it returns Look::Cut.
[[gnu::noinline]] Look lookAtAttribute(const Workspace &work, std::string_view value, Cut &cut);

void repairAttribute(Workspace &work, Line &line, std::string_view value);

} // namespace sdpline::tidy

// Other libraries that parse SDP, each in a source of its own and only where it is installed.
#pragma once

#include <benchmark/benchmark.h>

#include "bodies.hpp"

namespace bench {

void osipParse(benchmark::State &state, const Body &body);
void osipPrint(benchmark::State &state, const Body &body);

} // namespace bench

// Measures an operation in a loop, and then counts its calls of the heap.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>

#include "allocations.hpp"
#include "bodies.hpp"

namespace bench {

// Calls `operation`, which returns whether it succeeded, in a loop. `allocs` is the number of calls
// of the heap for one operation in the steady state.
template <class Operation>
void measure(benchmark::State &state, const Body &body, Operation operation) {
    if (!operation()) {
        state.SkipWithError("refused");
        return;
    }
    bool done = true;
    for (auto _ : state) {
        done &= operation();
    }
    constexpr int kCounted = 16;
    const uint64_t before = allocations();
    for (int i = 0; i < kCounted; ++i) {
        done &= operation();
    }
    state.counters["allocs"] = static_cast<double>(allocations() - before) / kCounted;
    state.counters["bytes"] = static_cast<double>(body.size());
    state.counters["texts"] = static_cast<double>(body.texts.size());
    if (!done) {
        state.SkipWithError("failed");
    }
}

// The same over all members of a list: texts, or bodies made from them.
template <class List, class Operation>
void measureEach(benchmark::State &state, const Body &body, List &list, Operation operation) {
    measure(state, body, [&] {
        bool done = !list.empty();
        for (auto &member : list) {
            done &= operation(member);
        }
        return done;
    });
}

} // namespace bench

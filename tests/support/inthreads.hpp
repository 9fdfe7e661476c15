// Runs the same work on several threads.
#pragma once

#include <thread>
#include <vector>

namespace support {

// Calls work(0), work(1) ..., each on a separate thread, and waits for all of them.
template <class Count, class Work>
void inThreads(Count count, Work work) {
    std::vector<std::thread> threads;
    for (Count i = 0; i < count; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace support

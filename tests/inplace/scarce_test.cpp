// Lines cloned in place while the heap refuses one request: the result, the log entries and the
// requests to the heap are those of the services, which do not try again.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <string>

#include "copy/linesamples.hpp"
#include "sdpline/sdpcopy.h"
#include "services/builtin.hpp"
#include "support/logs.hpp"

namespace {

constexpr std::size_t kChunk = 1 << 20; // what only the blocks of this test ask for

std::size_t refusals = 0; // to come
std::size_t asked = 0;    // how often the heap was

} // namespace

extern "C" {
void *__libc_malloc(std::size_t size);

// The libraries call it too, so it must be visible when the compiler hides symbols by default.
[[gnu::visibility("default")]] void *malloc(std::size_t size) {
    if (size >= kChunk) {
        ++asked;
        if (refusals != 0) {
            --refusals;
            return nullptr;
        }
    }
    return __libc_malloc(size);
}
}

namespace {

// Leaves that many bytes, a multiple of 8, of the block's first chunk.
void fillFirstChunk(SDPMemCp *block, std::size_t left) {
    constexpr std::size_t kRoom = 1128;
    for (std::size_t room = kRoom; room > left;) {
        const std::size_t size = room - left >= 64 ? 48 : room - left;
        block->pfnAlloc(block, static_cast<uint32_t>(size - 8));
        room -= size;
    }
}

// Clones the sample twice into a block that needs the heap after that many bytes.
std::string clones(const dsmtest::Sample &sample, std::size_t left) {
    support::LogRecorder logs;
    std::string text;
    SDPMemCp *block = nullptr;
    EXPECT_EQ(SipMmCreateBufMem(512, kChunk, &block), 0u);
    fillFirstChunk(block, left);
    asked = 0;
    refusals = 1;
    for (int i = 0; i < 2; ++i) {
        void *clone = nullptr;
        text += std::to_string(SdpCloneLine(block, sample.lineType, sample.record, &clone)) + ' ';
        text += clone != nullptr ? dsmtest::lookAt(sample.lineType, clone).text : "nothing ";
        text += " asked " + std::to_string(asked) + ' ';
    }
    refusals = 0;
    SipMmReleaseBufMem(&block);
    for (const std::string &entry : logs.textsWithLines()) {
        text += '\n' + entry;
    }
    return text;
}

TEST(CopyInPlace, asksAHeapThatRefusesOnce) {
    std::size_t refused = 0;
    for (const dsmtest::Sample &sample : dsmtest::samples()) {
        for (std::size_t left = 0; left <= 160; left += 8) {
            SCOPED_TRACE(sample.name + ", " + std::to_string(left) + " bytes left");
            const std::string inPlace = clones(sample, left);
            refused += inPlace.starts_with("0 ") ? 0 : 1;
            const sdpline::EveryServiceCalled everyService;
            EXPECT_EQ(clones(sample, left), inPlace);
        }
    }
    EXPECT_GT(refused, dsmtest::samples().size()) << "no request reached the heap";
}

} // namespace

#include "floors.hpp"

#include <memory>

#include "sdpline/sdpinternals.h"

namespace bench {

namespace {

struct Requests {
    std::vector<uint32_t> sizes;
    std::vector<std::unique_ptr<uint8_t[]>> chunks; // until the body is dropped
};

Requests *requests = nullptr;

void *noteRequest(uint32_t size) {
    requests->sizes.push_back(size);
    requests->chunks.push_back(std::make_unique<uint8_t[]>(size + 1));
    return requests->chunks.back().get();
}

} // namespace

// Aligned, so that the lower bound does not change with the code before it.
[[gnu::noinline, gnu::aligned(64)]] uint32_t passTable(const std::string &text,
                                                       const uint8_t (&table)[256]) {
    uint32_t sum = 0;
    for (const char byte : text) {
        sum += table[static_cast<uint8_t>(byte)];
    }
    return sum;
}

std::vector<uint32_t> requestsOf(const std::string &text) {
    Requests noted;
    requests = &noted;
    SdpSetFnAlloc(noteRequest);
    SdpSetFnFree([](void *) {});
    const SipString view = {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
    SdpLine *line = nullptr;
    SdpLibParseSdp(&view, &line);
    SdpSetFnAlloc(nullptr);
    SdpSetFnFree(nullptr);
    requests = nullptr;
    return noted.sizes;
}

bool cutAll(const std::vector<uint32_t> &sizes) {
    SDPMemCp *block = nullptr;
    if (SipMmCreateBufMem(512, 1032, &block) != 0) {
        return false;
    }
    bool all = true;
    for (const uint32_t size : sizes) {
        all = all && block->pfnAlloc(block, size) != nullptr;
    }
    SipMmReleaseBufMem(&block);
    return all;
}

} // namespace bench

#include "parser/parsing.hpp"

#include <cstdlib>
#include <cstring>
#include <set>

namespace support {

namespace {

struct Memory {
    uint32_t untilFailure = 0; // 0: none fails
    std::vector<uint32_t> sizes;
    std::set<void *> held;
};

Memory memory;

void *allocate(uint32_t size) {
    memory.sizes.push_back(size);
    if (memory.untilFailure != 0 && --memory.untilFailure == 0) {
        return nullptr;
    }
    void *const bytes = std::malloc(size);
    std::memset(bytes, 0xA5, size);
    memory.held.insert(bytes);
    return bytes;
}

void release(void *bytes) {
    EXPECT_EQ(memory.held.erase(bytes), 1u) << "given back, but not held";
    std::free(bytes);
}

} // namespace

std::string named(SDPResult result) {
    if (result == 0) {
        return "ok";
    }
    SDPResultText text = {};
    if (SdpLibDescribeResult(result, &text) != 0) {
        return "no result of the library: " + std::to_string(result);
    }
    return text.pcCheck + (' ' + std::to_string(result & 0x3FF));
}

std::string textOf(const SipString &text) {
    return text.pcData != nullptr ? std::string(text.pcData, text.ulLen) : "(null)";
}

std::string textOf(const SipString *text) {
    return text != nullptr ? textOf(*text) : "(null)";
}

void ParsingTest::SetUp() {
    memory = Memory();
    SdpSetFnAlloc(allocate);
    SdpSetFnFree(release);
}

void ParsingTest::TearDown() {
    SdpSetFnAlloc(nullptr);
    SdpSetFnFree(nullptr);
    for (void *const bytes : memory.held) {
        std::free(bytes);
    }
    memory = Memory();
    clearSdpLexer();
}

void ParsingTest::start(std::string_view text) {
    std::string bytes(text);
    bytes += '\0';
    input_.emplace(bytes);
    const SipString input = input_->text();
    clearSdpLexer();
    setInput(&input);
    setLexerContext(SDP_LEXCTX_SDP);
    startTracking();
}

void ParsingTest::startValue(std::string_view text) {
    start("a=" + std::string(text));
    setLexerContext(SDP_LEXCTX_TOKEN);
    consume();
    consume();
}

void ParsingTest::failAllocation(uint32_t n) {
    memory.untilFailure = n;
}

const std::vector<uint32_t> &ParsingTest::sizesAskedFor() {
    return memory.sizes;
}

} // namespace support

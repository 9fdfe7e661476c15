// Decode, encode and release, beside what others take to parse and print the same text and beside
// two floors: one pass of a byte table over it, and a copy of it on the heap.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

#include "bodies.hpp"
#include "peers.hpp"
#include "sdpline/sdpline.h"

namespace {

SipString textOf(const bench::Body &body) {
    return {static_cast<uint32_t>(body.text.size()), const_cast<char *>(body.text.data())};
}

void countBytes(benchmark::State &state, const bench::Body &body) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(body.text.size()));
}

SdpLine *decode(benchmark::State &state, const bench::Body &body) {
    const SipString text = textOf(body);
    SdpLine *line = nullptr;
    if (SdpLibDecodeSdp(&text, &line) != 0) {
        state.SkipWithError("the body is refused");
    }
    return line;
}

void decodeAndRelease(benchmark::State &state, const bench::Body &body) {
    for (auto _ : state) {
        SdpLine *line = decode(state, body);
        SdpLibReleaseSdp(&line);
    }
    countBytes(state, body);
}

void encode(benchmark::State &state, const bench::Body &body) {
    SdpLine *line = decode(state, body);
    for (auto _ : state) {
        SipStringBuffer *text = nullptr;
        if (SdpLibEncodeSdp(line, &text) != 0) {
            state.SkipWithError("the body cannot be written");
        }
        SipSbReleaseStringBuffer(text);
    }
    SdpLibReleaseSdp(&line);
    countBytes(state, body);
}

void tablePass(benchmark::State &state, const bench::Body &body) {
    uint8_t table[256];
    for (int i = 0; i < 256; ++i) {
        table[i] = static_cast<uint8_t>(i * 7);
    }
    for (auto _ : state) {
        uint32_t sum = 0;
        for (const char byte : body.text) {
            sum = sum * 31 + table[static_cast<uint8_t>(byte)];
        }
        benchmark::DoNotOptimize(sum);
    }
    countBytes(state, body);
}

void heapCopy(benchmark::State &state, const bench::Body &body) {
    for (auto _ : state) {
        void *const copy = std::malloc(body.text.size());
        std::memcpy(copy, body.text.data(), body.text.size());
        benchmark::DoNotOptimize(copy);
        std::free(copy);
    }
    countBytes(state, body);
}

using Measured = void (*)(benchmark::State &, const bench::Body &);

void measure(const char *name, Measured function) {
    for (const bench::Body &body : bench::bodies()) {
        const std::string full = std::string(name) + '/' + body.name;
        benchmark::RegisterBenchmark(
            full.c_str(), [function, &body](benchmark::State &state) { function(state, body); });
    }
}

} // namespace

int main(int argc, char **argv) {
    measure("decode/sdpline", decodeAndRelease);
#ifdef SDPLINE_BENCH_OSIP
    measure("decode/osip2", bench::osipParse);
#endif
    measure("encode/sdpline", encode);
#ifdef SDPLINE_BENCH_OSIP
    measure("encode/osip2", bench::osipPrint);
#endif
    measure("floor/table", tablePass);
    measure("floor/copy", heapCopy);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Measures every operation of sdpline on a body, and for comparison other libraries that parse and
// print the same text, and lower bounds: one pass of a byte table over the text, single steps of a
// decode, and a copy of the text on the heap. Benchmarks are named OPERATION/LIBRARY/BODY.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "bodies.hpp"
#include "floors.hpp"
#include "measure.hpp"
#include "operations.hpp"
#include "peers.hpp"
#include "sdpline/sdpinternals.h"

namespace {

using bench::Body;

benchmark::internal::Benchmark *add(const std::string &operation, const std::string &who,
                                    const Body &body,
                                    std::function<void(benchmark::State &)> function) {
    const std::string name = operation + '/' + who + '/' + body.name;
    return benchmark::RegisterBenchmark(name.c_str(), std::move(function));
}

void addDecode(const char *operation, const Body &body) {
    add(operation, "sdpline", body, [&body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, bench::decodeAndRelease);
    });
}

void addOwn(const Body &body) {
    addDecode("decode", body);
    add("encode", "sdpline", body, [&body](benchmark::State &state) {
        auto lines = bench::decoded(body);
        bench::measureEach(state, body, lines, [](sdpline::Body &line) {
            return bench::encodeAndRelease(line.record());
        });
    });
    add("both", "sdpline", body, [&body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, bench::decodeEncodeAndRelease);
    });
    add("clone", "sdpline", body, [&body](benchmark::State &state) {
        const auto lines = bench::decoded(body);
        bench::measureEach(state, body, lines, bench::clone);
    });
    add("serialise", "sdpline", body, [&body](benchmark::State &state) {
        auto lines = bench::decoded(body);
        auto buffer = bench::roomForText();
        bench::measureEach(state, body, lines, [&buffer](sdpline::Body &line) {
            return bench::serialise(line.record(), buffer);
        });
    });
}

// The answer to a call, including the decode of the offer, by the C++ API and by the C interface.
void addAnswer(const Body &body) {
    add("answer", "sdpline", body, [&body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, bench::answerByCpp);
    });
    add("answer-c", "sdpline", body, [&body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, bench::answerByC);
    });
    add("negotiate", "sdpline", body, [&body](benchmark::State &state) {
        const auto offers = bench::decoded(body);
        bench::measureEach(state, body, offers, [](const sdpline::Body &offer) {
            return bench::negotiate(offer, offer);
        });
    });
}

// Tidies a text without faults and texts with faults, and decodes the result of each.
void addTidy(const Body &body) {
    add("repaired", "sdpline", body, [&body](benchmark::State &state) {
        const Body whole = bench::withoutFaults(body);
        bench::measureEach(state, body, whole.texts, bench::decodeAndRelease);
    });
    add("tidy", "sdpline", body, [&body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, bench::tidyAndRelease);
    });
    for (const auto &[name, fault] : bench::kFaults) {
        add(name, "sdpline", body, [&body, fault = fault](benchmark::State &state) {
            const Body untidy = bench::untidy(body, fault);
            bench::measureEach(state, body, untidy.texts, bench::tidyAndRelease);
        });
    }
}

// Decodes are serialised, so that two threads wait for each other, unless built with
// SDPLINE_THREAD_LOCAL.
void addThreads(const Body &body) {
#ifdef SDPLINE_THREAD_LOCAL
    const char *const who = "parallel";
#else
    const char *const who = "serialised";
#endif
    add("threads", who, body,
        [&body](benchmark::State &state) {
            for (auto _ : state) {
                const auto decoded = sdpline::Body::decode(body.texts.front());
                benchmark::DoNotOptimize(&decoded);
            }
            state.SetItemsProcessed(state.iterations());
        })
        ->Threads(1)
        ->Threads(2)
        ->UseRealTime();
}

// How many lines the peer loses when it writes the body; nothing where it refuses one of the texts.
// The remaining texts are then left out: one peer takes minutes over a text of 61 bytes.
std::optional<bench::Lost> lostBy(const bench::Peer &peer, const Body &body) {
    bench::Lost lost = {0, 0};
    for (const std::string &text : body.texts) {
        const auto parsed = peer.keep(text);
        if (parsed == nullptr) {
            return std::nullopt;
        }
        const bench::Lost here = bench::lostLines(text, parsed->printed());
        lost = {lost.lines + here.lines, lost.of + here.of};
    }
    return lost;
}

void addPeer(const bench::Peer &peer, const Body &body) {
    const auto lost = lostBy(peer, body);
    if (!lost) {
        benchmark::AddCustomContext("refused/" + std::string(peer.name) + '/' + body.name, "yes");
        return;
    }
    add("decode", peer.name, body, [parse = peer.parse, &body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, parse);
    });
    add("encode", peer.name, body,
        [keep = peer.keep, lost = *lost, &body](benchmark::State &state) {
            std::vector<std::unique_ptr<bench::Parsed>> all;
            for (const std::string &text : body.texts) {
                all.push_back(keep(text));
            }
            bench::measureEach(state, body, all, [](auto &one) { return one->print(); });
            state.counters["lines"] = static_cast<double>(lost.of);
            state.counters["lost"] = static_cast<double>(lost.lines);
        });
}

void addFloors(const Body &body) {
    add("floor", "table", body, [&body](benchmark::State &state) {
        uint8_t table[256];
        for (int i = 0; i < 256; ++i) {
            table[i] = static_cast<uint8_t>(i * 7);
        }
        benchmark::DoNotOptimize(table);
        bench::measureEach(state, body, body.texts, [&table](const std::string &text) {
            benchmark::DoNotOptimize(bench::passTable(text, table));
            return true;
        });
    });
    add("floor", "normal", body, [&body](benchmark::State &state) {
        auto buffer = bench::roomForText();
        bench::measureEach(state, body, body.texts, [&buffer](const std::string &text) {
            convertCRLFToCR(reinterpret_cast<const uint8_t *>(text.data()),
                            static_cast<uint32_t>(text.size()), buffer.data(),
                            static_cast<uint32_t>(buffer.size()));
            benchmark::DoNotOptimize(buffer.data());
            return true;
        });
    });
    add("floor", "pieces", body, [&body](benchmark::State &state) {
        std::vector<std::vector<uint32_t>> requests;
        for (const std::string &text : body.texts) {
            requests.push_back(bench::requestsOf(text));
        }
        bench::measureEach(state, body, requests, bench::cutAll);
    });
    add("floor", "copy", body, [&body](benchmark::State &state) {
        bench::measureEach(state, body, body.texts, [](const std::string &text) {
            void *const copy = std::malloc(text.size());
            std::memcpy(copy, text.data(), text.size());
            benchmark::DoNotOptimize(copy);
            std::free(copy);
            return true;
        });
    });
}

} // namespace

int main(int argc, char **argv) {
    for (const Body &body : bench::bodies()) {
        addOwn(body);
        for (const bench::Peer &peer : bench::peers()) {
            addPeer(peer, body);
        }
        addFloors(body);
        if (body.texts.size() == 1) {
            addAnswer(body);
            addTidy(body);
            addThreads(body);
        }
    }
    for (const Body &body : bench::attributeBodies()) {
        addDecode("attribute", body);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

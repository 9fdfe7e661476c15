// sdpline_instructions OPERATION BODY COUNT: does one operation on one body COUNT times, for a tool
// that counts instructions. The difference of two counts leaves out the work before and after.
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "bodies.hpp"
#include "operations.hpp"

namespace {

bool onTexts(const bench::Body &body, bool (*operation)(const std::string &)) {
    bool done = true;
    for (const std::string &text : body.texts) {
        done &= operation(text);
    }
    return done;
}

template <class Operation>
bool repeated(long count, Operation operation) {
    bool done = true;
    for (long i = 0; i < count; ++i) {
        done &= operation();
    }
    return done;
}

template <class Operation>
bool onLines(const bench::Body &body, long count, Operation operation) {
    auto lines = bench::decoded(body);
    return !lines.empty() && repeated(count, [&] {
        bool done = true;
        for (sdpline::Body &line : lines) {
            done &= operation(line);
        }
        return done;
    });
}

using Negotiation = bool (*)(const sdpline::Body &, const sdpline::Body &);

// The local body supports everything that is offered.
bool onOffers(const bench::Body &body, long count, Negotiation operation) {
    const auto offers = bench::decoded(body);
    return !offers.empty() && repeated(count, [&] {
        bool done = true;
        for (const sdpline::Body &offer : offers) {
            done &= operation(offer, offer);
        }
        return done;
    });
}

const bench::Body *bodyOf(std::string_view name) {
    for (const bench::Body &body : bench::bodies()) {
        if (body.name == name) {
            return &body;
        }
    }
    return name == bench::shortestOffer().name ? &bench::shortestOffer() : nullptr;
}

bool runOnTexts(const bench::Body &body, long count, bool (*operation)(const std::string &)) {
    return repeated(count, [&] { return onTexts(body, operation); });
}

bool runTidy(std::string_view operation, const bench::Body &body, long count) {
    if (operation == "tidy") {
        return runOnTexts(body, count, bench::tidyAndRelease);
    }
    if (operation == "repaired") {
        return runOnTexts(bench::withoutFaults(body), count, bench::decodeAndRelease);
    }
    for (const auto &[name, fault] : bench::kFaults) {
        if (operation == name) {
            return runOnTexts(bench::untidy(body, fault), count, bench::tidyAndRelease);
        }
    }
    return false;
}

bool run(std::string_view operation, const bench::Body &body, long count) {
    if (operation == "decode") {
        return runOnTexts(body, count, bench::decodeAndRelease);
    }
    if (operation == "answer") {
        return runOnTexts(body, count, bench::answerByCpp);
    }
    if (operation == "answer-c") {
        return runOnTexts(body, count, bench::answerByC);
    }
    if (operation == "negotiate") {
        return onOffers(body, count, bench::negotiate);
    }
    if (operation == "negotiate-c") {
        return onOffers(body, count, bench::negotiateByC);
    }
    if (operation == "encode") {
        return onLines(body, count,
                       [](sdpline::Body &line) { return bench::encodeAndRelease(line.record()); });
    }
    if (operation == "clone") {
        return onLines(body, count, bench::clone);
    }
    if (operation == "clone-c") {
        return onLines(body, count, bench::cloneByC);
    }
    if (operation == "serialise") {
        auto buffer = bench::roomForText();
        return onLines(body, count, [&buffer](sdpline::Body &line) {
            return bench::serialise(line.record(), buffer);
        });
    }
    return runTidy(operation, body, count);
}

} // namespace

int main(int argc, char **argv) {
    const bench::Body *const body = argc == 4 ? bodyOf(argv[2]) : nullptr;
    if (body != nullptr && run(argv[1], *body, std::strtol(argv[3], nullptr, 10))) {
        return 0;
    }
    std::fputs(
        "usage: sdpline_instructions OPERATION BODY COUNT\n"
        "operations: decode encode clone clone-c serialise answer answer-c negotiate negotiate-c\n"
        "            tidy repair-first repair-last repair-each repaired\n",
        stderr);
    return 2;
}

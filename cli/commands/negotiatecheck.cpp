// sdpline negotiate-check: says what is wrong with an answer, or with a description that follows
// another one.
#include "commands/commands.hpp"

#include <iostream>

#include "commands/negotiation.hpp"
#include "output/diagnostic.hpp"

namespace cli {

namespace {

struct NegotiateCheckOptions {
    std::vector<std::string> paths;
    std::string previous;
    DecodeOptions decode = negotiationOptions();
};

// The place of a fault is the m= line of the checked body, or its first line.
int report(const NegotiateCheckOptions &options, const OneBody &judged,
           const std::vector<sdpline::Decision> &faults) {
    if (options.decode.json) {
        std::cout << dumped({{"good", faults.empty()}, {"faults", jsonOf(judged, faults)}});
    } else {
        for (const sdpline::Decision &fault : faults) {
            print(std::cout, judged, fault, "error");
        }
    }
    return faults.empty() ? kFine : kRefused;
}

int runNegotiateCheck(const NegotiateCheckOptions &options) {
    const bool next = !options.previous.empty();
    if (options.paths.size() != (next ? 1u : 2u)) {
        requireOperand(next ? "NEXT" : "OFFER ANSWER");
    }
    configure(options.decode);
    const OneBody first(options.decode, next ? options.previous : options.paths[0]);
    const OneBody second(options.decode, options.paths.back());
    if (first.get() == nullptr || second.get() == nullptr) {
        return kUnusable;
    }
    return report(options, second,
                  next ? sdpline::checkNext(*first.get(), *second.get())
                       : sdpline::check(*first.get(), *second.get()));
}

constexpr CommandText kNegotiateCheckText = {
    "negotiate-check", "Say what is wrong with an answer, or with a next offer.", R"(Examples:
  sdpline negotiate-check offer.sip answer.sip
  sdpline negotiate-check --previous offer.sdp next.sdp

Exit status: 0 when nothing is wrong, 1 when something is, 2 when a body is refused or
something cannot be read.)"};

} // namespace

void addNegotiateCheck(CLI::App &app, int &status) {
    const auto options = std::make_shared<NegotiateCheckOptions>();
    CLI::App &command = addCommand(app, kNegotiateCheckText,
                                   [options, &status] { status = runNegotiateCheck(*options); });
    addWords(command, "BODIES", options->paths,
             "An offer and its answer; with --previous the description to check");
    addWord(command, "--previous", options->previous, "BODY",
            "The last description of the same side");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addSelection(command, options->decode);
    addMaxBody(command, options->decode.maxBody);
}

} // namespace cli

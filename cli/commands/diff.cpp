// sdpline diff: what differs between two bodies.
#include "commands/commands.hpp"

#include <algorithm>
#include <iostream>

#include "compare/difference.hpp"
#include "input/input.hpp"
#include "output/diagnostic.hpp"
#include "output/display.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kDifferent = 1;
constexpr int kTrouble = 2;

struct Options {
    std::string first;
    std::string second;
    bool json = false;
    bool avpf = false;
    bool redact = false;
};

// The one body of the file, whose values get their masks; none when there is not exactly one, or it
// is refused.
std::optional<sdpline::Body> bodyOf(const std::string &path, Redactor &redactor) {
    const Inputs inputs = readInputs({path});
    if (!inputs.complete) {
        return std::nullopt;
    }
    if (inputs.bodies.size() != 1) {
        std::cerr << "sdpline: " << inputs.sources.front().name() << ": holds "
                  << inputs.bodies.size() << " bodies, not one\n";
        return std::nullopt;
    }
    const Found &found = inputs.bodies.front();
    Decoded decoded = decodeBody(found.text());
    if (!decoded.body) {
        std::cerr << shortText(found, diagnosticOf(decoded, found.place)) << '\n';
        return std::nullopt;
    }
    redactor.learn(found.text());
    return sdpline::Body::adopt(decoded.body.release());
}

void mask(Change &change, Redactor &redactor) {
    change.mediaType = redactor.redactedAfter("m=", change.mediaType);
    for (std::optional<std::string> *const text : {&change.from, &change.to}) {
        if (*text) {
            *text = redactor.redactedAfter(change.before, **text);
        }
    }
}

void printText(const std::vector<Change> &changes) {
    const Style &style = styleFor(stdout);
    for (const Change &change : changes) {
        std::cout << style.bold
                  << (change.media ? "media " + std::to_string(*change.media) + ' ' +
                                         escaped(change.mediaType)
                                   : "session")
                  << style.reset << ": " << change.what << ' ';
        if (change.from && change.to) {
            std::cout << style.removed << escaped(*change.from) << style.reset << " -> "
                      << style.added << escaped(*change.to) << style.reset << '\n';
        } else if (change.to) {
            std::cout << style.added << escaped(*change.to) << style.reset << " added\n";
        } else {
            std::cout << style.removed << escaped(*change.from) << style.reset << " removed\n";
        }
    }
}

void printJson(const std::vector<Change> &changes) {
    Json list = Json::array();
    for (const Change &change : changes) {
        Json row = {{"what", change.what}};
        if (change.media) {
            row["media"] = *change.media;
            row["mediaType"] = change.mediaType;
        }
        if (change.from) {
            row["from"] = *change.from;
        }
        if (change.to) {
            row["to"] = *change.to;
        }
        list.push_back(std::move(row));
    }
    std::cout << dumped({{"same", changes.empty()}, {"changes", std::move(list)}});
}

int run(const Options &options) {
    SdpSetSupMedProtoRtpAvpf(options.avpf ? 1 : 0);
    Redactor redactor;
    const std::optional<sdpline::Body> first = bodyOf(options.first, redactor);
    const std::optional<sdpline::Body> second = bodyOf(options.second, redactor);
    if (!first || !second) {
        return kTrouble;
    }
    std::vector<Change> changes = differences(*first, *second);
    if (options.redact) {
        std::ranges::for_each(changes, [&](Change &change) { mask(change, redactor); });
    }
    options.json ? printJson(changes) : printText(changes);
    return changes.empty() ? 0 : kDifferent;
}

} // namespace

void addDiff(CLI::App &app, Outcome &outcome) {
    const auto options = std::make_shared<Options>();
    CLI::App &command =
        addCommand(app,
                   {"diff", "Say what differs between two bodies.",
                    "Media descriptions are paired by their place. Direction and connection are\n"
                    "compared as they are in force; the order of attributes, line ends and the\n"
                    "spelling of addresses make no difference.\n\n"
                    "Examples:\n"
                    "  sdpline diff offer.sdp answer.sdp\n"
                    "  sdpline diff --json before.sip after.sip\n"
                    "  sdpline diff --redact before.sip after.sip\n\n"
                    "Exit status: 0 when they are the same, 1 when they differ, 2 on trouble."},
                   [options, &outcome] {
                       outcome.trouble = kTrouble;
                       outcome.status = run(*options);
                   });
    addRequired(command, "A", options->first, "A file with one body; - is standard input");
    addRequired(command, "B", options->second, "Another one");
    addFlag(command, "--json", options->json, "Print one JSON document");
    addAvpf(command, options->avpf);
    addRedact(command, options->redact);
}

} // namespace cli

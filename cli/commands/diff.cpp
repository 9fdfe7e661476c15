// sdpline diff: says what differs between two bodies.
#include "commands/onebody.hpp"

#include <algorithm>
#include <iostream>

#include "compare/difference.hpp"
#include "output/diagnostic.hpp"
#include "text/escape.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

struct DiffOptions {
    std::string first;
    std::string second;
    std::string color = "auto";
    DecodeOptions decode;
};

void mask(Change &change, Redactor &redactor) {
    change.mediaType = redactor.redactedAfter("m=", change.mediaType);
    for (std::optional<std::string> *const text : {&change.from, &change.to}) {
        if (*text) {
            *text = redactor.redactedAfter(change.before, **text);
        }
    }
}

void printText(const std::vector<Change> &changes, const Style &style) {
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

int runDiff(const DiffOptions &options) {
    Redactor redactor;
    const OneBody first(options.decode, options.first, &redactor);
    const OneBody second(options.decode, options.second, &redactor);
    if (first.get() == nullptr || second.get() == nullptr) {
        return kUnusable;
    }
    std::vector<Change> changes = differences(*first.get(), *second.get());
    if (options.decode.redact) {
        std::ranges::for_each(changes, [&](Change &change) { mask(change, redactor); });
    }
    options.decode.json ? printJson(changes) : printText(changes, styleFor(stdout, options.color));
    return changes.empty() ? kFine : kRefused;
}

constexpr CommandText kDiffText = {
    "diff", "Say what differs between two bodies.",
    R"(Media descriptions are paired by their position. The direction and connection that
apply to each one are compared; the order of attributes, line ends and the spelling
of addresses are ignored.

Examples:
  sdpline diff offer.sdp answer.sdp
  sdpline diff --json before.sip after.sip
  sdpline diff --redact before.sip after.sip

Exit status: 0 when the bodies are the same, 1 when they differ, 2 when they cannot be
compared: a body is refused, or an input does not hold exactly one.)"};

} // namespace

void addDiff(CLI::App &app, int &status) {
    const auto options = std::make_shared<DiffOptions>();
    CLI::App &command =
        addCommand(app, kDiffText, [options, &status] { status = runDiff(*options); });
    addRequired(command, "A", options->first, "A file with one body; - is standard input");
    addRequired(command, "B", options->second, "Another file with one body");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addColor(command, options->color);
    addSelection(command, options->decode);
    addDecoderOptions(command, options->decode);
    addTidyFlag(command, options->decode);
    addRedact(command, options->decode);
}

} // namespace cli

// sdpline encode: the JSON of decode back to text.
#include "commands/commands.hpp"

#include <iostream>
#include <sstream>

#include "input/input.hpp"
#include "output/display.hpp"
#include "output/text.hpp"
#include "json/readback.hpp"

namespace cli {

namespace {

struct Options {
    std::vector<std::string> paths = {"-"};
    WriteOptions write;
};

// The parser's own prefix, "[json.exception.parse_error.101] ", says nothing to people.
std::string bareMessage(const std::string &message) {
    const size_t end = message.find("] ");
    return end != std::string::npos ? message.substr(end + 2) : message;
}

class Encoder {
public:
    // Writes every body of the text, which holds any number of documents, or arrays of them.
    void file(const std::string &path) {
        std::string error;
        const std::optional<Source> source = readSource(path, error);
        name_ = source ? source->name() : path == "-" ? "standard input" : path;
        number_ = 0;
        if (!source) {
            report(error);
            return;
        }
        std::istringstream text{std::string(source->text())};
        while (text >> std::ws && !text.eof()) {
            try {
                nlohmann::json document;
                text >> document;
                take(document);
            } catch (const nlohmann::json::exception &problem) {
                ++number_;
                report(bareMessage(problem.what()));
                return; // where the next document begins is not known
            }
        }
        if (number_ == 0) {
            report("holds no JSON document");
        }
    }

    bool good() const { return good_; }

private:
    void take(const nlohmann::json &document) {
        if (!document.is_array()) {
            write(document);
            return;
        }
        for (const nlohmann::json &each : document) {
            write(each);
        }
        number_ += document.empty() ? 1 : 0;
    }

    void write(const nlohmann::json &document) {
        ++number_;
        std::string error;
        const std::optional<std::string> text = textOfJson(document, error);
        if (!text) {
            report(error);
            return;
        }
        std::cout << (first_ ? "" : view(SdpGetCrlfString(0))) << *text;
        first_ = false;
    }

    void report(const std::string &message) {
        const std::string which = number_ > 1 ? " (document " + std::to_string(number_) + ')' : "";
        std::cerr << "sdpline: " << name_ << which << ": " << escaped(message) << '\n';
        good_ = false;
    }

    std::string name_;
    size_t number_ = 0; // of documents begun in this file
    bool first_ = true;
    bool good_ = true;
};

int run(const Options &options) {
    configure(options.write);
    Encoder encoder;
    for (const std::string &path : options.paths) {
        encoder.file(path);
    }
    return encoder.good() ? 0 : 1;
}

} // namespace

void addEncode(CLI::App &app, Outcome &outcome) {
    const auto options = std::make_shared<Options>();
    CLI::App &command =
        addCommand(app,
                   {"encode", "Write bodies from the JSON that decode prints.",
                    "Several bodies are written with an empty line between them. What is written\n"
                    "decodes to the same JSON, or is refused.\n\n"
                    "Examples:\n"
                    "  sdpline encode offer.json > offer.sdp\n"
                    "  sdpline decode --json offer.sip | sdpline encode\n"
                    "  sdpline decode --json a.sdp | jq '.media[0].port = 0' | sdpline encode\n\n"
                    "Exit status: 0, or 1 when a document is no body or could not be read."},
                   [options, &outcome] { outcome.status = run(*options); });
    addWords(command, "FILE", options->paths, "JSON documents; - is standard input");
    addWriteOptions(command, options->write);
}

} // namespace cli

// sdpline encode: writes bodies from the JSON that decode prints.
#include "commands/commands.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>

#include "input/paths.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"
#include "json/readback.hpp"

namespace cli {

namespace {

struct EncodeOptions {
    std::vector<std::string> paths = {"-"};
    WriteOptions write;
    uint32_t maxBody = SDP_MAX_BODY;
};

// Removes the prefix of the JSON library, "[json.exception.parse_error.101] ".
std::string bareMessage(const std::string &message) {
    const size_t end = message.find("] ");
    return end != std::string::npos ? message.substr(end + 2) : message;
}

class Encoder {
public:
    // Writes every body of the input, which holds any number of documents or arrays of documents.
    void file(const std::string &path) {
        name_ = inputName(path);
        number_ = 0;
        std::ifstream file;
        errno = 0;
        if (path != "-") {
            file.open(path, std::ios::binary);
        }
        std::istream &text = path == "-" ? std::cin : file;
        try {
            documents(text);
        } catch (const std::bad_alloc &) {
            report(kUnusable, "it does not fit into memory");
        }
    }

    void unreadable(const std::string &message) {
        std::cerr << "sdpline: " << escaped(message) << '\n';
        status_ = kUnusable;
    }

    int status() const { return status_; }

private:
    void documents(std::istream &text) {
        if (!text) {
            report(kUnusable, std::strerror(errno));
            return;
        }
        while (text >> std::ws && !text.eof()) {
            try {
                nlohmann::json document;
                text >> document;
                take(document);
            } catch (const nlohmann::json::exception &problem) {
                ++number_;
                report(kUnusable, bareMessage(problem.what()));
                return; // where the next document begins is not known
            }
        }
        if (number_ == 0) {
            report(kUnusable, "holds no JSON document");
        }
    }

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
            report(kRefused, error);
            return;
        }
        std::cout << (first_ ? "" : view(SdpGetCrlfString(0))) << *text;
        first_ = false;
    }

    void report(ExitStatus status, const std::string &message) {
        const std::string which = number_ > 1 ? " (document " + std::to_string(number_) + ')' : "";
        std::cerr << "sdpline: " << name_ << which << ": " << escaped(message) << '\n';
        status_ = std::max(status_, static_cast<int>(status));
    }

    std::string name_;
    size_t number_ = 0; // of the document in this file, from 1
    bool first_ = true;
    int status_ = kFine;
};

int runEncode(const EncodeOptions &options) {
    configure(options.write);
    SdpSetMaxBodySize(options.maxBody);
    Encoder encoder;
    std::vector<PathError> errors;
    const std::vector<std::string> files = expandFolders(options.paths, errors);
    for (const PathError &error : errors) {
        encoder.unreadable(inputName(error.path) + ": " + error.reason);
    }
    for (const std::string &file : files) {
        encoder.file(file);
    }
    return encoder.status();
}

constexpr CommandText kEncodeText = {
    "encode", "Write bodies from the JSON that decode prints.",
    R"(Several bodies are written with an empty line between them. A document whose text
would not decode to the same JSON is refused.

Examples:
  sdpline encode offer.json > offer.sdp
  sdpline decode --json offer.sip | sdpline encode
  sdpline decode --json a.sdp | jq '.name = "talk"' | sdpline encode

Exit status: 0 when every document is written, 1 when one is not a body, 2 when
something cannot be read.)"};

} // namespace

void addEncode(CLI::App &app, int &status) {
    const auto options = std::make_shared<EncodeOptions>();
    CLI::App &command =
        addCommand(app, kEncodeText, [options, &status] { status = runEncode(*options); });
    addWords(command, "FILE", options->paths,
             "JSON documents, or folders of them; - is standard input");
    addWriteOptions(command, options->write);
    addMaxBody(command, options->maxBody);
}

} // namespace cli

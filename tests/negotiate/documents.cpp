#include "negotiate/documents.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace negotiate_test {

namespace {

using sdpline::Body;
using sdpline::Result;

std::vector<std::string> wordsOf(const std::string &text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

[[noreturn]] void refuse(const std::string &file, int line, const std::string &why) {
    std::fprintf(stderr, "%s:%d: %s\n", file.c_str(), line, why.c_str());
    std::exit(2);
}

std::vector<Case> readDocument(const std::filesystem::path &path) {
    std::ifstream in(path);
    std::vector<Case> cases;
    Block *open = nullptr;
    int at = 0;
    for (std::string line; ++at, std::getline(in, line);) {
        if (line.starts_with("## ")) {
            cases.push_back({path.filename().string(), at, line.substr(3), {}});
        } else if (open != nullptr && line == "```") {
            open = nullptr;
        } else if (line.starts_with("```")) {
            auto words = wordsOf(line.substr(3));
            if (cases.empty() || words.empty() || cases.back().has(words.front())) {
                refuse(path.string(), at, "a block without a case or a kind, or a second one");
            }
            open = &cases.back().blocks[words.front()];
            open->at = at;
            words.erase(words.begin());
            open->words = std::move(words);
        } else if (open != nullptr) {
            open->text += line + '\n';
        }
    }
    if (open != nullptr) {
        refuse(path.string(), at, "a block has no end");
    }
    return cases;
}

std::string numberOf(std::optional<std::uint32_t> number) {
    return number ? std::to_string(*number) : "-";
}

std::string timesOf(const char *name, std::optional<std::uint32_t> send,
                    std::optional<std::uint32_t> receive) {
    return send || receive ? std::string("  ") + name + " send " + numberOf(send) + " receive " +
                                 numberOf(receive) + '\n'
                           : "";
}

std::string describe(const sdpline::NegotiatedFormat &format) {
    std::string text = "  " + format.name;
    if (format.send) {
        text += "/" + std::to_string(format.clockRate) + "/" + std::to_string(format.channels) +
                " send " + numberOf(format.send) + " receive " + numberOf(format.receive);
    }
    text += format.sendParameters.empty() ? "" : " theirs \"" + format.sendParameters + "\"";
    text += format.receiveParameters.empty() ? "" : " ours \"" + format.receiveParameters + "\"";
    return text + '\n';
}

std::string describe(const sdpline::NegotiatedStream &stream) {
    if (!stream.accepted) {
        return std::string("rejected ") + SdpNegotiateGetReason(stream.reason)->pcName + '\n';
    }
    std::string text(sdpline::wordOf(stream.direction));
    text += stream.sends() ? " sends" : "";
    text += stream.receives() ? " receives" : "";
    text += stream.peerHeld ? " peer-held" : "";
    text += stream.held ? " held" : "";
    text += stream.preconditions == sdpline::Preconditions::Met     ? " preconditions-met"
            : stream.preconditions == sdpline::Preconditions::Unmet ? " preconditions-unmet"
                                                                    : "";
    text += stream.confirm ? " confirm" : "";
    text += '\n';
    for (const auto &format : stream.formats) {
        text += describe(format);
    }
    return text + timesOf("ptime", stream.sendPTime, stream.receivePTime) +
           timesOf("maxptime", stream.sendMaxPTime, stream.receiveMaxPTime);
}

std::string withoutHead(const std::string &text) {
    return text.starts_with(kLocalHead) ? text.substr(kLocalHead.size()) : text;
}

Result<sdpline::Answer> answerOf(const Case &current) {
    const auto offer = bodyOf(current, "offer");
    const auto local = bodyOf(current, "local");
    std::optional<Body> previous;
    if (current.has("previous")) {
        previous = bodyOf(current, "previous").value();
    }
    return sdpline::answer(*offer, *local, previous ? &*previous : nullptr, optionsOf(current));
}

// The answer outlives the bodies that it was made of, whose memory has others by then.
void addAnswer(const Case &current, std::map<std::string, std::string> &outputs) {
    const auto made = answerOf(current);
    const std::vector<Body> others = [] {
        std::vector<Body> bodies;
        const std::string filler(1000, '#');
        for (int i = 0; i < 4; ++i) {
            bodies.push_back(Body::decode(kLocalHead + "a=x:" + filler + "\na=y:" + filler +
                                          "\na=z:" + filler + '\n')
                                 .value());
        }
        return bodies;
    }();
    const auto offer = bodyOf(current, "offer");
    if (!made) {
        outputs["refused"] = std::string(made.error().check) + '\n';
        return;
    }
    outputs["answer"] = withoutHead(textOf(made->body));
    outputs["decisions"] = textOf(made->decisions);
    outputs["agreement"] = textOf(*sdpline::agree(*offer, made->body));
    outputs["accepted"] = made->accepted ? "yes\n" : "no\n";
}

} // namespace

bool Block::has(const std::string &word) const {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::vector<Case> readCases(const std::string &folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".md") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Case> cases;
    for (const auto &path : paths) {
        for (Case &one : readDocument(path)) {
            cases.push_back(std::move(one));
        }
    }
    return cases;
}

Result<Body> bodyOf(const Case &current, const std::string &kind) {
    std::string text = current.blocks.at(kind).text;
    if (!text.starts_with("v=")) {
        text = (kind == "offer" ? kOfferHead : kLocalHead) + text;
    }
    auto body = Body::decode(text);
    if (!body) {
        refuse(current.file, current.blocks.at(kind).at, body.error().message());
    }
    return body;
}

sdpline::AnswerOptions optionsOf(const Case &current) {
    sdpline::AnswerOptions options;
    const Block &local = current.blocks.at("local");
    options.firstOnly = local.has("first");
    options.ourOrder = local.has("ours");
    options.avpForAvpf = local.has("avp");
    for (const std::string &word : local.words) {
        if (word.starts_with("ports=")) {
            std::istringstream in(word.substr(6));
            for (std::string port; std::getline(in, port, ',');) {
                options.ports.push_back(static_cast<std::uint32_t>(std::stoul(port)));
            }
        }
    }
    return options;
}

std::map<std::string, std::string> outputsOf(const Case &current) {
    std::map<std::string, std::string> outputs;
    if (current.has("offer") && current.has("local")) {
        addAnswer(current, outputs);
    } else if (current.has("offer") && current.has("reply")) {
        const auto offer = bodyOf(current, "offer");
        const auto reply = bodyOf(current, "reply");
        outputs["faults"] = textOf(sdpline::check(*offer, *reply));
        outputs["agreement"] = textOf(*sdpline::agree(*offer, *reply));
    } else if (current.has("sent") && current.has("next")) {
        outputs["faults"] =
            textOf(sdpline::checkNext(*bodyOf(current, "sent"), *bodyOf(current, "next")));
    } else if (current.has("sent") && current.has("wanted")) {
        const auto made = sdpline::nextOffer(*bodyOf(current, "sent"), *bodyOf(current, "wanted"));
        outputs["becomes"] = made ? withoutHead(textOf(*made)) : "";
        outputs["refused"] = made ? "" : std::string(made.error().check) + '\n';
    } else if (current.has("local")) {
        outputs["capabilities"] =
            withoutHead(textOf(*sdpline::capabilities(*bodyOf(current, "local"))));
    }
    return outputs;
}

std::string textOf(const Body &body) {
    std::string text = body.encode().value();
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

std::string textOf(const std::vector<sdpline::Decision> &decisions) {
    std::string text;
    for (const sdpline::Decision &one : decisions) {
        text += one.sentence + " [" + std::string(one.name) + "]\n";
    }
    return text;
}

std::string textOf(const sdpline::Agreement &agreement) {
    std::string text;
    for (const auto &stream : agreement.streams) {
        text += describe(stream);
    }
    return text;
}

} // namespace negotiate_test

#include "negotiate/documents.hpp"

#include <algorithm>
#include <sstream>

namespace negotiate_test {

namespace {

using sdpline::Body;
using sdpline::Result;

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

// The answer must stay valid after the bodies that it was made from are freed.
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

std::vector<Case> readCases(const std::string &folder) {
    return support::readSections(folder, {"offer", "local", "previous", "answer", "accepted",
                                          "decisions", "agreement", "reply", "faults", "sent",
                                          "next", "wanted", "becomes", "capabilities", "refused"});
}

Result<Body> bodyOf(const Case &current, const std::string &kind) {
    std::string text = current.block(kind).joined();
    if (!text.starts_with("v=")) {
        text = (kind == "offer" ? kOfferHead : kLocalHead) + text;
    }
    auto body = Body::decode(text);
    if (!body) {
        support::refuse(current.file, current.block(kind).at, body.error().message());
    }
    return body;
}

sdpline::AnswerOptions optionsOf(const Case &current) {
    sdpline::AnswerOptions options;
    const Block &local = current.block("local");
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

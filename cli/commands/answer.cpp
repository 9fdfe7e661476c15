// sdpline answer: writes the answer to an offer, and the reasons for it.
#include "commands/commands.hpp"

#include <iostream>

#include "commands/negotiation.hpp"
#include "output/diagnostic.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

struct AnswerOptions {
    std::string offer = "-";
    std::string local;
    std::string previous;
    std::string order = "theirs";
    bool first = false;
    bool avpForAvpf = false;
    DecodeOptions decode = negotiationOptions();
};

Json numberOrNull(std::optional<uint32_t> number) {
    return number ? Json(*number) : Json(nullptr);
}

Json jsonOfFormat(const sdpline::NegotiatedFormat &format) {
    return {{"name", format.name},
            {"clockRate", format.clockRate},
            {"channels", format.channels},
            {"send", numberOrNull(format.send)},
            {"receive", numberOrNull(format.receive)},
            {"sendParameters", format.sendParameters},
            {"receiveParameters", format.receiveParameters}};
}

const char *wordOf(sdpline::Preconditions state) {
    switch (state) {
    case sdpline::Preconditions::Met: return "met";
    case sdpline::Preconditions::Unmet: return "unmet";
    case sdpline::Preconditions::Absent: break;
    }
    return "absent";
}

Json jsonOfStream(const sdpline::NegotiatedStream &stream) {
    if (!stream.accepted) {
        return {{"accepted", false}, {"reason", SdpNegotiateGetReason(stream.reason)->pcName}};
    }
    Json formats = Json::array();
    for (const auto &format : stream.formats) {
        formats.push_back(jsonOfFormat(format));
    }
    return {{"accepted", true},
            {"local", numberOrNull(stream.local)},
            {"direction", sdpline::wordOf(stream.direction)},
            {"sends", stream.sends()},
            {"receives", stream.receives()},
            {"peerHeld", stream.peerHeld},
            {"held", stream.held},
            {"formats", std::move(formats)},
            {"sendPTime", numberOrNull(stream.sendPTime)},
            {"receivePTime", numberOrNull(stream.receivePTime)},
            {"sendMaxPTime", numberOrNull(stream.sendMaxPTime)},
            {"receiveMaxPTime", numberOrNull(stream.receiveMaxPTime)},
            {"preconditions", wordOf(stream.preconditions)},
            {"confirm", stream.confirm}};
}

void printJson(const OneBody &offer, const sdpline::Answer &answer, const std::string &text) {
    Json streams = Json::array();
    for (const auto &stream : answer.streams) {
        streams.push_back(jsonOfStream(stream));
    }
    std::cout << dumped({{"accepted", answer.accepted},
                         {"answer", text},
                         {"streams", std::move(streams)},
                         {"decisions", jsonOf(offer, answer.decisions)}});
}

sdpline::AnswerOptions choicesOf(const AnswerOptions &options) {
    sdpline::AnswerOptions choices;
    choices.ourOrder = options.order == "ours";
    choices.firstOnly = options.first;
    choices.avpForAvpf = options.avpForAvpf;
    return choices;
}

int runAnswer(const AnswerOptions &options) {
    configure(options.decode);
    const OneBody offer(options.decode, options.offer);
    const OneBody local(options.decode, options.local);
    std::optional<OneBody> previous;
    if (!options.previous.empty()) {
        previous.emplace(options.decode, options.previous);
    }
    if (offer.get() == nullptr || local.get() == nullptr ||
        (previous && previous->get() == nullptr)) {
        return kUnusable;
    }
    const auto answer = sdpline::answer(*offer.get(), *local.get(),
                                        previous ? previous->get() : nullptr, choicesOf(options));
    if (!answer) {
        std::cerr << offer.placeOf(std::nullopt) << ": error: " << answer.error().sentence << " ["
                  << answer.error().check << "]\n";
        return kUnusable;
    }
    const auto text = answer->body.encode();
    if (!text) {
        std::cerr << "sdpline: " << text.error().message() << '\n';
        return kUnusable;
    }
    if (options.decode.json) {
        printJson(offer, *answer, *text);
    } else {
        std::cout << *text;
        for (const sdpline::Decision &decision : answer->decisions) {
            print(std::cerr, offer, decision, "note");
        }
    }
    return answer->accepted ? kFine : kRefused;
}

constexpr CommandText kAnswerText = {
    "answer", "Write the answer to an offer, and the reasons for it.",
    R"(LOCAL describes what this side can do: its o= and c= lines, and one m= line for each
stream that it can take. Decisions are written to standard error.

Examples:
  sdpline answer --with local.sdp offer.sip
  sdpline answer --with local.sdp --previous answer.sdp reinvite.sip
  sdpline answer --with local.sdp --first --json offer.sdp

Exit status: 0 when a stream is accepted, 1 when all are rejected, 2 when no answer
can be made.)"};

} // namespace

void addAnswer(CLI::App &app, int &status) {
    const auto options = std::make_shared<AnswerOptions>();
    CLI::App &command = addCommand(app, kAnswerText, [options, &status] {
        if (options->local.empty()) {
            requireOperand("--with");
        }
        status = runAnswer(*options);
    });
    addWord(command, "OFFER", options->offer, "",
            "SDP or a SIP message with one body; - is standard input");
    addWord(command, "--with", options->local, "LOCAL", "What this side can do");
    addWord(command, "--previous", options->previous, "BODY",
            "Our last description of the session, from an offer or an answer");
    addFlag(command, "--first", options->first,
            "Take one codec, with the telephone events that go with it");
    addChoice(command, "--order", options->order, "ORDER", {"theirs", "ours"},
              "Order of the formats: theirs, as in the offer (the default), or ours");
    addFlag(command, "--avp-for-avpf", options->avpForAvpf,
            "Allow RTP/AVP in the answer to RTP/AVPF");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addSelection(command, options->decode);
    addMaxBody(command, options->decode.maxBody);
}

} // namespace cli

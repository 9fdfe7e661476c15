// sdpline calls: follows offer and answer in every call, and reports faults in them.
#include "commands/commands.hpp"

#include <fstream>
#include <iostream>
#include <unordered_map>

#include "calls/dialog.hpp"
#include "calls/ladder.hpp"
#include "calls/page.hpp"
#include "commands/negotiation.hpp"
#include "output/diagnostic.hpp"
#include "output/maskedorigin.hpp"
#include "output/terminal.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

struct CallsOptions {
    DecodeOptions decode = negotiationOptions();
    bool verbose = false;
    std::string html;
};

// Collects the messages of all inputs by their Call-ID, in the order in which the calls begin.
class Collector : public BodyUser {
public:
    explicit Collector(const CallsOptions &options) : BodyUser(options.decode), options_(options) {}

    void files(size_t count, uint64_t bytes) override { progress_.emplace(count, bytes); }
    void bytesRead(uint64_t count) override { progress_->read(count); }
    void fileDone(bool /*read*/) override { progress_->fileDone(); }
    bool wantsMessages() const override { return true; }

    void problem(const InputProblem &problem) override {
        progress_->hide();
        BodyUser::problem(problem);
    }

    void message(const Found &whole) override {
        const SipHead head = sipHeadOf(whole.text);
        const auto [place, isNew] = byId_.try_emplace(head.callId, calls_.size());
        if (isNew) {
            calls_.push_back(std::make_unique<Entry>());
            begin(calls_.back()->call, whole);
        }
        Entry &entry = *calls_[place->second];
        entry.call.messages.push_back(messageOf(whole, head));
        entry.dialog.take(entry.call);
    }

    void body(const Found &found) override {
        if (found.head.empty() && plain_.empty()) {
            plain_ = found.path;
        }
    }

    int finish() {
        progress_->hide();
        std::vector<const Call *> calls;
        for (const auto &entry : calls_) {
            entry->dialog.finish(entry->call);
            calls.push_back(&entry->call);
            wrong_ += entry->call.findings.empty() ? 0 : 1;
        }
        if (calls_.empty() && !plain_.empty()) {
            problem({Problem::Unusable, plain_, "it holds no SIP message"});
        }
        if (wrong_ != 0) {
            atLeast(kRefused);
        }
        if (!options_.html.empty()) {
            writeHtml(calls);
        }
        options_.decode.json ? printJson(calls) : printText(calls);
        return status();
    }

private:
    struct Entry {
        Call call;
        Dialog dialog;
    };

    void begin(Call &call, const Found &whole) {
        const Origin origin = originOf(whole, redactorFor(whole));
        call.path = whole.name;
        call.callId = origin.callId;
        call.from = origin.from;
        call.to = origin.to;
    }

    CallMessage messageOf(const Found &whole, const SipHead &head) {
        Redactor *const redactor = redactorFor(whole);
        const Origin origin = originOf(whole, redactor);
        CallMessage message;
        message.head = head;
        message.packet = origin.packet;
        message.line = whole.line;
        nameSides(message, origin);
        if (const Bodies found = bodiesOfMessage(whole.text); !found.bodies.empty()) {
            const BodyPlace &place = found.bodies.front();
            message.body = whole.text.substr(place.offset, place.size);
            if (redactor != nullptr) {
                redactor->learn(message.body);
            }
        }
        return message;
    }

    // Names the sides by their addresses, with the ports where both addresses are the same; in a
    // text by their URIs.
    static void nameSides(CallMessage &message, const Origin &origin) {
        const Packet &packet = origin.packet;
        if (packet.frame == 0) {
            const bool isRequest = message.head.isRequest();
            message.sender = isRequest ? origin.from : origin.to;
            message.receiver = isRequest ? origin.to : origin.from;
            return;
        }
        const bool isOneHost = packet.source == packet.destination;
        const auto port = [isOneHost](uint16_t number) {
            return isOneHost ? ':' + std::to_string(number) : "";
        };
        message.sender = packet.source + port(packet.sourcePort);
        message.receiver = packet.destination + port(packet.destinationPort);
    }

    std::string shownBody(const std::string &body) {
        Found found = {"", "", body, 0, 1};
        return textOf(found);
    }

    void writeHtml(const std::vector<const Call *> &calls) {
        std::ofstream file(options_.html, std::ios::binary);
        writePage(file, calls, [this](const std::string &body) { return shownBody(body); });
        if (!file.flush()) {
            problem({Problem::Unusable, options_.html, "cannot be written"});
        }
    }

    void printText(const std::vector<const Call *> &calls) const {
        for (const Call *const call : calls) {
            std::cout << (options_.verbose ? ladderOf(*call) : callLine(*call)) << '\n';
        }
        std::cout << counted(calls.size(), "call", "calls") << ", " << wrong_
                  << " with something wrong\n";
    }

    void printJson(const std::vector<const Call *> &calls) const {
        Json list = Json::array();
        for (const Call *const call : calls) {
            Json messages = Json::array();
            for (const CallMessage &message : call->messages) {
                messages.push_back(jsonOf(message));
            }
            Json findings = Json::array();
            for (const CallFinding &finding : call->findings) {
                findings.push_back({{"message", finding.message},
                                    {"sentence", finding.sentence},
                                    {"name", finding.name},
                                    {"reference", finding.reference}});
            }
            list.push_back({{"file", call->path},
                            {"callId", call->callId},
                            {"from", call->from},
                            {"to", call->to},
                            {"offers", call->offers},
                            {"answers", call->answers},
                            {"messages", std::move(messages)},
                            {"findings", std::move(findings)}});
        }
        std::cout << dumped({{"calls", std::move(list)}, {"wrong", wrong_}});
    }

    static Json jsonOf(const CallMessage &message) {
        Json json = {
            {"message", message.head.isRequest() ? message.head.method : message.head.status},
            {"cseq", message.head.cseq},
            {"sender", message.sender},
            {"receiver", message.receiver},
            {"role", message.role},
            {"repeated", message.repeated}};
        if (message.packet.frame != 0) {
            json["frame"] = message.packet.frame;
            json["time"] = timeText(message.packet.time);
        } else {
            json["line"] = message.line;
        }
        return json;
    }

    const CallsOptions &options_;
    std::optional<Progress> progress_;
    std::vector<std::unique_ptr<Entry>> calls_;
    std::unordered_map<std::string, size_t> byId_;
    size_t wrong_ = 0;
    std::string plain_; // the first input with a body that no message carries
};

} // namespace

void addCalls(CLI::App &app, int &status) {
    const auto options = std::make_shared<CallsOptions>();
    CLI::App &command = addCommand(
        app,
        {"calls", "Follow the offers and answers of every call, and say what is wrong.",
         "Reads captures and texts of SIP messages. Prints one line for each Call-ID.\n\n"
         "Examples:\n"
         "  sdpline calls capture.pcap\n"
         "  sdpline calls --verbose --call-id 3c26@host capture.pcap\n"
         "  sdpline calls --html calls.html --redact capture.pcap\n\n"
         "Exit status: 0 when nothing is wrong, 1 when something is, 2 when something cannot\n"
         "be read or written."},
        [options, &status] {
            Collector collector(*options);
            readInputs(options->decode.paths, collector);
            status = collector.finish();
        });
    addPaths(command, options->decode);
    addFlag(command, "--verbose", options->verbose, "Print the whole exchange of every call");
    addWord(command, "--html", options->html, "FILE",
            "Write an HTML page with all calls to this file");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addMaxBody(command, options->decode.maxBody);
    addRedact(command, options->decode);
}

} // namespace cli

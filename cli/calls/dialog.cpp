#include "calls/dialog.hpp"

#include <algorithm>

namespace cli {

namespace {

// The same text for a request and its responses; an ACK belongs to its INVITE.
std::string transactionOf(const SipHead &head) {
    return head.fromTag + ' ' + head.cseq.substr(0, head.cseq.find(' ')) + ' ' +
           (head.method == "ACK" ? "INVITE" : head.method);
}

// Responses after which a request is repeated (401, 407, 491), or that end a cancelled call (487).
bool isExpected(unsigned code) {
    return code == 401 || code == 407 || code == 487 || code == 491;
}

bool mayOffer(const std::string &method) {
    return method == "INVITE" || method == "UPDATE" || method == "PRACK";
}

} // namespace

void Dialog::add(Call &call, std::string sentence, std::string name, std::string reference) {
    call.findings.push_back(
        {call.messages.size() - 1, std::move(sentence), std::move(name), std::move(reference)});
}

// Adds the sentences of the table of reasons: those of the decisions quote the body.
void Dialog::add(Call &call, const std::vector<sdpline::Decision> &faults) {
    for (const sdpline::Decision &fault : faults) {
        const std::string stream =
            fault.stream ? "stream " + std::to_string(*fault.stream + 1) + ": " : "";
        const std::string payload =
            fault.payload ? " (payload " + std::to_string(*fault.payload) + ')' : "";
        add(call, stream + SdpNegotiateGetReason(fault.reason)->pcSentence + payload,
            std::string(fault.name), std::string(fault.rfc) + ' ' + std::string(fault.section));
    }
}

// Compares what two transmissions share: on another hop the request line and Via may differ.
bool Dialog::isRepeated(const CallMessage &message) {
    const SipHead &head = message.head;
    const std::string key = head.status.substr(0, 3) + ' ' + head.method + ' ' + head.cseq + ' ' +
                            head.fromTag + ' ' + head.toTag + '\n' + message.body;
    return !seen_.insert(std::to_string(std::hash<std::string>()(key))).second;
}

void Dialog::take(Call &call) {
    CallMessage &message = call.messages.back();
    message.repeated = isRepeated(message);
    if (message.repeated) {
        return;
    }
    if (message.head.isRequest()) {
        takeRequest(call);
    } else {
        takeResponse(call);
    }
}

void Dialog::takeRequest(Call &call) {
    const CallMessage &message = call.messages.back();
    if (message.body.empty()) {
        return;
    }
    const std::string &method = message.head.method;
    const auto ofPeer = std::ranges::find_if(open_, [&](const Offer &open) {
        return call.messages[open.message].head.senderTag() != message.head.senderTag();
    });
    if (ofPeer != open_.end() && (method == "ACK" || method == "PRACK")) {
        answer(call, static_cast<size_t>(ofPeer - open_.begin()));
    } else if (mayOffer(method)) {
        if (!open_.empty()) {
            add(call, "a new offer while the last one has no answer", "OfferTooEarly",
                "RFC 3264 4");
        }
        offer(call);
    }
}

void Dialog::takeResponse(Call &call) {
    const CallMessage &message = call.messages.back();
    const std::string transaction = transactionOf(message.head);
    const auto offered = std::ranges::find(open_, transaction, &Offer::transaction);
    const auto open = static_cast<size_t>(offered - open_.begin());
    if (message.head.code() >= 300) {
        if (open < open_.size()) {
            refuse(call, open);
        }
    } else if (message.body.empty() || !mayOffer(message.head.method)) {
        return;
    } else if (open < open_.size() && call.messages[open_[open].message].head.isRequest()) {
        answer(call, open);
    } else if (open_.empty() && !closed_.contains(transaction)) {
        offer(call);
    }
}

// Removes one offer: where two have crossed, the other one stays open.
void Dialog::refuse(Call &call, size_t open) {
    const SipHead &head = call.messages.back().head;
    if (!isExpected(head.code())) {
        add(call, "the offer was refused: " + head.status, "OfferRefused", "RFC 3261 21.4.26");
    }
    const size_t message = open_[open].message;
    refused_[call.messages[message].head.senderTag()] = message;
    open_.erase(open_.begin() + static_cast<ptrdiff_t>(open));
}

std::optional<sdpline::Body> Dialog::decoded(Call &call) {
    auto body = sdpline::Body::decode(call.messages.back().body);
    if (body) {
        return std::move(*body);
    }
    const sdpline::Error &error = body.error();
    const std::string line = error.line != 0 ? "line " + std::to_string(error.line) + ": " : "";
    add(call, "the body is refused: " + line + std::string(error.sentence),
        std::string(error.check), "");
    return std::nullopt;
}

void Dialog::judgeNext(Call &call, const sdpline::Body &next) {
    const std::string &side = call.messages.back().head.senderTag();
    const auto faultsAfter = [&](const std::map<std::string, size_t> &table) {
        const auto before = table.find(side);
        if (before == table.end()) {
            return std::vector<sdpline::Decision>();
        }
        const auto body = sdpline::Body::decode(call.messages[before->second].body);
        return body ? sdpline::checkNext(*body, next) : std::vector<sdpline::Decision>();
    };
    const auto isJump = [](const sdpline::Decision &fault) {
        return fault.name == "VersionJumped";
    };
    std::vector<sdpline::Decision> faults = faultsAfter(previous_);
    // A side may also count the versions of its refused offers.
    if (refused_.contains(side) && std::ranges::none_of(faultsAfter(refused_), isJump)) {
        std::erase_if(faults, isJump);
    }
    add(call, faults);
}

void Dialog::offer(Call &call) {
    CallMessage &message = call.messages.back();
    message.role = "offer " + std::to_string(++call.offers);
    open_.push_back({call.messages.size() - 1, transactionOf(message.head)});
    if (const auto body = decoded(call)) {
        judgeNext(call, *body);
    }
}

void Dialog::answer(Call &call, size_t open) {
    CallMessage &message = call.messages.back();
    const size_t offered = open_[open].message;
    const std::string role = call.messages[offered].role; // "offer 1"
    message.role = "answer" + role.substr(role.find(' '));
    ++call.answers;
    closed_.insert(open_[open].transaction);
    open_.erase(open_.begin() + static_cast<ptrdiff_t>(open));
    const auto body = decoded(call);
    const auto offer = sdpline::Body::decode(call.messages[offered].body);
    if (!body || !offer) {
        return;
    }
    add(call, sdpline::check(*offer, *body));
    judgeNext(call, *body);
    judgeAgreement(call, *offer, *body);
    previous_[call.messages[offered].head.senderTag()] = offered;
    previous_[message.head.senderTag()] = call.messages.size() - 1;
}

// Adds what is not a fault of either side, but leaves the call without media.
void Dialog::judgeAgreement(Call &call, const sdpline::Body &offer, const sdpline::Body &answer) {
    const auto agreed = sdpline::agree(offer, answer);
    if (!agreed) {
        return;
    }
    if (!agreed->accepted) {
        add(call, "the answer accepts no stream", "NothingAccepted", "RFC 3264 6");
        return;
    }
    const auto isSilent = [](const sdpline::NegotiatedStream &stream) {
        return !stream.accepted || (!stream.sends() && !stream.receives());
    };
    if (!agreed->streams.empty() && std::ranges::all_of(agreed->streams, isSilent)) {
        add(call, "no media in either direction: both sides hold", "BothHold", "RFC 3264 8.4");
    }
}

void Dialog::finish(Call &call) {
    for (const Offer &open : open_) {
        call.findings.push_back(
            {open.message, "the offer has no answer", "OfferUnanswered", "RFC 3264 4"});
    }
}

} // namespace cli

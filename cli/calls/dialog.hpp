// Checks the offers and answers of one call, message by message (RFC 3264, RFC 3261 section 13.2.1,
// RFC 3311, RFC 3262).
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "calls/call.hpp"
#include "sdpline/negotiate.hpp"

namespace cli {

class Dialog {
public:
    // Checks the last message of the call, and adds its faults to the call.
    void take(Call &call);
    // Adds the faults that are known only after the last message.
    void finish(Call &call);

private:
    struct Offer {
        size_t message;
        std::string transaction;
    };

    void offer(Call &call);
    void answer(Call &call, size_t open);
    void refuse(Call &call, size_t open);
    void takeRequest(Call &call);
    void takeResponse(Call &call);
    bool isRepeated(const CallMessage &message);
    std::optional<sdpline::Body> decoded(Call &call);
    void judgeNext(Call &call, const sdpline::Body &next);
    void judgeAgreement(Call &call, const sdpline::Body &offer, const sdpline::Body &answer);
    void add(Call &call, const std::vector<sdpline::Decision> &faults);
    void add(Call &call, std::string sentence, std::string name, std::string reference);

    std::set<std::string> seen_;
    std::vector<Offer> open_;      // offers without an answer yet; more than one where they cross
    std::set<std::string> closed_; // transactions with an offer and its answer
    std::map<std::string, size_t>
        previous_; // by tag of the side: the message with its last description
    std::map<std::string, size_t> refused_; // by tag of the side: its last refused offer
};

} // namespace cli

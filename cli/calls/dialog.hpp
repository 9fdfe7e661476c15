// The offers and answers of one call (RFC 3264, RFC 3261 section 13.2.1, RFC 3311, RFC 3262),
// judged as they come.
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
    // Judges the last message of the call, and adds what is wrong.
    void take(Call &call);
    // After the last message.
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
    std::vector<Offer> open_;                // those that have no answer yet; one unless they cross
    std::set<std::string> closed_;           // transactions with an offer and its answer
    std::map<std::string, size_t> previous_; // by side: the message with its last description
    std::map<std::string, size_t> refused_;  // by side: its last offer that was refused
};

} // namespace cli

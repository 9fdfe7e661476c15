// The offers and answers of one call (RFC 3264, RFC 3261 section 13.2.1, RFC 3311, RFC 3262),
// judged as they come.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

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
    void offer(Call &call);
    void answer(Call &call);
    void takeRequest(Call &call);
    void takeResponse(Call &call);
    bool isRepeated(const CallMessage &message);
    std::optional<sdpline::Body> decoded(Call &call);
    void judgeNext(Call &call, const sdpline::Body &next);
    void judgeAgreement(Call &call, const sdpline::Body &offer, const sdpline::Body &answer);
    void add(Call &call, const std::vector<sdpline::Decision> &faults);
    void add(Call &call, std::string sentence, std::string name, std::string reference);

    std::set<std::string> seen_;
    std::optional<size_t> open_;             // the message whose offer has no answer yet
    std::string openTransaction_;            // that the offer was made in
    std::set<std::string> closed_;           // transactions with an offer and its answer
    std::map<std::string, size_t> previous_; // by side: the message with its last description
};

} // namespace cli

// What the commands that negotiate share: the one body of a file with the places of its m= lines,
// and decisions shown at them.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "commands/commands.hpp"
#include "sdpline/negotiate.hpp"

namespace cli {

// All RTP profiles are read as protocols with payload numbers.
DecodeOptions negotiationOptions();

// A decoded body and where its lines are. What keeps a file from having one body that is accepted
// is told on standard error.
class Party : public BodyUser {
public:
    Party(const DecodeOptions &options, const std::string &path);

    void body(const Found &found) override;

    // Null where there is not exactly one body, or it is refused.
    const sdpline::Body *get() const { return count_ == 1 && body_ ? &*body_ : nullptr; }

    // "offer.sip:9:1": the m= line of the stream, or the beginning of the body.
    std::string placeOf(std::optional<uint32_t> stream) const;

private:
    size_t count_ = 0;
    std::optional<sdpline::Body> body_;
    std::string name_;
    size_t line_ = 1;
    std::vector<size_t> mediaLines_;
};

// "offer.sip:9:1: note: stream 2 rejected: no common format [NoCommonFormat, RFC 3264 6]"
void print(std::ostream &out, const Party &party, const sdpline::Decision &decision,
           const char *severity);

nlohmann::ordered_json jsonOf(const Party &party, const std::vector<sdpline::Decision> &decisions);

} // namespace cli

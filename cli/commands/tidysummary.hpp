// Counts how many bodies each rule of tidy repaired, and why others are still refused.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "input/input.hpp"
#include "output/diagnostic.hpp"
#include "redact/redact.hpp"
#include "sdpline/tidy.hpp"

namespace cli {

class TidySummary {
public:
    void file() { ++files_; }
    void body(const Found &body, const sdpline::Tidied &tidied, Redactor *redactor);

    // "     15 repaired: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3], first at a.sdp:3:3"
    void print(std::ostream &out) const;
    nlohmann::ordered_json json() const;

private:
    // Bodies with the same outcome for the same reason. Each body counts once.
    struct Count {
        const char *outcome; // "repaired", "tried", "refused"
        std::string name;    // of the rule, or of the check
        std::string sentence;
        size_t bodies;
        std::string first; // "call.sip:4:16"
    };

    void count(const Count &one);
    // Sorted by outcome, then the most frequent first, then by name.
    std::vector<Count> sorted() const;

    std::map<std::string, Count> counts_;
    size_t files_ = 0;
    size_t unchanged_ = 0;
    size_t repaired_ = 0;
    size_t refused_ = 0;
};

} // namespace cli

#include "commands/negotiation.hpp"

#include <iostream>

#include "output/escape.hpp"
#include "output/origin.hpp"
#include "output/terminal.hpp"

namespace cli {

namespace {

// The lines of a text that are m= lines, counted from `first`; the decoder skips blanks and NULs
// before a line.
std::vector<size_t> mediaLinesOf(std::string_view text, size_t first) {
    std::vector<size_t> lines;
    for (size_t begin = 0; begin < text.size(); ++first) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = text.substr(begin, end - begin);
        const size_t letter = line.find_first_not_of(std::string_view(" \t\0", 3));
        if (letter < line.size() && line.substr(letter).starts_with("m=")) {
            lines.push_back(first);
        }
        begin = end + 1;
    }
    return lines;
}

} // namespace

DecodeOptions negotiationOptions() {
    DecodeOptions options;
    options.avpf = true;
    options.rtpFamily = true;
    return options;
}

Party::Party(const DecodeOptions &options, const std::string &path) : BodyUser(options) {
    readInputs({path}, *this);
    if (count_ != 1 && status() != kUnusable) {
        problem({Problem::Unusable, path, "expected one body, found " + std::to_string(count_)});
    }
}

void Party::body(const Found &found) {
    if (++count_ != 1) {
        return;
    }
    name_ = placeName(found, nullptr);
    line_ = found.line;
    mediaLines_ = mediaLinesOf(found.text, found.line);
    body_ = decoded(found);
}

std::string Party::placeOf(std::optional<uint32_t> stream) const {
    const bool known = stream && *stream < mediaLines_.size();
    return name_ + ':' + std::to_string(known ? mediaLines_[*stream] : line_) + ":1";
}

void print(std::ostream &out, const Party &party, const sdpline::Decision &decision,
           const char *severity) {
    const Style &style = styleFor(&out == &std::cout ? stdout : stderr);
    out << style.bold << party.placeOf(decision.stream) << ": " << style.reset << severity << ": "
        << escaped(decision.sentence) << " [" << decision.name << ", " << decision.rfc << ' '
        << decision.section << "]\n";
}

nlohmann::ordered_json jsonOf(const Party &party, const std::vector<sdpline::Decision> &decisions) {
    auto list = nlohmann::ordered_json::array();
    for (const sdpline::Decision &one : decisions) {
        nlohmann::ordered_json row = {
            {"reason", one.reason},     {"name", one.name},
            {"rfc", one.rfc},           {"section", one.section},
            {"stream", nullptr},        {"payload", nullptr},
            {"sentence", one.sentence}, {"place", party.placeOf(one.stream)}};
        if (one.stream) {
            row["stream"] = *one.stream + 1;
        }
        if (one.payload) {
            row["payload"] = *one.payload;
        }
        list.push_back(std::move(row));
    }
    return list;
}

} // namespace cli

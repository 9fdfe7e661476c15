#include "commands/negotiation.hpp"

#include <iostream>

#include "output/terminal.hpp"
#include "text/escape.hpp"

namespace cli {

DecodeOptions negotiationOptions() {
    DecodeOptions options;
    options.avpf = true;
    options.rtpFamily = true;
    return options;
}

void print(std::ostream &out, const OneBody &body, const sdpline::Decision &decision,
           const char *severity) {
    const Style &style = styleFor(&out == &std::cout ? stdout : stderr);
    out << style.bold << body.placeOf(decision.stream) << ": " << style.reset << severity << ": "
        << escaped(decision.sentence) << " [" << decision.name << ", " << decision.rfc << ' '
        << decision.section << "]\n";
}

nlohmann::ordered_json jsonOf(const OneBody &body,
                              const std::vector<sdpline::Decision> &decisions) {
    auto list = nlohmann::ordered_json::array();
    for (const sdpline::Decision &one : decisions) {
        nlohmann::ordered_json row = {
            {"reason", one.reason},     {"name", one.name},
            {"rfc", one.rfc},           {"section", one.section},
            {"stream", nullptr},        {"payload", nullptr},
            {"sentence", one.sentence}, {"place", body.placeOf(one.stream)}};
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

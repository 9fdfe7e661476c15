// The bodies found in any text lie inside it and in order. In SIP messages with a Content-Length
// exactly those bodies are found that were put there, whatever they hold.
#include <string>
#include <vector>

#include "fuzz.hpp"
#include "sip/bodies.hpp"

namespace {

using fuzz::require;

cli::Bodies find(std::string_view text) {
    fuzz::Exact bytes(text);
    return cli::findBodies(bytes.view());
}

void requirePlaces(std::string_view text) {
    const cli::Bodies found = find(text);
    size_t end = 0;
    for (const cli::BodyPlace &place : found.bodies) {
        require(place.offset >= end, "bodies come one after the other");
        require(place.offset <= text.size() && place.size <= text.size() - place.offset,
                "a body lies inside the text");
        end = place.offset + place.size;
    }
    for (const cli::Problem &problem : found.problems) {
        require(problem.offset <= text.size() && !problem.text.empty(), "a problem has a place");
    }
    require(!found.bodies.empty() || !found.problems.empty(), "nothing is found for a reason");
}

// A message with the content and its length.
std::string message(std::string_view type, const std::string &content) {
    return "INVITE sip:b@example.com SIP/2.0\r\nContent-Type: " + std::string(type) +
           "\r\nContent-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content;
}

// The caller chooses a boundary that does not occur in the parts.
std::string parts(const std::vector<std::string> &bodies, std::string_view boundary) {
    std::string content;
    for (const std::string &body : bodies) {
        content +=
            "--" + std::string(boundary) + "\r\nContent-Type: application/sdp\r\n\r\n" + body;
        content += "\r\n";
    }
    return content + "--" + std::string(boundary) + "--\r\n";
}

void requireFound(const std::string &text, const std::vector<std::string> &bodies) {
    const cli::Bodies found = find(text);
    for (const cli::Problem &problem : found.problems) {
        require(problem.kind == cli::Problem::Note, "whole messages are no problem", text);
    }
    require(found.bodies.size() == bodies.size(), "as many bodies are found", text);
    for (size_t i = 0; i < bodies.size(); ++i) {
        const cli::BodyPlace &place = found.bodies[i];
        require(text.substr(place.offset, place.size) == bodies[i], "the body is found", text);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const uint32_t split = input.below(65536);
    const std::string all(input.rest());
    requirePlaces(all);
    const std::string first = all.substr(0, split % (all.size() + 1));
    const std::string second = all.substr(first.size());
    const std::vector<std::string> bodies = {first, second};
    constexpr std::string_view sdp = "application/sdp";
    requireFound(message(sdp, first), {first});
    requireFound(message(sdp, first) + message(sdp, second), bodies);
    if (all.find("--cut") == all.npos) {
        requireFound(message("multipart/mixed;boundary=cut", parts(bodies, "cut")), bodies);
    }
    return 0;
}

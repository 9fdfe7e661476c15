// Each line is decoded as part of a short body: after lines that it may follow, and before a line
// that is always refused. The place of the refusal says whether the line is good, empty, faulty, or
// of a kind that is not allowed there.
#include "output/everyline.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace cli {

namespace {

// Lines before and after the checked line. Every kind of line is accepted at one of the places.
struct Surroundings {
    std::string_view before;
    std::string_view after;
};

constexpr auto kPlaces = std::to_array<Surroundings>({
    {"v=0\no=- 0 0 IN IP4 0\ns=-\n", ""},        // i= u= e= p= c= b= t= m=
    {"v=0\no=- 0 0 IN IP4 0\ns=-\nt=0 0\n", ""}, // r= z= k= a=
    {"", "o=- 0 0 IN IP4 0\ns=-\n"},             // v=
    {"v=0\n", "s=-\n"},                          // o=
    {"v=0\no=- 0 0 IN IP4 0\n", ""},             // s=
});
constexpr std::string_view kRefused = "?\n"; // no line begins like this

struct Verdict {
    enum { Good, Empty, Faulty, Misplaced } kind;
    sdpline::Error error;
    uint32_t token;
    size_t offset; // of a fault, in the line
};

// `last`: the body ends with the line, and without a line end.
Verdict judgeAt(const Surroundings &place, std::string_view line, bool last) {
    const size_t around = place.before.size() + place.after.size() + kRefused.size() + 1;
    line = line.substr(
        0, SdpGetMaxBodySize() -
               std::min<size_t>(around, SdpGetMaxBodySize())); // longer values are always refused
    std::string text(place.before);
    text.append(line);
    const size_t end = text.size();
    if (!last) {
        text.append("\n").append(place.after).append(kRefused);
    }
    const auto body = sdpline::Body::decode(text);
    if (body) {
        return {last ? Verdict::Good : Verdict::Empty, {}, 0, 0}; // an empty line ends the body
    }
    const sdpline::Error &error = body.error();
    const uint32_t errorClass = error.code & 0x3FF;
    const bool wrongKind =
        errorClass == SDP_ERRCLASS_UNEXPECTED_LINE || errorClass == SDP_ERRCLASS_NOT_SDP;
    if (error.offset > end || (last && wrongKind && error.offset == end)) {
        return {Verdict::Good, {}, 0, 0};
    }
    const size_t offset = error.offset - std::min<size_t>(error.offset, place.before.size());
    return {wrongKind ? Verdict::Misplaced : Verdict::Faulty, error, tokenOf(error), offset};
}

// The verdict at the first place that accepts this kind of line.
Verdict judge(std::string_view line, bool last) {
    Verdict verdict = {};
    for (const Surroundings &place : kPlaces) {
        verdict = judgeAt(place, line, last);
        if (verdict.kind != Verdict::Misplaced) {
            break;
        }
    }
    return verdict;
}

} // namespace

std::vector<Diagnostic> judgeLines(std::string_view body, size_t refusedAt) {
    std::vector<Diagnostic> faults;
    for (size_t feed = body.find('\n', refusedAt); feed != std::string_view::npos;) {
        const size_t begin = feed + 1;
        feed = body.find('\n', begin);
        const bool last = feed == std::string_view::npos;
        if (last && begin == body.size()) {
            break;
        }
        const Verdict verdict = judge(body.substr(begin, feed - begin), last);
        if (verdict.kind == Verdict::Empty) {
            break;
        }
        if (verdict.kind != Verdict::Good) {
            const bool known = verdict.kind == Verdict::Faulty;
            faults.push_back({known ? std::optional(verdict.error) : std::nullopt,
                              std::string(known ? verdict.error.sentence : kLineKindSentence),
                              verdict.token, begin + verdict.offset, true});
        }
    }
    return faults;
}

} // namespace cli

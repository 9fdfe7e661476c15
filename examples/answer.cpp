// Reads an offer from standard input and writes the answer to it (RFC 3264): PCMU, PCMA and
// telephone events are accepted, everything else is rejected. Decisions are written to standard
// error.
//
//     c++ -std=c++20 answer.cpp $(pkg-config --cflags --libs sdpline-negotiate) -o answer_cpp
//     ./answer_cpp < offer.sdp
#include <sdpline/negotiate.hpp>

#include <iostream>
#include <iterator>

namespace {

constexpr const char *kLocal = "v=0\no=answerer 1 1 IN IP4 198.51.100.2\ns=-\n"
                               "c=IN IP4 198.51.100.2\nt=0 0\nm=audio 40000 RTP/AVP 0 8 101\n"
                               "a=rtpmap:101 telephone-event/8000\na=fmtp:101 0-15\n";

sdpline::Result<std::string> answerTo(const std::string &text) {
    const auto offer = sdpline::Body::decode(text);
    const auto local = sdpline::Body::decode(kLocal);
    if (!offer || !local) {
        return offer ? local.error() : offer.error();
    }
    const auto answer = sdpline::answer(*offer, *local);
    if (!answer) {
        return answer.error();
    }
    for (const sdpline::Decision &decision : answer->decisions) {
        std::cerr << decision.sentence << '\n';
    }
    return answer->body.encode();
}

} // namespace

int main() {
    const auto answer = answerTo({std::istreambuf_iterator<char>(std::cin), {}});
    if (!answer) {
        std::cerr << "answer: " << answer.error().message() << '\n';
        return 1;
    }
    return std::cout << *answer << std::flush ? 0 : 1;
}

// The cases of tests/cases/negotiate.
//
//     ## No common codec
//     ```offer                 what is offered; without a v= line the first lines are kOfferHead
//     m=audio 49170 RTP/AVP 0
//     ```local                 what we can do, below kLocalHead; words: first, ours, avp, ports=N,N
//     ```previous              our last description, if there is one
//     ```answer                the expected answer; kLocalHead is left out of it
//     ```decisions             sentences and names of all decisions; "part": of some of them
//
// Other cases: offer and reply (an answer that is judged) with faults and agreement; sent and next
// with faults; sent and wanted with becomes (the next offer); local with capabilities. Instead of
// an output: refused, the name of the reason.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "sdpline/negotiate.hpp"
#include "support/documents.hpp"

namespace negotiate_test {

inline const std::string kOfferHead =
    "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nc=IN IP4 192.0.2.1\nt=0 0\n";
inline const std::string kLocalHead =
    "v=0\no=- 2 1 IN IP4 198.51.100.2\ns=-\nc=IN IP4 198.51.100.2\nt=0 0\n";

using support::Block;
using Case = support::Section;

// Every case of every document. A document that cannot be read ends the program.
std::vector<Case> readCases(const std::string &folder);

// A body of a case with its head, its lines ended by CR LF.
sdpline::Result<sdpline::Body> bodyOf(const Case &current, const std::string &kind);

sdpline::AnswerOptions optionsOf(const Case &current);

// What the library makes of the inputs of a case: a text for each kind of output block.
std::map<std::string, std::string> outputsOf(const Case &current);

std::string textOf(const sdpline::Body &body); // lines ended by LF
std::string textOf(const std::vector<sdpline::Decision> &decisions);
std::string textOf(const sdpline::Agreement &agreement);

// Bodies below the heads, and what is decided when they meet.
inline sdpline::Body offerOf(const std::string &media) {
    return sdpline::Body::decode(kOfferHead + media).value();
}
inline sdpline::Body localOf(const std::string &media) {
    return sdpline::Body::decode(kLocalHead + media).value();
}
inline std::string decisionsOf(const sdpline::Body &offer, const sdpline::Body &local) {
    return textOf(sdpline::answer(offer, local).value().decisions);
}

inline bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

} // namespace negotiate_test

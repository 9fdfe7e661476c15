// Finds bodies in texts of SIP messages of many forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "sdpline/sdpline.hpp"
#include "sip/bodies.hpp"
#include "text/strings.hpp"

namespace {

using Texts = std::vector<std::string>;

Texts bodiesOf(const std::string &text) {
    Texts bodies;
    for (const cli::BodyPlace &place : cli::findBodies(text).bodies) {
        bodies.push_back(text.substr(place.offset, place.size));
    }
    return bodies;
}

// "120: the body is encoded as gzip", with "wrong" or "note" after the offset for lower severities.
Texts problemsOf(const std::string &text) {
    Texts problems;
    for (const cli::Problem &problem : cli::findBodies(text).problems) {
        const std::string kind = problem.kind == cli::Problem::Note    ? " note"
                                 : problem.kind == cli::Problem::Wrong ? " wrong"
                                                                       : "";
        problems.push_back(std::to_string(problem.offset) + kind + ": " + problem.text);
    }
    return problems;
}

const std::string kInvite = "INVITE sip:bob@example.com SIP/2.0\r\nVia: SIP/2.0/UDP pc\r\n";
const std::string kSdp = "v=0\r\no=- 1 1 IN IP4 x\r\ns=-\r\n";

std::string message(const std::string &body, const std::string &headers) {
    return kInvite + headers + "\r\n" + body;
}

std::string withLength(const std::string &body, const std::string &type = "application/sdp") {
    return message(body, "Content-Type: " + type +
                             "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n");
}

std::string withLineFeeds(std::string text) {
    std::erase(text, '\r');
    return text;
}

TEST(Messages, ATextWithoutAnyIsABody) {
    EXPECT_EQ(bodiesOf(kSdp), Texts{kSdp});
    EXPECT_EQ(bodiesOf("hello\n"), Texts{"hello\n"});
    EXPECT_EQ(bodiesOf(""), Texts{""});
    EXPECT_EQ(bodiesOf("\r\n" + kSdp + "INVITE sip:b SIP/2.0\r\n").size(), 1u);
}

TEST(Messages, TheDecoderDropsTheSameBytesBeforeALine) {
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const std::string text = std::string("v=0\n") + byte + "o=- 1 1 IN IP4 x\ns=-\n";
        const bool dropped = cli::kDroppedBeforeLine.find(byte) != std::string_view::npos;
        EXPECT_EQ(static_cast<bool>(sdpline::Body::decode(text)), dropped) << value;
    }
}

TEST(Messages, StartWithRequestOrStatusLine) {
    const std::string rest = "c: application/sdp\r\n\r\n" + kSdp;
    for (const std::string start : {"INVITE sip:b SIP/2.0", "X-a tel:1 SIP/2.0", "SIP/2.0 200 OK",
                                    "SIP/2.0 183", "SIP/2.0 200 "}) {
        EXPECT_EQ(bodiesOf(start + "\r\n" + rest), Texts{kSdp}) << start;
    }
    for (const std::string start :
         {"INVITE sip:b SIP/3.0", " sip:b SIP/2.0", "A B sip:b SIP/2.0", "INVITE b SIP/2.0",
          "SIP/2.0 20 OK", "SIP/2.0 2000", "IN(VITE sip:b SIP/2.0", "SIP/2.0"}) {
        const std::string text = start + "\r\n" + rest;
        EXPECT_EQ(bodiesOf(text), Texts{text}) << start;
    }
}

TEST(Messages, EndAtTheirLength) {
    EXPECT_EQ(bodiesOf(withLength(kSdp) + "after"), Texts{kSdp});
    EXPECT_EQ(problemsOf(withLength(kSdp) + "after"), Texts{});
}

// After the end that the length gives, SDP follows too; or the rest of the body is no SDP.
TEST(Messages, WithALengthThatIsWrongGiveTheirBodyAllTheSame) {
    const std::string type = "c: application/sdp\r\n";
    const std::string size = std::to_string(kSdp.size());
    const auto lengthIs = [&](const std::string &length, const std::string &after = "") {
        return message(kSdp, type + "l: " + length + "\r\n") + after;
    };
    struct Case {
        std::string text;
        std::string problem;
    };
    const std::string says = "0 wrong: the SIP message's Content-Length is ";
    for (const Case &each : {
             Case{lengthIs("5"), "5, which cuts the body: it has " + size + " bytes"},
             Case{lengthIs("0"), "0, which cuts the body: it has " + size + " bytes"},
             Case{lengthIs("20", "12:00 next\r\n"),
                  "20, which cuts the body: it has " + size + " bytes"},
             Case{lengthIs("400"), "400, but only " + size + " bytes of body follow"},
             Case{lengthIs("400", kInvite), "400, but only " + size + " bytes of body follow"},
             Case{lengthIs("40", "12:00 the log goes on\r\n"),
                  "40, but the body's lines end after " + size + " bytes"},
             Case{lengthIs("4x"), "not a number"},
             Case{lengthIs("-1"), "not a number"},
             Case{lengthIs("99999999999999999999999"), "not a number"},
         }) {
        EXPECT_EQ(bodiesOf(each.text), Texts{kSdp}) << each.text;
        EXPECT_EQ(problemsOf(each.text), Texts{says + each.problem}) << each.text;
    }
    EXPECT_EQ(problemsOf("x\n" + lengthIs("400")).front().substr(0, 8), "2 wrong:");
}

TEST(Messages, MayFollowEachOtherWithAnythingBetween) {
    const std::string other = "v=0\r\ns=other\r\n";
    const std::string bye = "BYE sip:b SIP/2.0\r\nContent-Length: 0\r\n\r\n";
    const std::string text = "12:00 received\n" + withLength(kSdp) + bye + "\n12:01 sent\r\n\r\n" +
                             withLength(other) + "12:02 end\n";
    EXPECT_EQ(bodiesOf(text), (Texts{kSdp, other}));
    EXPECT_EQ(problemsOf(text), Texts{});
}

TEST(Messages, WithoutALengthEndBeforeTheNext) {
    const std::string one = message(kSdp, "Content-Type: application/sdp\r\n");
    EXPECT_EQ(bodiesOf(one + "\r\n\r\n" + one), (Texts{kSdp, kSdp}));
    EXPECT_EQ(bodiesOf(withLineFeeds(one + "\r\n" + one)),
              (Texts{withLineFeeds(kSdp), withLineFeeds(kSdp)}));
    EXPECT_EQ(bodiesOf(one + "\r\n\r\n"), Texts{kSdp + "\r\n\r\n"});
}

TEST(Messages, MayHaveFoldedAndCompactHeadersInAnyCase) {
    const std::string length = std::to_string(kSdp.size());
    for (const std::string &headers :
         {"Content-Type:\r\n application/sdp\r\n" + ("CONTENT-LENGTH:\r\n\t" + length) + "\r\n",
          "C : Application/SDP ;charset=utf-8\r\nL : " + length + "\r\n",
          "c: application/sdp;\r\n charset=\"a;b\"\r\nSubject: l: 3\r\nl: " + length + "\r\n",
          "nonsense\r\nc:application/sdp\r\nl:" + length + "\r\n"}) {
        EXPECT_EQ(bodiesOf(message(kSdp, headers) + "after"), Texts{kSdp}) << headers;
    }
}

// The length in a text that lost its carriage returns still counts them.
TEST(Messages, WithBareLineFeedsMayCountCrLf) {
    const std::string body = withLineFeeds(kSdp);
    const std::string text = withLineFeeds(withLength(kSdp));
    EXPECT_EQ(bodiesOf(text), Texts{body});
    EXPECT_EQ(bodiesOf(text + "\n" + text), (Texts{body, body}));
    EXPECT_EQ(bodiesOf(text.substr(0, text.size() - 1)), Texts{body.substr(0, body.size() - 1)});
    EXPECT_EQ(bodiesOf(withLineFeeds(withLength(body)) + "\n" + text), (Texts{body, body}));
    EXPECT_EQ(bodiesOf(withLineFeeds(withLength(body)) + "after"), Texts{body});
}

TEST(Messages, WithAnEncodedBodyAreProblems) {
    const std::string type = "c: application/sdp\r\n";
    EXPECT_EQ(problemsOf(message(kSdp, type + "e: gzip\r\n")),
              Texts{"0: the body is encoded as gzip"});
    EXPECT_EQ(bodiesOf(message(kSdp, type + "Content-Encoding: identity\r\n")), Texts{kSdp});
}

TEST(Messages, SayWhatOfABodyIsNotRead) {
    const std::string text = withLength(kSdp + " \r\n\r\nmore\r\n");
    EXPECT_EQ(problemsOf(text), Texts{std::to_string(text.find("more")) +
                                      " note: what follows an empty line in a body is not read"});
    EXPECT_EQ(problemsOf(withLength(kSdp + "\r\n \r\n")), Texts{});
}

TEST(Messages, AfterOneWithAWrongLengthAreFound) {
    const std::string bad = message("v=0\r\n", "c: application/sdp\r\nl: x\r\n");
    EXPECT_EQ(bodiesOf(bad + withLength(kSdp)), (Texts{"v=0\r\n", kSdp}));
    EXPECT_EQ(problemsOf(bad + withLength(kSdp)).size(), 1u);
}

TEST(Messages, WithoutAnySdpAreAProblem) {
    EXPECT_EQ(problemsOf(withLength("hello", "text/plain")),
              Texts{"0: the SIP message carries no application/sdp body"});
    EXPECT_EQ(problemsOf(kInvite), Texts{"0: the SIP message carries no application/sdp body"});
    EXPECT_EQ(problemsOf("x\n" + kInvite + "\r\n" + kInvite),
              Texts{"2: no SIP message carries an application/sdp body"});
}

// A message whose headers never end does not take the headers of the next one.
TEST(Messages, WithoutAnEmptyLineEndBeforeTheNext) {
    EXPECT_EQ(bodiesOf(kInvite + "c: application/sdp\r\n" + withLength(kSdp)).back(), kSdp);
}

// ---- Bodies without messages

TEST(Bodies, MayFollowEachOtherAfterEmptyLines) {
    for (const std::string between : {"\r\n", "\n", " \r\n\r\n\n", "\r\n\r\n\r\n"}) {
        EXPECT_EQ(bodiesOf(kSdp + between + kSdp + between + kSdp), (Texts{kSdp, kSdp, kSdp}));
        EXPECT_EQ(problemsOf(kSdp + between + kSdp), Texts{});
    }
    EXPECT_EQ(bodiesOf(kSdp + kSdp), Texts{kSdp + kSdp});
    EXPECT_EQ(bodiesOf(kSdp + "\r\n\r\n"), Texts{kSdp + "\r\n\r\n"});
    EXPECT_EQ(bodiesOf("\r\n" + kSdp + "\r\n" + kSdp), (Texts{"\r\n" + kSdp, kSdp}));
}

TEST(Bodies, SayWhatIsNotReadBetweenThem) {
    const std::string text = kSdp + "\r\nhello\r\nworld\r\n" + kSdp + "\r\nend";
    EXPECT_EQ(bodiesOf(text), (Texts{kSdp, kSdp}));
    const std::string says = " note: what follows an empty line in a body is not read";
    EXPECT_EQ(problemsOf(text), (Texts{std::to_string(text.find("hello")) + says,
                                       std::to_string(text.find("end")) + says}));
}

TEST(Bodies, MayBeFollowedByMessages) {
    EXPECT_EQ(bodiesOf(kSdp + "\r\n" + withLength(kSdp)), (Texts{kSdp, kSdp}));
}

TEST(Bodies, KnowTheirLines) {
    const cli::Bodies found = cli::findBodies(kSdp + "\r\nx\r\n" + kSdp);
    ASSERT_EQ(found.bodies.size(), 2u);
    EXPECT_EQ(found.bodies[0].line, 1u);
    EXPECT_EQ(found.bodies[1].line, 6u);
    ASSERT_EQ(found.problems.size(), 1u);
    EXPECT_EQ(found.problems[0].line, 5u);
}

// A text that is read in parts: the results are the same wherever the earlier text is dropped.
TEST(Bodies, AreFoundInParts) {
    const size_t ahead = cli::BodyFinder::kAhead;
    const std::string gap = '\n' + std::string(ahead + 100, 'x') + '\n';
    const std::string text = gap + withLength(kSdp) + gap + withLength(kSdp, "text/plain") + gap +
                             withLength(kSdp) + gap;
    cli::Bodies found;
    cli::BodyFinder finder;
    size_t passed = 0;
    do {
        const std::string_view part = std::string_view(text).substr(passed, ahead + passed % 1000);
        passed += finder.take(part, passed + part.size() == text.size(), found);
    } while (passed < text.size());
    finder.finish(found);
    ASSERT_EQ(found.bodies.size(), 2u);
    EXPECT_EQ(text.substr(found.bodies[0].offset, found.bodies[0].size), kSdp);
    EXPECT_EQ(text.substr(found.bodies[1].offset, found.bodies[1].size), kSdp);
    EXPECT_EQ(found.bodies[0].line, 8u);
    EXPECT_EQ(found.problems.size(), 0u);
    const cli::Bodies whole = cli::findBodies(text);
    ASSERT_EQ(whole.bodies.size(), 2u);
    EXPECT_EQ(whole.bodies[1].offset, found.bodies[1].offset);
    EXPECT_EQ(whole.bodies[1].line, found.bodies[1].line);
}

// Parts far shorter than those that are always sufficient: early decisions are the same.
TEST(Bodies, AreFoundInShortParts) {
    std::mt19937 random(18);
    const auto below = [&random](size_t limit) { return random() % limit; };
    std::string text = "a log\r\n";
    while (text.size() < 1'500'000) {
        std::string message = withLength(kSdp, below(4) != 0 ? "application/sdp" : "text/plain");
        const size_t length = message.find("Content-Length");
        switch (below(8)) {
        case 0: message.erase(length, message.find('\n', length) + 1 - length); break;
        case 1: message.insert(length + 16, 1, static_cast<char>('1' + below(9))); break;
        case 2: message += message; break;
        case 4: message = withLineFeeds(message); break;
        case 3: message += std::string(below(20000), below(2) != 0 ? ' ' : 'y') + '\n'; break;
        default: break;
        }
        text += message + (below(2) != 0 ? "\r\n12:00 sent\r\n" : "");
    }
    cli::Bodies found;
    cli::BodyFinder finder;
    for (size_t passed = 0, size = 40'000; passed < text.size();) {
        const std::string_view part = std::string_view(text).substr(passed, size);
        const size_t done = finder.take(part, passed + part.size() == text.size(), found);
        passed += done;
        size = done != 0 ? 20'000 + below(40'000) : size_t(cli::BodyFinder::kAhead);
    }
    finder.finish(found);
    const cli::Bodies whole = cli::findBodies(text);
    ASSERT_EQ(found.bodies.size(), whole.bodies.size());
    ASSERT_EQ(found.messages.size(), whole.messages.size());
    ASSERT_EQ(found.problems.size(), whole.problems.size());
    EXPECT_GT(whole.problems.size(), 100u);
    const auto isSame = [](const cli::BodyPlace &a, const cli::BodyPlace &b) {
        return a.offset == b.offset && a.size == b.size && a.line == b.line;
    };
    EXPECT_TRUE(std::ranges::equal(found.bodies, whole.bodies, isSame));
    EXPECT_TRUE(std::ranges::equal(found.messages, whole.messages, isSame));
    for (size_t i = 0; i < whole.problems.size(); ++i) {
        EXPECT_EQ(found.problems[i].text, whole.problems[i].text);
        EXPECT_EQ(found.problems[i].line, whole.problems[i].line);
    }
}

// ---- Multipart

std::string multipart(const Texts &parts, const std::string &boundary) {
    std::string body = "preamble\r\n";
    for (const std::string &part : parts) {
        body += "--" + boundary + "\r\n" + part + "\r\n";
    }
    return body + "--" + boundary + "--\r\nepilogue\r\n";
}

const std::string kPart = "Content-Type: application/sdp\r\n\r\n" + kSdp;

TEST(Multipart, GivesItsSdpParts) {
    const Texts parts = {
        "Content-Type: text/plain\r\n\r\nv=0", kPart, "\r\nno header",
        "content-type:application/SDP\r\nContent-Transfer-Encoding: 8bit\r\n\r\nx"};
    for (const std::string type :
         {"multipart/mixed;boundary=b1", "Multipart/Related; type=\"a\\\";b\"; BOUNDARY=\"b1\"",
          "multipart/alternative;\r\n boundary=b1 ; x=y"}) {
        EXPECT_EQ(bodiesOf(withLength(multipart(parts, "b1"), type)), (Texts{kSdp, "x"})) << type;
    }
}

TEST(Multipart, TakesOnlyItsOwnDelimiters) {
    const std::string body = "--b\r\n" + kPart + "--bc\r\n --b\r\n--b--x\r\n--b \r\n\r\n--b--\r\n";
    const Texts found = bodiesOf(withLength(body, "multipart/mixed;boundary=b"));
    EXPECT_EQ(found, Texts{kSdp + "--bc\r\n --b\r\n--b--x"});
}

TEST(Multipart, WithoutAClosingDelimiterEndsWithTheMessage) {
    EXPECT_EQ(bodiesOf(withLength("--b\r\n" + kPart, "multipart/mixed;boundary=b") + "after"),
              Texts{kSdp});
}

TEST(Multipart, MayBeAPartItself) {
    std::string part = kPart;
    for (int depth = 0; depth < 7; ++depth) {
        const std::string boundary = "b" + std::to_string(depth);
        part = "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n" +
               multipart({part}, boundary);
    }
    EXPECT_EQ(bodiesOf(withLength(multipart({part}, "top"), "multipart/mixed;boundary=top")),
              Texts{kSdp});
    part = "Content-Type: multipart/mixed; boundary=b7\r\n\r\n" + multipart({part}, "b7");
    const auto problems =
        problemsOf(withLength(multipart({part}, "top"), "multipart/mixed;boundary=top"));
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems[0].find("the multipart bodies are nested too deeply"), std::string::npos);
}

TEST(Multipart, WithoutABoundaryIsAProblem) {
    for (const std::string type :
         {"multipart/mixed", "multipart/mixed; boundary=", "multipart/mixed; x=\"boundary=b\""}) {
        EXPECT_EQ(problemsOf(withLength(kSdp, type)),
                  Texts{"0: the multipart body's Content-Type has no boundary"})
            << type;
    }
}

TEST(Multipart, ReportsEncodedPartsAtThePart) {
    const std::string body = "--b\r\nContent-Transfer-Encoding: base64\r\n" + kPart + "\r\n--b--";
    const std::string text = withLength(body, "multipart/mixed;boundary=b");
    EXPECT_EQ(problemsOf(text), Texts{std::to_string(text.find("Content-Transfer")) +
                                      ": the body is encoded as base64"});
}

// ---- Random texts

TEST(Messages, OfAnyBytesGivePlacesInsideTheText) {
    const std::vector<std::string> pieces = {kInvite,
                                             "SIP/2.0 200 OK\n",
                                             "c: application/sdp\r\n",
                                             "l: 20\n",
                                             "l: 9\r\n",
                                             "\r\n",
                                             "\n",
                                             "c: multipart/mixed;boundary=b\r\n",
                                             "--b\r\n",
                                             "--b--",
                                             kSdp,
                                             " folded\r\n",
                                             "\r",
                                             "\"",
                                             "x",
                                             std::string(1, '\0')};
    std::mt19937 engine(3);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (size_t n = engine() % 14; n > 0; --n) {
            text += pieces[engine() % pieces.size()];
        }
        const cli::Bodies found = cli::findBodies(text);
        EXPECT_FALSE(found.bodies.empty() && found.problems.empty());
        size_t end = 0;
        for (const cli::BodyPlace &place : found.bodies) {
            EXPECT_GE(place.offset, end);
            end = place.offset + place.size;
            EXPECT_LE(end, text.size());
        }
        for (const cli::Problem &problem : found.problems) {
            EXPECT_LE(problem.offset, text.size());
        }
    }
}

} // namespace

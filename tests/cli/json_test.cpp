// Bodies to JSON and back, without loss; and many kinds of JSON that are no body.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "output/tree.hpp"
#include "support/bodies.hpp"
#include "support/cases.hpp"
#include "support/generator.hpp"
#include "json/json.hpp"
#include "json/readback.hpp"

namespace {

using nlohmann::json;
using support::Configured;

support::Body fromJson(const json &document, std::string &error) {
    std::optional<sdpline::Body> body = cli::bodyOf(document, error);
    return support::Body(body ? std::move(*body).release() : nullptr);
}

// Writes and parses the text of the document, as two runs of the program do.
support::Body throughJson(SdpLine &line, std::string &error) {
    const json document = json::parse(cli::jsonOf(line).dump());
    return fromJson(document, error);
}

void expectNoLoss(const std::string &text) {
    const support::Body body = support::decoded(text);
    ASSERT_NE(body, nullptr) << support::readable(text);
    std::string error;
    const support::Body back = throughJson(*body, error);
    ASSERT_NE(back, nullptr) << error << '\n' << support::readable(text);
    EXPECT_EQ(cli::describeTree(*back), cli::describeTree(*body));
    EXPECT_EQ(support::encoded(*back), support::encoded(*body));
}

TEST(Json, KeepsEveryAcceptedCase) {
    size_t accepted = 0;
    for (const support::Case &current : support::readCases(SDPLINE_CASES)) {
        if (!current.refused) {
            SCOPED_TRACE(current.file + ':' + std::to_string(current.at));
            const Configured configured(current);
            expectNoLoss(current.body);
            ++accepted;
        }
    }
    EXPECT_GT(accepted, 100u);
}

TEST(Json, KeepsGeneratedBodiesUnderEveryStyle) {
    std::mt19937 engine(20260401);
    for (uint32_t i = 0; i < 600; ++i) {
        const Configured configured(i % 3, i % 2, 1 + i / 3 % 3);
        expectNoLoss(support::generateBody(engine));
    }
}

// ---- Documents that are no body

const char kBody[] =
    "v=0\no=- 1 2 IN IP4 192.0.2.1\ns=-\nc=IN IP4 192.0.2.1/5/2\nt=0 0\nr=7d 1h 0\n"
    "a=rtpmap:0 PCMU/8000\nm=audio 5004 RTP/AVP 0 8\na=curr:qos local none\n"
    "m=text 5006 UDP/X 1\na=ipbcp:1 Request\na=ecan:fb on -\n";

json sample() {
    const support::Body body = support::decoded(kBody);
    return json::parse(cli::jsonOf(*body).dump());
}

std::string errorOf(const json &document) {
    std::string error;
    const support::Body body = fromJson(document, error);
    EXPECT_EQ(body == nullptr, !error.empty());
    return error;
}

// The sample with one field replaced.
std::string errorWith(const char *field, const json &value) {
    json document = sample();
    document[json::json_pointer(field)] = value;
    return errorOf(document);
}

std::string errorWithout(const char *parent, const char *field) {
    json document = sample();
    document[json::json_pointer(parent)].erase(field);
    return errorOf(document);
}

TEST(JsonIn, NamesTheFieldThatIsWrong) {
    const std::string aNumber = ": expected a number from 0 to 4294967295, found ";
    EXPECT_EQ(errorOf(sample()), "");
    EXPECT_EQ(errorOf(json(3)), "/: expected an object, found 3");
    EXPECT_EQ(errorOf(json::object()), "/version: missing");
    EXPECT_EQ(errorWith("/version", -1), "/version" + aNumber + "-1");
    EXPECT_EQ(errorWith("/version", 4294967296), "/version" + aNumber + "4294967296");
    EXPECT_EQ(errorWith("/version", 1.5), "/version" + aNumber + "1.5");
    EXPECT_EQ(errorWith("/version", "0"), "/version" + aNumber + "\"0\"");
    EXPECT_EQ(errorWith("/version", std::string(50, 'x')),
              "/version" + aNumber + '"' + std::string(35, 'x') + "...\"");
    EXPECT_EQ(errorWith("/media/0/port", nullptr), "/media/0/port: missing");
    EXPECT_EQ(errorWith("/media/1/prot", 1), "/media/1: unexpected field \"prot\"");
    EXPECT_EQ(errorWith("/media", 1), "/media: expected an array, found 1");
    EXPECT_EQ(errorWith("/media/0", json::array()), "/media/0: expected an object, found an array");
    EXPECT_EQ(errorWith("/times/0/repeats/0/times", json::array()),
              "/times/0/repeats/0/times: expected at least one item, found none");
    EXPECT_EQ(errorWith("/attributes/0/rtpmap/profile", 36),
              "/attributes/0/rtpmap/profile: expected a number from 0 to 35, found 36");
    EXPECT_EQ(errorWith("/media/1/attributes/0/ipbcp/version", 256),
              "/media/1/attributes/0/ipbcp/version: expected a number from 0 to 255, found 256");
    EXPECT_EQ(errorWithout("/media/0", "format"), "/media/0/format: missing");
}

TEST(JsonIn, TakesOnlyCodesThatCanBeWritten) {
    EXPECT_EQ(errorWith("/origin/netType", 3),
              "/origin/netType: expected a number from 1 to 2, found 3");
    EXPECT_EQ(errorWith("/origin/netType/code", 0),
              "/origin/netType/code: expected a number from 1 to 2, found 0");
    EXPECT_EQ(errorWith("/origin/addrType/word", "IP6"),
              "/origin/addrType/word: expected the word for code 1, found \"IP6\"");
    EXPECT_EQ(errorWith("/origin/addrType/word", 1),
              "/origin/addrType/word: expected \"IP4\" or \"IP6\", found 1");
    EXPECT_EQ(errorWith("/attributes/0/type", 41),
              "/attributes/0/type: expected a number from 1 to 40, found 41");
    EXPECT_EQ(errorWith("/attributes/0/type", "RTPMAP"),
              "/attributes/0/type: expected the name of an attribute, found \"RTPMAP\"");
    EXPECT_EQ(errorWith("/media/0/attributes/0/precondition/direction", 4),
              "/media/0/attributes/0/precondition/direction: expected a number from 0 to 3, found "
              "4");
    EXPECT_EQ(errorWith("/media/1/attributes/1/ecan/direction", 0), "");
    EXPECT_EQ(errorWith("/connection/address/type", 0),
              "/connection/address/type: expected a number from 1 to 2, found 0");
    EXPECT_EQ(errorWith("/connection/address/ipv4", "192.0.2.256"),
              "/connection/address/ipv4: expected an address, found \"192.0.2.256\"");
}

TEST(JsonIn, WantsTheOtherTextExactlyWithItsCode) {
    const std::string message = "expected an \"other\" text with code 7 and with no other code";
    EXPECT_EQ(errorWith("/media/0/type", 7), "/media/0/type: " + message);
    EXPECT_EQ(errorWith("/media/0/type/other", "text"), "/media/0/type: " + message);
    EXPECT_EQ(errorWithout("/media/1/type", "other"), "/media/1/type: " + message);
}

TEST(JsonIn, TakesWordsAndNumbersForCodes) {
    json document = sample();
    document["origin"]["netType"] = "ATM";
    document["origin"]["addrType"] = 2;
    document["media"][0]["type"] = "video";
    document["media"][1]["type"] = "message";
    document["media"][1]["protocol"] = "RTP/SAVP";
    document["media"][1]["format"] = {{"type", 1}, {"payloads", {1, 2}}};
    std::string error;
    const support::Body body = fromJson(document, error);
    ASSERT_NE(body, nullptr) << error;
    const std::string text = support::encoded(*body);
    EXPECT_NE(text.find("o=- 1 2 ATM IP6 192.0.2.1\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("m=video 5004 RTP/AVP 0 8\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("m=message 5006 RTP/SAVP 1 2\r\n"), std::string::npos) << text;
}

TEST(JsonIn, KeepsBytesThatAreNotUtf8) {
    json document = sample();
    document["name"] = {{"hex", "c3a9ff0D"}};
    std::string error;
    const support::Body body = fromJson(document, error);
    ASSERT_NE(body, nullptr) << error;
    EXPECT_NE(support::encoded(*body).find("s=\xc3\xa9\xff\r\r\n"), std::string::npos);
    EXPECT_EQ(cli::jsonOf(*body)["name"], nlohmann::ordered_json({{"hex", "c3a9ff0d"}}));
    EXPECT_EQ(errorWith("/name", {{"hex", "c"}}),
              "/name/hex: expected pairs of hexadecimal digits, found \"c\"");
    EXPECT_EQ(errorWith("/name", {{"hex", "g0"}}),
              "/name/hex: expected pairs of hexadecimal digits, found \"g0\"");
    EXPECT_EQ(errorWith("/name", {{"hex", 1}}),
              "/name: expected a string or {\"hex\": \"...\"}, found an object");
}

// A value with a line feed would be two lines.
TEST(JsonIn, RefusesTextsThatNoLineCanCarry) {
    const std::string message =
        "/name: expected a text of one line, found a line feed or a NUL in it";
    EXPECT_EQ(errorWith("/name", "x\na=evil"), message);
    EXPECT_EQ(errorWith("/name", std::string("x\0y", 3)), message);
    EXPECT_EQ(errorWith("/name", {{"hex", "0a"}}), message);
    EXPECT_EQ(errorWith("/media/0/type", "x\n"), "/media/0/type" + message.substr(5));
}

TEST(JsonIn, RefusesMorePayloadsThanALineHolds) {
    json payloads = json::array();
    for (int i = 0; i < 100; ++i) {
        payloads.push_back(i);
    }
    EXPECT_EQ(errorWith("/media/0/format/payloads", payloads), "");
    payloads.push_back(100);
    EXPECT_EQ(errorWith("/media/0/format/payloads", payloads),
              "/media/0/format/payloads: expected at most 100 payload numbers, found 101");
}

// ---- Random JSON

// Every value in the document.
void collect(json &value, std::vector<json *> &places) {
    places.push_back(&value);
    if (value.is_structured()) {
        for (json &inner : value) {
            collect(inner, places);
        }
    }
}

json someValue(std::mt19937 &engine, const json &document) {
    switch (engine() % 12) {
    case 0: return nullptr;
    case 1: return engine() % 50;
    case 2: return engine();
    case 3: return -static_cast<int>(engine() % 3);
    case 4: return 1e300;
    case 5: return "text";
    case 6: return std::string(engine() % 2000, 'x');
    case 7: return json::array();
    case 8: return json::object();
    case 9: return {{"hex", "ff"}};
    case 10: return engine() % 2 == 0;
    default: return document;
    }
}

void injure(json &document, std::mt19937 &engine) {
    std::vector<json *> places;
    collect(document, places);
    json &place = *places[engine() % places.size()];
    switch (engine() % 4) {
    case 0:
        if (place.is_object() && !place.empty()) {
            place.erase(std::next(place.begin(), static_cast<int>(engine() % place.size())).key());
        }
        break;
    case 1:
        if (place.is_array()) {
            place.push_back(someValue(engine, document));
        }
        break;
    default: place = someValue(engine, document); break;
    }
}

// The JSON of the decoded text of a body.
json readBack(const std::string &text, bool avpf) {
    const Configured configured(SDP_T38_STYLE_FLAG, avpf ? 1 : 0, SDP_LINE_END_CRLF);
    const support::Body body = support::decoded(text);
    return body ? json::parse(cli::jsonOf(*body).dump()) : json();
}

// The document with every code as a number with its word, and no empty list.
json canonical(const json &document) {
    std::string error;
    const support::Body body = fromJson(document, error);
    return body ? json::parse(cli::jsonOf(*body).dump()) : json();
}

// A document that is accepted is written to a text that is read back unchanged, or is not written.
TEST(JsonIn, TakesOrRefusesAnyJson) {
    std::mt19937 engine(7);
    size_t taken = 0;
    size_t written = 0;
    size_t refused = 0;
    for (int i = 0; i < 1200; ++i) {
        const support::Body original = support::decoded(support::generateBody(engine));
        json document = json::parse(cli::jsonOf(*original).dump());
        for (size_t n = engine() % 3; n < 3; ++n) {
            injure(document, engine);
        }
        std::string error;
        const support::Body body = fromJson(document, error);
        if (!body) {
            EXPECT_EQ(error.front(), '/') << error;
            EXPECT_FALSE(cli::textOfJson(document, error));
            ++refused;
            continue;
        }
        ++taken;
        std::string problem;
        EXPECT_NE(support::encoded(*body), "") << document.dump();
        const std::optional<std::string> text = cli::textOfJson(document, problem);
        EXPECT_NE(text.has_value(), !problem.empty());
        if (text) {
            ++written;
            const json wanted = canonical(document);
            EXPECT_TRUE(readBack(*text, false) == wanted || readBack(*text, true) == wanted)
                << support::readable(*text) << '\n'
                << document.dump();
        }
    }
    EXPECT_GT(taken, 50u);
    EXPECT_GT(written, 20u);
    EXPECT_GT(refused, 400u);
}

// ---- Read back

// The text of the sample with one field replaced, or why there is none.
std::string textWith(const char *field, const json &value) {
    json document = sample();
    document[json::json_pointer(field)] = value;
    std::string error;
    const std::optional<std::string> text = cli::textOfJson(document, error);
    EXPECT_NE(text.has_value(), !error.empty());
    return text ? "written" : error;
}

TEST(JsonReadBack, RefusesWhatADecoderWould) {
    EXPECT_EQ(textWith("/name", "x"), "written");
    EXPECT_EQ(textWith("/name", "").substr(0, 29), "line 3, \"s=\": would be refuse");
    EXPECT_EQ(textWith("/uri", "").substr(0, 29), "line 4, \"u=\": would be refuse");
    EXPECT_EQ(textWith("/origin/userName", "a b").substr(0, 14), "line 2, \"o=a b");
    EXPECT_EQ(textWith("/origin/sessionId", "x").substr(0, 14), "line 2, \"o=- x");
    EXPECT_EQ(textWith("/origin/address", "").substr(0, 10), "line 2, \"o");
    EXPECT_EQ(textWith("/media/0/format/payloads", json::array()).substr(0, 24),
              "line 8, \"m=audio 5004 RT");
    EXPECT_EQ(textWith("/media/1/format/text", "1 2").substr(0, 16), "line 10, \"m=text");
    EXPECT_EQ(textWith("/media/1/type", "a b").substr(0, 16), "line 10, \"m=a b ");
    EXPECT_EQ(textWith("/origin/netType", "ATM").substr(0, 14), "line 2, \"o=- 1");
    EXPECT_EQ(textWith("/name", "x\na=evil"),
              "/name: expected a text of one line, found a line feed or a NUL in it");
    EXPECT_EQ(textWith("/name", std::string(1024, 'x')).substr(0, 12), "line 3, \"s=x");
    EXPECT_EQ(textWith("/attributes", json(400, {{"type", 9}, {"text", "0 abcdefgh"}})),
              "the body would be 7784 bytes long, more than 4093");
}

TEST(JsonReadBack, RefusesWhatWouldChange) {
    EXPECT_EQ(textWith("/times/1", {{"start", 1}, {"stop", 2}}), "/times/1: would be lost");
    EXPECT_EQ(textWith("/attributes/0/rtpmap/profile", 3),
              "/attributes/0/rtpmap/profile: would be read back as 1");
    EXPECT_EQ(textWith("/attributes/0/rtpmap/name", ""),
              "/attributes/0/rtpmap/profile: would be read back as 0");
    EXPECT_EQ(textWith("/media/0/ports", 0), "/media/0/ports: would be read back as 1");
    EXPECT_EQ(textWith("/media/1/protocol", {{"code", 7}, {"other", "udp"}}),
              "/media/1/protocol/code: would be read back as 2");
    EXPECT_EQ(textWith("/media/0/attributes/0/precondition/strength", 1),
              "/media/0/attributes/0/precondition/strength/code: would be read back as 0");
    EXPECT_EQ(textWith("/media/1/attributes/0/ipbcp/reserved8", 1),
              "/media/1/attributes/0/ipbcp/reserved8: would be read back as 0");
    EXPECT_EQ(textWith("/connection/ttl", nullptr).substr(0, 10), "/connectio");
}

TEST(JsonReadBack, TakesAnEmptyListForNone) {
    for (const char *const field : {"/emails", "/phones", "/bandwidths", "/attributes",
                                    "/times/0/repeats", "/media/0/attributes"}) {
        EXPECT_EQ(textWith(field, json::array()), "written") << field;
    }
}

TEST(JsonReadBack, SetsTheDecoderForTheBodyAndBack) {
    EXPECT_EQ(textWith("/media/0/protocol", "RTP/AVPF"), "written");
    EXPECT_EQ(textWith("/media/1/protocol", {{"code", 7}, {"other", "RTP/AVPF"}}), "written");
    EXPECT_EQ(SdpGetSupMedProtoRtpAvpf(), 0u);
}

// Their word has no code, but payload numbers.
TEST(JsonReadBack, TakesMediaOfTheRtpFamily) {
    json document = sample();
    document["media"][1]["protocol"] = "UDP/TLS/RTP/SAVPF";
    document["media"][1]["format"] = {{"type", 1}, {"payloads", {111, 0}}};
    std::string error;
    const std::optional<std::string> text = cli::textOfJson(document, error);
    ASSERT_TRUE(text) << error;
    EXPECT_NE(text->find("m=text 5006 UDP/TLS/RTP/SAVPF 111 0\r\n"), std::string::npos) << *text;
    EXPECT_EQ(SdpGetSupMedProtoRtpFamily(), 0u);
    SdpSetSupMedProtoRtpFamily(1);
    expectNoLoss(*text);
    SdpSetSupMedProtoRtpFamily(0);
    document["media"][1]["protocol"] = "UDP/TLS";
    EXPECT_FALSE(cli::textOfJson(document, error));
    EXPECT_EQ(error.substr(0, 18), "line 10, \"m=text 5");
}

TEST(JsonReadBack, WritesFlagsSoThatNoneIsLost) {
    json document = sample();
    document["attributes"].push_back({{"type", "T38FaxFillBitRemoval"}, {"value", 1}});
    std::string error;
    EXPECT_NE(cli::textOfJson(document, error)->find("a=T38FaxFillBitRemoval\r\n"),
              std::string::npos);
    document["attributes"].push_back({{"type", "T38FaxTranscodingMMR"}, {"value", 0}});
    EXPECT_NE(cli::textOfJson(document, error)->find("a=T38FaxTranscodingMMR:0\r\n"),
              std::string::npos);
    EXPECT_EQ(SdpGetT380ptCfg(), static_cast<uint32_t>(SDP_T38_STYLE_FLAG));
    const Configured configured(SDP_T38_STYLE_FLAG_TOO, 0, SDP_LINE_END_CRLF);
    EXPECT_FALSE(cli::textOfJson(document, error));
    EXPECT_EQ(error, "/attributes/2: would be lost");
}

// A decoder reads its lines once they have the expected line ends.
TEST(JsonReadBack, ReadsOtherLineEndsToo) {
    for (const uint32_t lineEnd : {SDP_LINE_END_CR, SDP_LINE_END_LF}) {
        const Configured configured(SDP_T38_STYLE_FLAG, 0, lineEnd);
        EXPECT_EQ(textWith("/name", "x"), "written");
        EXPECT_EQ(textWith("/name", "x\ry").starts_with("line 4, \"y\": would be refused: "),
                  lineEnd == SDP_LINE_END_CR);
        if (lineEnd == SDP_LINE_END_LF) {
            EXPECT_EQ(textWith("/name", "x\r"), "/name: would be read back as \"x\"");
        }
    }
}

} // namespace

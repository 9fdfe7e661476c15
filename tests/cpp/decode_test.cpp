// Whole bodies: from text, to text, and the ownership of memory.
#include <array>
#include <mutex>
#include <span>
#include <type_traits>
#include <utility>

#include "cpp/cpptest.hpp"
#include "support/allocations.hpp"

using namespace cpptest;
using sdpline::Body;
using sdpline::Fault;
using support::Held;

namespace {

// A log hook that decodes, and the first entry of each decode that it receives.
class DecodingHook {
public:
    DecodingHook() : before_(g_gpfnSipLmLogHndlr) { g_gpfnSipLmLogHndlr = decode; }
    ~DecodingHook() { g_gpfnSipLmLogHndlr = before_; }
    DecodingHook(const DecodingHook &) = delete;
    DecodingHook &operator=(const DecodingHook &) = delete;

    static inline int calls = 0;
    static inline sdpline::Error error;

private:
    static void decode(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                       const char *, ...) {
        const auto body = Body::decode(kPlain);
        if (calls++ == 0) {
            error = body ? sdpline::Error{} : body.error();
        }
    }

    SipLmLogHndlr before_;
};

void expectBusy() {
    EXPECT_GT(std::exchange(DecodingHook::calls, 0), 0);
    EXPECT_EQ(DecodingHook::error.fault, Fault::Busy);
    EXPECT_EQ(DecodingHook::error.message(),
              "this thread is decoding already: a log hook must not decode");
}

} // namespace

static_assert(std::is_nothrow_move_constructible_v<Body>);
static_assert(std::is_nothrow_move_assignable_v<Body>);
static_assert(!std::is_copy_constructible_v<Body>);

TEST(CppDecode, WhatIsReadIsWrittenBack) {
    EXPECT_EQ(written(decoded(kEveryLine)), kEveryLine);
}

TEST(CppDecode, ARefusalTellsCodePlaceAndSentence) {
    const std::string text = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nc=IN IP4 192.0.2.300\r\n";
    const auto body = Body::decode(text);
    ASSERT_FALSE(body);
    EXPECT_EQ(body.error().fault, Fault::Library);
    EXPECT_EQ(body.error().code & 0x3FF, std::uint32_t{SDP_ERRCLASS_FIELD_SYNTAX});
    EXPECT_EQ(body.error().line, 4u);
    EXPECT_EQ(body.error().column, 18u);
    EXPECT_EQ(body.error().offset, text.find("300"));
    EXPECT_EQ(body.error().sentence, "expected an octet of at most 255");
    EXPECT_EQ(body.error().function, "sdpConnectionFieldAddrIpv4");
    EXPECT_EQ(body.error().source, "sdpparser");
    EXPECT_EQ(body.error().check, "ConnLastOctetRange");
    EXPECT_EQ(body.error().message(), "4:18: expected an octet of at most 255 "
                                      "(sdpparser sdpConnectionFieldAddrIpv4, 0x05035065)");
}

TEST(CppDecode, ALengthOutOfBoundsHasNoPlace) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{SDP_MAX_BODY + 1}}) {
        const auto body = Body::decode(std::string(size, 'v'));
        ASSERT_FALSE(body);
        EXPECT_EQ(body.error().line, 0u);
        EXPECT_NE(body.error().code, 0u);
        EXPECT_FALSE(body.error().sentence.empty());
    }
    EXPECT_FALSE(Body::decode(std::string_view()));
    EXPECT_FALSE(Body::decode(std::span<const std::byte>()));
}

TEST(CppDecode, ThePlaceOfAnEarlierRefusalIsNotTold) {
    ASSERT_FALSE(Body::decode("v=0\r\nx=\r\n"));
    support::Allocations::failAt(1); // the block: the parser is not reached
    const auto body = Body::decode(kPlain);
    support::Allocations::reset();
    ASSERT_FALSE(body);
    EXPECT_EQ(body.error().line, 0u);
    EXPECT_EQ(body.error().function, "SdpLibDecodeSdp");
}

// The parser continues without memory for an unknown protocol; the C++ API returns an error.
TEST(CppDecode, EveryFailedRequestIsAFailure) {
    support::Allocations::reset();
    ASSERT_TRUE(Body::decode(kEveryLine));
    const std::uint32_t requests = support::Allocations::count();
    EXPECT_GT(requests, 100u);
    for (std::uint32_t n = 1; n <= requests; ++n) {
        support::Allocations::failAt(n);
        EXPECT_FALSE(Body::decode(kEveryLine)) << n;
    }
    support::Allocations::reset();
}

TEST(CppDecode, ALogHookThatDecodesIsRefused) {
    const DecodingHook hook;
    const auto refused = Body::decode("v=0\r\nx=\r\n");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().line, 2u);
    expectBusy();

    Body body = decoded(kPlain);
    EXPECT_FALSE(body.attributes().add("ptime:20ms"));
    expectBusy();

    const SipString text = {3, const_cast<char *>("v=1")};
    SdpLine *line = nullptr;
    {
#ifndef SDPLINE_THREAD_LOCAL
        const std::scoped_lock lock(sdpline::decodeMutex());
#endif
        EXPECT_NE(SdpLibDecodeSdp(&text, &line), 0u); // the C decoder, whose hook it is, too
    }
    expectBusy();
    EXPECT_TRUE(Body::decode(kPlain)); // and afterwards as ever
}

#ifndef SDPLINE_THREAD_LOCAL
TEST(CppDecode, AThreadThatHoldsTheLockIsRefused) {
    auto &mutex = sdpline::decodeMutex();
    EXPECT_FALSE(mutex.isHeldHere());
    {
        const std::scoped_lock lock(mutex);
        EXPECT_TRUE(mutex.isHeldHere());
        const auto body = Body::decode(kPlain);
        ASSERT_FALSE(body);
        EXPECT_EQ(body.error().fault, Fault::Busy);
        EXPECT_FALSE(mutex.try_lock());
        EXPECT_TRUE(mutex.isHeldHere());
    }
    EXPECT_TRUE(Body::decode(kPlain));
    ASSERT_TRUE(mutex.try_lock());
    EXPECT_TRUE(mutex.isHeldHere());
    mutex.unlock();
    EXPECT_FALSE(mutex.isHeldHere());
}
#endif

TEST(CppDecode, OptionsGoWithTheirDecode) {
    const std::string offer =
        "v=0\r\no=- 1 1 IN IP4 h\r\ns=-\r\nt=0 0\r\nm=audio 9 UDP/TLS/RTP/SAVPF 111 63\r\n";
    EXPECT_FALSE(Body::decode(offer));
    const auto body = Body::decode(offer, {.rtpFamily = true});
    ASSERT_TRUE(body) << body.error().message();
    EXPECT_EQ(body->media()[0].protocol().text(), "UDP/TLS/RTP/SAVPF");
    EXPECT_EQ(body->media()[0].payloads().size(), 2u);
    EXPECT_EQ(written(*body), offer);
    EXPECT_FALSE(Body::decode(offer, {})) << "options are those of one decode";

    std::string longOffer = offer.substr(0, offer.find("m="));
    while (longOffer.size() < 2 * SDP_MAX_BODY) {
        longOffer += "a=candidate:1 1 udp 2130706431 192.0.2.1 5004 typ host\r\n";
    }
    EXPECT_FALSE(Body::decode(longOffer));
    const auto longBody = Body::decode(longOffer, {.maxBodySize = SDP_MAX_LONG_BODY});
    ASSERT_TRUE(longBody) << longBody.error().message();
    EXPECT_EQ(written(*longBody), longOffer);
    const auto refused = Body::decode(offer, {.maxBodySize = SDP_MAX_LONG_BODY + 1});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().check, "DecodeOptions");
    EXPECT_EQ(refused.error().line, 0u);
}

TEST(CppDecode, TheTextIsNotKept) {
    std::string text(kEveryLine);
    const Body body = decoded(text);
    text.assign(text.size(), '?');
    EXPECT_EQ(written(body), kEveryLine);
}

TEST(CppEncode, IntoABufferAnswersTheWrittenPart) {
    const Body body = decoded(kPlain);
    std::array<char, 256> buffer{};
    const auto text = body.encode(buffer);
    ASSERT_TRUE(text) << text.error().message();
    EXPECT_EQ(*text, kPlain);
    EXPECT_EQ(text->data(), buffer.data());
}

TEST(CppEncode, ATextThatDoesNotFitIsRefused) {
    const Body body = decoded(kPlain);
    std::string buffer(kPlain.size() - 1, ' ');
    EXPECT_FALSE(body.encode(buffer));
    EXPECT_FALSE(body.encode(std::span<char>()));
    buffer.resize(kPlain.size());
    EXPECT_TRUE(body.encode(buffer));
}

TEST(CppEncode, ARecordThatCannotBeWrittenIsRefused) {
    Body body = decoded(kPlain);
    body.record()->stOrigin.stNetType.enNetType = 9;
    const auto text = body.encode();
    ASSERT_FALSE(text);
    EXPECT_EQ(text.error().fault, Fault::Library);
    EXPECT_EQ(text.error().source, "sdpencode");
    EXPECT_EQ(text.error().line, 0u);
}

TEST(CppBody, ANewOneHasItsFirstThreeLines) {
    const auto body = Body::create();
    ASSERT_TRUE(body) << body.error().message();
    EXPECT_EQ(written(*body), "v=0\r\no=- 0 0 IN IP4 0.0.0.0\r\ns=-\r\nt=0 0\r\n");

    const auto other = Body::create(
        {.userName = "gw", .sessionId = "7", .sessionVersion = "8", .address = "gw.example.com"},
        "call");
    ASSERT_TRUE(other) << other.error().message();
    EXPECT_EQ(written(*other), "v=0\r\no=gw 7 8 IN IP4 gw.example.com\r\ns=call\r\nt=0 0\r\n");
}

TEST(CppBody, ANewOneIsRefusedWhenItsLinesAre) {
    EXPECT_REFUSED(Body::create({}, ""), "a text is empty");
    EXPECT_REFUSED(Body::create({.sessionId = "x"}), "a number holds something else than digits");
}

TEST(CppBody, ItsBlockGoesWithIt) {
    const Held before = Held::now();
    {
        Body body = decoded(kEveryLine);
        Body other = decoded(kPlain);
        EXPECT_EQ(Held::now().blocks, before.blocks + 2);
        other = std::move(body);
        EXPECT_EQ(Held::now().blocks, before.blocks + 1);
        EXPECT_EQ(written(other), kEveryLine);
        Body moved(std::move(other));
        EXPECT_EQ(written(moved), kEveryLine);
        other = decoded(kPlain); // what was moved from may be assigned to
        EXPECT_EQ(written(other), kPlain);
    }
    EXPECT_EQ(Held::now(), before);
}

TEST(CppBody, ViewsSurviveAMove) {
    Body body = decoded(kEveryLine);
    const std::string_view name = body.sessionName();
    const auto media = std::as_const(body).media();
    const Body moved = std::move(body);
    EXPECT_EQ(name, "Weekly call");
    EXPECT_EQ(media.size(), 4u);
    EXPECT_EQ(media[0], moved.media()[0]);
}

TEST(CppBody, ItGoesToTheCInterfaceAndComesBack) {
    const Held before = Held::now();
    {
        SdpLine *line = decoded(kEveryLine).release();
        ASSERT_NE(line, nullptr);
        line->stMediaSet.ppstMediaDescs[0]->stMediaField.ulPort = 4;
        const Body body = Body::adopt(line);
        EXPECT_EQ(body.record(), line);
        EXPECT_EQ(body.media()[0].port(), 4u);
    }
    EXPECT_EQ(Held::now(), before);
}

TEST(CppBodyDeathTest, ABodyThatWasMovedFromEndsTheProgram) {
    Body body = decoded(kPlain);
    const Body moved = std::move(body);
    EXPECT_DEATH((void)body.sessionName(), "");
    EXPECT_DEATH(Body::adopt(nullptr), "");
}

TEST(CppResultDeathTest, TheValueOfAFailureEndsTheProgram) {
    auto refused = Body::decode("");
    EXPECT_DEATH((void)refused->sessionName(), "");
    auto accepted = Body::decode(kPlain);
    EXPECT_DEATH((void)accepted.error(), "");
    EXPECT_DEATH((void)sdpline::Status().error(), "");
}

TEST(CppDecode, RtpAvpfGoesWithItsDecode) {
    const std::string text = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n"
                             "m=audio 49170 RTP/AVPF 0 8\r\n";
    EXPECT_FALSE(Body::decode(text));
    auto body = Body::decode(std::as_bytes(std::span(text)), {.rtpFamily = true});
    ASSERT_TRUE(body) << body.error();
    const sdpline::MediaEditor media = body->media()[0];
    EXPECT_EQ(media.protocol(), sdpline::Protocol::RtpAvpf);
    EXPECT_EQ(media.payloads().size(), 2u);
    EXPECT_DONE(media.setLine(media.line()));
    EXPECT_EQ(written(*body), text);
    EXPECT_FALSE(Body::decode(text)); // the process's setting is as it was
    const auto one = Body::decode("v=0\no=- 1 1 IN IP4 0\ns=-\nm=audio 1 RTP/AVPF 0\n");
    ASSERT_TRUE(one) << one.error();
    EXPECT_EQ(one->media()[0].protocol(), sdpline::Protocol::Other); // one format, a word
    EXPECT_EQ(one->media()[0].protocol().text(), "RTP/AVPF");
}

TEST(CppDecode, BytesAreText) {
    const auto body = Body::decode(std::as_bytes(std::span(kPlain)));
    ASSERT_TRUE(body) << body.error();
    EXPECT_EQ(written(*body), kPlain);
}

TEST(CppResult, AnotherValueTakesThePlaceOfAFailure) {
    const sdpline::Result<int> three(3);
    const sdpline::Result<int> none(sdpline::Error{});
    EXPECT_EQ(three.value_or(4), 3);
    EXPECT_EQ(none.value_or(4), 4);
    EXPECT_EQ(sdpline::Result<int>(3).valueOr(4), 3);
    EXPECT_EQ(sdpline::Result<int>(sdpline::Error{}).valueOr(4), 4);
}

TEST(CppResult, ItsValueIsHandedOn) {
    const auto encoded =
        Body::decode(kPlain).and_then([](const Body &body) { return body.encode(); });
    ASSERT_TRUE(encoded) << encoded.error();
    EXPECT_EQ(*encoded, kPlain);
    EXPECT_EQ(encoded.transform([](const std::string &text) { return text.size(); }).value_or(0),
              kPlain.size());
    const Body taken = *Body::decode(kPlain).transform([](Body &&body) { return std::move(body); });
    EXPECT_EQ(written(taken), kPlain);

    int calls = 0;
    const auto refused = Body::decode("v=0\r\nx=\r\n");
    const auto next = refused.and_then([&calls](const Body &body) {
        ++calls;
        return body.encode();
    });
    const auto changed = refused.transform([&calls](const Body &) { return ++calls; });
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(next.error().line, 2u);
    EXPECT_EQ(changed.error().line, 2u);
    EXPECT_EQ(Body::decode("x").transform([](Body &&) { return 1; }).value_or(2), 2);
    EXPECT_FALSE(Body::decode("x").and_then([](Body &&body) { return body.encode(); }));

    EXPECT_FALSE(sdpline::Status(sdpline::Error{}).and_then([] { return sdpline::Status(); }));
    EXPECT_EQ(sdpline::Status().and_then([] { return sdpline::Result<int>(7); }).value_or(0), 7);
}

TEST(CppResult, ItIsCopiedMovedAndAssigned) {
    sdpline::Result<std::string> one(std::string(40, 'x'));
    const sdpline::Result<std::string> copy = one;
    sdpline::Result<std::string> moved = std::move(one);
    EXPECT_EQ(*copy, *moved);
    moved = sdpline::Result<std::string>(sdpline::Error{});
    EXPECT_FALSE(moved);
    moved = copy;
    EXPECT_EQ(*moved, std::string(40, 'x'));
    static_assert(!std::is_copy_constructible_v<sdpline::Result<Body>>);
    static_assert(std::is_nothrow_move_constructible_v<sdpline::Result<Body>>);
}

TEST(CppError, WhatAPeerIsToldIsPlaceAndSentence) {
    const auto error = Body::decode("v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\n"
                                    "c=IN IP4 192.0.2.300\r\n")
                           .error();
    EXPECT_EQ(error.place(), "4:18");
    EXPECT_EQ(error.reason(), "4:18: " + std::string(error.sentence));
    EXPECT_EQ(error.warningText(), '"' + error.reason() + '"');
    sdpline::Error none;
    none.sentence = "x";
    EXPECT_EQ(none.place(), "");
    EXPECT_EQ(none.reason(), "x");
    EXPECT_EQ(none.message(), "x");
}

TEST(CppError, AQuotedStringHoldsWhatAHeaderMay) {
    using sdpline::quotedString;
    EXPECT_EQ(quotedString(""), R"("")");
    EXPECT_EQ(quotedString(R"(expected "/" or \)"), R"("expected \"/\" or \\")");
    EXPECT_EQ(quotedString("a\r\nb\tc\x7F"
                           "d\xC3\xA9"),
              R"("a  b c d??")");
    EXPECT_EQ(quotedString({"\0", 1}), R"(" ")");
}

TEST(CppError, ACodeOfAnotherServiceIsToldAsItIs) {
    const sdpline::Error error = sdpline::internal::libraryError(SIP_NO_MEMORY);
    EXPECT_EQ(error.code, std::uint32_t{SIP_NO_MEMORY});
    EXPECT_EQ(error.message(), "a service that the library calls failed (0x00000002)");
}

// Views of attributes: every type, its value, and the queries on lists.
#include <algorithm>
#include <vector>

#include "cpp/cpptest.hpp"

using namespace cpptest;
using namespace sdpline;

namespace {

// The body owns the texts that the value of the line refers to.
class One {
public:
    explicit One(const std::string &line) : body_(decoded(std::string(kPlain) + "a=" + line)) {}
    Attribute get() const { return body_.media()[0].attributes()[0]; }
    Attribute operator*() const { return get(); }

private:
    Body body_;
};

} // namespace

TEST(CppAttribute, ARtpMap) {
    const One one("rtpmap:10 L16/44100/2");
    EXPECT_EQ((*one).type(), AttributeType::RtpMap);
    EXPECT_EQ((*one).name(), "rtpmap");
    const auto map = (*one).as<RtpMap>();
    ASSERT_TRUE(map);
    EXPECT_EQ(map->payload, 10u);
    EXPECT_EQ(map->name, "L16");
    EXPECT_EQ(map->clockRate, 44100u);
    EXPECT_EQ(map->channels, 2u);
    EXPECT_EQ(map->profile, 10u);
    EXPECT_FALSE((*one).as<Fmtp>());
}

TEST(CppAttribute, AFmtp) {
    const One one("fmtp:96 mode-set=0,1; octet-align=1");
    const auto fmtp = (*one).as<Fmtp>();
    ASSERT_TRUE(fmtp);
    EXPECT_EQ(fmtp->format, "96");
    EXPECT_EQ(fmtp->payload(), 96u);
    EXPECT_EQ(fmtp->parameters, "mode-set=0,1; octet-align=1");
    EXPECT_EQ((*One("fmtp:bare")).as<Fmtp>()->payload(), std::nullopt);
    EXPECT_EQ((*One("fmtp:96x y")).as<Fmtp>()->payload(), std::nullopt);
    EXPECT_EQ((*One("fmtp:4294967296 y")).as<Fmtp>()->payload(), std::nullopt);
    EXPECT_EQ((*One("fmtp:96")).as<Fmtp>()->parameters, "");
    EXPECT_EQ(Fmtp().payload(), std::nullopt);
}

TEST(CppAttribute, NumbersTextsAndFlags) {
    for (const char *const name :
         {"ptime", "maxptime", "framerate", "quality", "T38FaxVersion", "T38MaxBitRate",
          "T38FaxFillBitRemoval", "T38FaxTranscodingMMR", "T38FaxTranscodingJBIG",
          "T38FaxMaxBuffer", "T38FaxMaxDatagram"}) {
        const One one(std::string(name) + ":7");
        EXPECT_EQ((*one).as<std::uint32_t>(), 7u) << name;
        EXPECT_EQ((*one).name(), name);
    }
    for (const char *const name :
         {"cat", "keywds", "tool", "orient", "type", "charset", "sdplang", "lang"}) {
        const One one(std::string(name) + ":a b");
        EXPECT_EQ((*one).as<std::string_view>(), "a b") << name;
        EXPECT_EQ((*one).name(), name);
    }
    for (const char *const name : {"fax", "modem", "X-fax", "X-modem"}) {
        const One one(name);
        EXPECT_TRUE((*one).as<std::monostate>()) << name;
        EXPECT_EQ((*one).name(), name);
    }
    EXPECT_EQ((*One("sendonly")).as<Direction>(), Direction::SendOnly);
    EXPECT_EQ((*One("setup:actpass")).as<SetupRole>(), SetupRole::ActPass);
}

TEST(CppAttribute, OtherNames) {
    const One value("candidate:1 1 UDP 2130706431 192.0.2.1 49170 typ host");
    EXPECT_EQ((*value).type(), AttributeType::OtherValue);
    EXPECT_EQ((*value).name(), "candidate");
    EXPECT_EQ((*value).as<std::string_view>(), "1 1 UDP 2130706431 192.0.2.1 49170 typ host");
    const One flag("ice-lite");
    EXPECT_EQ((*flag).type(), AttributeType::OtherFlag);
    EXPECT_EQ((*flag).name(), "ice-lite");
    EXPECT_TRUE((*flag).as<std::monostate>());
}

TEST(CppAttribute, SilenceSuppressionAndEcan) {
    const One silence("silenceSupp:off - - - -");
    EXPECT_FALSE((*silence).as<SilenceSupp>()->on);
    EXPECT_EQ((*silence).as<SilenceSupp>()->parameters, "- - - -");
    const One ecan("ecan:fb on G168");
    EXPECT_EQ((*ecan).as<Ecan>()->direction, EcanDirection::Both);
    EXPECT_TRUE((*ecan).as<Ecan>()->on);
    EXPECT_EQ((*ecan).as<Ecan>()->parameters, "G168");
    const One tight("silenceSupp:on- -"); // nothing before the parameters: nothing is taken off
    EXPECT_EQ((*tight).as<SilenceSupp>()->parameters, "- -");
}

TEST(CppAttribute, PreconditionsAndIpbcp) {
    const One desired("des:qos optional remote sendrecv");
    const auto status = (*desired).as<Precondition>();
    ASSERT_TRUE(status);
    EXPECT_EQ(status->line, StatusLine::Desired);
    EXPECT_EQ(status->type, PreconditionType::Qos);
    EXPECT_EQ(status->strength, Strength::Optional);
    EXPECT_EQ(status->status, StatusType::Remote);
    EXPECT_EQ(status->flow, Flow::SendRecv);
    const One other("curr:sec local send");
    EXPECT_EQ((*other).as<Precondition>()->type, "sec");
    EXPECT_EQ((*other).as<Precondition>()->line, StatusLine::Current);
    const One bearer("ipbcp:3 Confused");
    EXPECT_EQ((*bearer).as<IpBcp>()->version, 3);
    EXPECT_EQ((*bearer).as<IpBcp>()->type, IpBcpType::Confused);
}

TEST(CppAttribute, ItsValueIsVisited) {
    struct Kind {
        std::string operator()(std::monostate) const { return "nothing"; }
        std::string operator()(Direction) const { return "direction"; }
        std::string operator()(std::uint32_t) const { return "number"; }
        std::string operator()(std::string_view) const { return "text"; }
        std::string operator()(const RtpMap &) const { return "rtpmap"; }
        std::string operator()(const Fmtp &) const { return "fmtp"; }
        std::string operator()(T38RateManagement) const { return "rate"; }
        std::string operator()(T38ErrorCorrection) const { return "ec"; }
        std::string operator()(const SilenceSupp &) const { return "silence"; }
        std::string operator()(const Ecan &) const { return "ecan"; }
        std::string operator()(const Precondition &) const { return "precondition"; }
        std::string operator()(const IpBcp &) const { return "ipbcp"; }
        std::string operator()(SetupRole) const { return "setup"; }
    };
    const std::pair<const char *, const char *> kinds[] = {
        {"fax", "nothing"},
        {"inactive", "direction"},
        {"ptime:1", "number"},
        {"x:1", "text"},
        {"rtpmap:0 PCMU/8000", "rtpmap"},
        {"fmtp:0 x", "fmtp"},
        {"T38FaxRateManagement:localTCF", "rate"},
        {"T38FaxUdpEC:t38UDPFEC", "ec"},
        {"silenceSupp:on -", "silence"},
        {"ecan:f off -", "ecan"},
        {"conf:qos e2e recv", "precondition"},
        {"ipbcp:1 Request", "ipbcp"},
        {"setup:active", "setup"},
    };
    for (const auto &[line, kind] : kinds) {
        const One one(line);
        EXPECT_EQ(std::visit(Kind(), (*one).value()), kind) << line;
    }
}

TEST(CppAttribute, ItsTextIsTheLine) {
    for (const char *const line :
         {"rtpmap:96 AMR/8000", "sendrecv", "candidate:1", "ice-lite", "des:qos none e2e recv"}) {
        const One one(line);
        const auto text = (*one).text();
        ASSERT_TRUE(text) << text.error().message();
        EXPECT_EQ(*text, line);
    }
}

TEST(CppAttribute, ANumberThatIsNoTypeHasNothing) {
    Body body = decoded(std::string(kPlain) + "a=ptime:1\r\n");
    for (const std::uint32_t type : {0u, 41u, 0xFFFFFFFFu}) {
        body.record()->stMediaSet.ppstMediaDescs[0]->pstAttrList->ppstAttrs[0]->ulAttrType = type;
        const Attribute attribute = body.media()[0].attributes()[0];
        EXPECT_EQ(attribute.name(), "");
        EXPECT_TRUE(attribute.as<std::monostate>());
    }
}

TEST(CppAttributes, ListsAnswerQuestions) {
    const Body body = decoded(kEveryLine);
    const Attributes audio = body.media()[0].attributes();
    EXPECT_EQ(audio.rtpMap(101)->name, "telephone-event");
    EXPECT_FALSE(audio.rtpMap(0));
    EXPECT_EQ(audio.fmtp(101)->parameters, "0-15");
    EXPECT_FALSE(audio.fmtp(0));
    EXPECT_EQ(audio.number(AttributeType::PTime), 20u);
    EXPECT_FALSE(audio.number(AttributeType::MaxPTime));
    EXPECT_FALSE(audio.number(AttributeType::RtpMap)); // no number
    EXPECT_EQ(audio.direction(), Direction::SendOnly);
    EXPECT_FALSE(audio.setup());
    EXPECT_EQ(audio.find("ptime"), audio.find(AttributeType::PTime));
    EXPECT_FALSE(audio.find("PTIME"));
    EXPECT_EQ(body.attributes().text(AttributeType::Tool), "sdpline");
    EXPECT_EQ(body.attributes().text("tool"), "sdpline");
    EXPECT_FALSE(body.attributes().text("recvonly"));

    std::vector<std::string_view> names;
    for (const RtpMap &map : audio.each<RtpMap>()) {
        names.push_back(map.name);
    }
    EXPECT_EQ(names, (std::vector<std::string_view>{"AMR-WB", "telephone-event"}));
    EXPECT_TRUE(audio.each<IpBcp>().empty());
    EXPECT_TRUE(audio.preconditions().empty());
    EXPECT_FALSE(audio.t38());
}

TEST(CppAttributes, TheT38SetTogether) {
    const Body body = decoded(std::string(kPlain) +
                              "a=T38FaxVersion:3\r\na=T38MaxBitRate:14400\r\n"
                              "a=T38FaxFillBitRemoval\r\na=T38FaxTranscodingMMR:0\r\n"
                              "a=T38FaxRateManagement:transferredTCF\r\na=T38FaxMaxBuffer:262\r\n"
                              "a=T38FaxMaxDatagram:176\r\na=T38FaxUdpEC:t38UDPRedundancy\r\n");
    const auto all = body.media()[0].attributes().t38();
    ASSERT_TRUE(all);
    EXPECT_EQ(all->version, 3u);
    EXPECT_EQ(all->maxBitRate, 14400u);
    EXPECT_TRUE(all->fillBitRemoval);
    EXPECT_FALSE(all->transcodingMmr);
    EXPECT_FALSE(all->transcodingJbig);
    EXPECT_EQ(all->rateManagement, T38RateManagement::TransferredTcf);
    EXPECT_EQ(all->maxBuffer, 262u);
    EXPECT_EQ(all->maxDatagram, 176u);
    EXPECT_EQ(all->errorCorrection, T38ErrorCorrection::Redundancy);
    const One one("T38FaxTranscodingJBIG");
    EXPECT_EQ((*one).as<std::uint32_t>(), 1u);
}

TEST(CppAttributes, PreconditionsInTheirOrder) {
    const Body body = decoded(std::string(kPlain) +
                              "a=curr:qos local none\r\na=sendrecv\r\n"
                              "a=des:qos mandatory local sendrecv\r\na=conf:qos remote recv\r\n");
    std::vector<StatusLine> lines;
    for (const Precondition &one : body.media()[0].attributes().preconditions()) {
        lines.push_back(one.line);
    }
    EXPECT_EQ(lines,
              (std::vector{StatusLine::Current, StatusLine::Desired, StatusLine::Confirmed}));
}

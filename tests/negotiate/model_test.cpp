// A second, slow implementation of rules as their RFC states them, compared over all inputs.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <map>
#include <random>
#include <set>

#include "negotiate/documents.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

Body audio(const std::string &codec, const std::string &parameters, bool ours) {
    return Body::decode((ours ? kLocalHead : kOfferHead) +
                        "m=audio 40000 RTP/AVP 97\na=rtpmap:97 " + codec + '\n' +
                        (parameters.empty() ? "" : "a=fmtp:97 " + parameters + '\n'))
        .value();
}

bool agreeOn(const Body &offer, const Body &local) {
    return sdpline::answer(offer, local).value().accepted;
}

// ---- H264: RFC 6184 section 8.1, table 5

const std::array<std::pair<const char *, std::pair<int, const char *>>, 7> kTable5 = {{
    {"CB", {0x42, "x1xx0000"}},
    {"CB", {0x4D, "1xxx0000"}},
    {"CB", {0x58, "11xx0000"}},
    {"B", {0x42, "x0xx0000"}},
    {"B", {0x58, "10xx0000"}},
    {"M", {0x4D, "0x0x0000"}},
    {"E", {0x58, "00xx0000"}},
}};

std::string profileOf(int idc, int iop) {
    const std::string bits = std::bitset<8>(static_cast<unsigned>(iop)).to_string();
    for (const auto &[name, row] : kTable5) {
        const std::string pattern = row.second;
        bool same = row.first == idc;
        for (size_t i = 0; i < 8; ++i) {
            same = same && (pattern[i] == 'x' || pattern[i] == bits[i]);
        }
        if (same) {
            return name;
        }
    }
    return std::to_string(idc) + '/' + bits;
}

std::string levelId(int idc, int iop, int level) {
    char text[32];
    std::snprintf(text, sizeof text, "profile-level-id=%02X%02x%02X", static_cast<unsigned>(idc),
                  static_cast<unsigned>(iop), static_cast<unsigned>(level));
    return text;
}

TEST(NegotiateModel, ProfilesOfH264) {
    const std::pair<int, int> others[] = {{0x42, 0x40}, {0x42, 0}, {0x4D, 0},    {0x58, 0},
                                          {0x64, 0},    {0x64, 1}, {0x64, 0x0C}, {0x42, 0x01}};
    std::vector<Body> locals;
    for (const auto &[idc, iop] : others) {
        locals.push_back(audio("H264/90000", levelId(idc, iop, 0x80), true));
    }
    std::set<std::string> seen;
    for (const int idc : {0x42, 0x4D, 0x58, 0x64}) {
        for (int iop = 0; iop < 256; iop += idc == 0x64 ? 3 : 1) {
            const Body offer = audio("H264/90000", levelId(idc, iop, 0x1F), false);
            for (size_t i = 0; i < locals.size(); ++i) {
                const bool same =
                    profileOf(idc, iop) == profileOf(others[i].first, others[i].second);
                ASSERT_EQ(agreeOn(offer, locals[i]), same)
                    << idc << ' ' << iop << " with " << others[i].first << ' ' << others[i].second;
            }
            seen.insert(profileOf(idc, iop));
        }
    }
    EXPECT_GT(seen.size(), 100u);
}

TEST(NegotiateModel, DigitsOfAProfile) {
    const std::map<std::string, bool> ids = {
        {"42e01f", true},  {"42E01F", true},  {"42e019", true},   {"42e090", true},
        {"42e0AF", true},  {"42e0af", true},  {"42e01g", false},  {"42e01G", false},
        {"42e01/", false}, {"42e01:", false}, {"42e01@", false},  {"42e01`", false},
        {"42e01", false},  {"", false},       {"42e01f0", false}, {"0942e0", false}};
    for (const auto &[id, good] : ids) {
        const Body offer = audio("H264/90000", "profile-level-id=" + id, false);
        EXPECT_EQ(agreeOn(offer, audio("H264/90000", "profile-level-id=42C00B", true)), good) << id;
        EXPECT_EQ(agreeOn(offer, audio("H264/90000", "profile-level-id=" + id, true)),
                  good || id == "0942e0")
            << id;
    }
    const Body none = audio("H264/90000", "", false);
    EXPECT_TRUE(agreeOn(none, audio("H264/90000", "profile-level-id=42003C", true)));
    EXPECT_FALSE(agreeOn(none, audio("H264/90000", "profile-level-id=42E03C", true)));
    EXPECT_TRUE(agreeOn(none, audio("H264/90000", "packetization-mode=0", true)));
    EXPECT_FALSE(agreeOn(none, audio("H264/90000", "packetization-mode=1", true)));
}

// ---- AMR: RFC 4867 section 8.1

// CRC, sorting and interleaving are only there with octets aligned.
struct Amr {
    bool aligned, crc, sorted, interleaved;

    explicit Amr(unsigned bits)
        : aligned((bits & 15) != 0), crc((bits & 2) != 0), sorted((bits & 4) != 0),
          interleaved((bits & 8) != 0) {}
    bool operator==(const Amr &other) const = default;
};

std::string amrText(unsigned bits) {
    std::string text;
    const char *const names[] = {"octet-align=1;", "crc=1; ", "robust-sorting=1;",
                                 "interleaving=30;"};
    for (unsigned i = 0; i < 4; ++i) {
        text += (bits >> i & 1) != 0 ? names[i] : "";
    }
    return text;
}

TEST(NegotiateModel, LayoutsOfAmr) {
    for (unsigned one = 0; one < 16; ++one) {
        const Body offer = audio("AMR/8000", amrText(one), false);
        for (unsigned two = 0; two < 16; ++two) {
            EXPECT_EQ(agreeOn(offer, audio("AMR/8000", amrText(two), true)), Amr(one) == Amr(two))
                << amrText(one) << " with " << amrText(two);
        }
    }
    for (const char *const off : {"octet-align=0", "crc=0", "robust-sorting=0"}) {
        EXPECT_TRUE(agreeOn(audio("AMR/8000", off, false), audio("AMR/8000", "", true))) << off;
        EXPECT_FALSE(
            agreeOn(audio("AMR/8000", off, false), audio("AMR/8000", "octet-align=1", true)))
            << off;
    }
}

std::set<unsigned> numbersOf(const std::string &list) {
    std::set<unsigned> numbers;
    for (size_t at = 0; at < list.size(); at = list.find_first_of(",", at) == std::string::npos
                                                   ? list.size()
                                                   : list.find_first_of(",", at) + 1) {
        numbers.insert(static_cast<unsigned>(std::stoul(list.substr(at))));
    }
    return numbers;
}

TEST(NegotiateModel, ModeSetsOfAmr) {
    const std::string sets[] = {"0", "1", "0,1", "1,0", "0,2,4,7", "7,4,2,0", "7", "2,4,7", "31"};
    for (const std::string &one : sets) {
        for (const std::string &two : sets) {
            EXPECT_EQ(agreeOn(audio("AMR-WB/16000", "mode-set=" + one, false),
                              audio("AMR-WB/16000", "mode-set=" + two, true)),
                      numbersOf(one) == numbersOf(two))
                << one << " with " << two;
        }
        EXPECT_TRUE(
            agreeOn(audio("AMR/8000", "mode-set=" + one, false), audio("AMR/8000", "", true)));
    }
}

// ---- telephone-event: RFC 4733 section 2.4.1

std::set<unsigned> eventsOf(const std::string &list) {
    std::set<unsigned> events;
    std::string rest = list.empty() ? "0-15" : list;
    while (!rest.empty()) {
        const std::string item = rest.substr(0, rest.find(','));
        const size_t dash = item.find('-');
        const unsigned first = static_cast<unsigned>(std::stoul(item));
        const unsigned last = dash == std::string::npos
                                  ? first
                                  : static_cast<unsigned>(std::stoul(item.substr(dash + 1)));
        for (unsigned event = first; event <= last && event <= 255; ++event) {
            events.insert(event);
        }
        rest = rest.find(',') == std::string::npos ? "" : rest.substr(rest.find(',') + 1);
    }
    return events;
}

TEST(NegotiateModel, TelephoneEvents) {
    const std::string lists[] = {
        "",        "0",        "15",       "16",    "0-15",    "1-3",   "2",   "3-5",  "5-1",
        "63-65",   "64",       "65",       "62-63", "127-128", "128",   "255", "254",  "256",
        "250-300", "16,32,66", "32-36,66", "66-70", "0-3,70",  "14-16", "192", "1,4-7"};
    for (const std::string &one : lists) {
        const Body offer = audio("telephone-event/8000", one, false);
        const std::set<unsigned> theirs = eventsOf(one);
        for (const std::string &two : lists) {
            const std::set<unsigned> ours = eventsOf(two);
            const bool common = std::any_of(theirs.begin(), theirs.end(),
                                            [&](unsigned event) { return ours.count(event) != 0; });
            EXPECT_EQ(agreeOn(offer, audio("telephone-event/8000", two, true)), common)
                << '"' << one << "\" with \"" << two << '"';
        }
    }
}

// ---- RFC 3551 sections 4.5 and 5: static payload types, typed from tables 4 and 5

struct Static {
    unsigned number;
    const char *codec; // as an rtpmap has it
};
const Static kStatic[] = {
    {0, "PCMU/8000"},    {3, "GSM/8000"},    {4, "G723/8000"},   {5, "DVI4/8000"},
    {6, "DVI4/16000"},   {7, "LPC/8000"},    {8, "PCMA/8000"},   {9, "G722/8000"},
    {10, "L16/44100/2"}, {11, "L16/44100"},  {12, "QCELP/8000"}, {13, "CN/8000"},
    {14, "MPA/90000"},   {15, "G728/8000"},  {16, "DVI4/11025"}, {17, "DVI4/22050"},
    {18, "G729/8000"},   {25, "CelB/90000"}, {26, "JPEG/90000"}, {28, "nv/90000"},
    {31, "H261/90000"},  {32, "MPV/90000"},  {33, "MP2T/90000"}, {34, "H263/90000"}};

TEST(NegotiateModel, StaticPayloadTypes) {
    std::map<unsigned, std::string> codecs;
    for (const Static &one : kStatic) {
        codecs[one.number] = one.codec;
    }
    for (unsigned number = 0; number < 128; ++number) {
        const Body offer =
            Body::decode(kOfferHead + "m=video 5000 RTP/AVP " + std::to_string(number) + '\n')
                .value();
        unsigned found = 0;
        for (const Static &one : kStatic) {
            const bool accepted =
                agreeOn(offer, Body::decode(kLocalHead + "m=video 5000 RTP/AVP 98\na=rtpmap:98 " +
                                            one.codec + '\n')
                                   .value());
            found += accepted ? 1 : 0;
            ASSERT_EQ(accepted, codecs.count(number) != 0 && codecs[number] == one.codec)
                << number << ' ' << one.codec;
        }
        EXPECT_EQ(found, codecs.count(number));
    }
}

// ---- Directions: RFC 3264 sections 6.1 and 8.4

struct Ways {
    bool send, receive;
};
const std::map<std::string, Ways> kWays = {{"sendrecv", {true, true}},
                                           {"sendonly", {true, false}},
                                           {"recvonly", {false, true}},
                                           {"inactive", {false, false}},
                                           {"", {true, true}}};

std::string wordOf(Ways ways) {
    for (const auto &[word, each] : kWays) {
        if (!word.empty() && each.send == ways.send && each.receive == ways.receive) {
            return word;
        }
    }
    return "";
}

std::string directed(bool ours, bool multicast, const std::string &session,
                     const std::string &stream) {
    std::string text = ours ? kLocalHead : kOfferHead;
    text += session.empty() ? "" : "a=" + session + '\n';
    text += "m=audio 40000 RTP/AVP 0\n";
    text += multicast ? "c=IN IP4 224.2.1.1/127\n" : "";
    return text + (stream.empty() ? "" : "a=" + stream + '\n');
}

void expectDirections(bool multicast, const std::string &session, const std::string &theirs,
                      const std::string &ours) {
    const Body offer = Body::decode(directed(false, multicast, session, theirs)).value();
    const Body local = Body::decode(directed(true, multicast, "", ours)).value();
    const Ways peer = kWays.at(theirs.empty() ? session : theirs);
    const Ways own = kWays.at(ours);
    const Ways both = multicast ? peer : Ways{own.send && peer.receive, own.receive && peer.send};
    const auto answer = sdpline::answer(offer, local);
    SCOPED_TRACE(session + '|' + theirs + '|' + ours + (multicast ? " multicast" : ""));
    ASSERT_EQ(std::string(sdpline::wordOf(answer->streams[0].direction)), wordOf(both));
    const std::string text = textOf(answer->body);
    const bool silent = wordOf(both) == "sendrecv" && theirs.empty() && session.empty();
    ASSERT_EQ(text.find("a=" + wordOf(both) + '\n') == std::string::npos, silent) << text;
    // Any two bodies, from both sides.
    const Ways common = multicast ? Ways{peer.send && own.send, peer.receive && own.receive} : both;
    const auto answerer = sdpline::agree(offer, local, sdpline::Side::Answerer);
    const auto offerer = sdpline::agree(offer, local, sdpline::Side::Offerer);
    ASSERT_EQ(std::string(sdpline::wordOf(answerer->streams[0].direction)), wordOf(common));
    ASSERT_EQ(std::string(sdpline::wordOf(offerer->streams[0].direction)),
              wordOf(multicast ? common : Ways{common.receive, common.send}));
}

TEST(NegotiateModel, Directions) {
    for (const bool multicast : {false, true}) {
        for (const auto &[session, a] : kWays) {
            for (const auto &[theirs, b] : kWays) {
                for (const auto &[ours, c] : kWays) {
                    ASSERT_NO_FATAL_FAILURE(expectDirections(multicast, session, theirs, ours));
                }
            }
        }
    }
}

// ---- Versions: one more, as numbers are added by hand

TEST(NegotiateModel, Versions) {
    for (const char *const before :
         {"0", "1", "8", "9", "10", "19", "99", "109", "199", "999", "2890844526",
          "18446744073709551615", "99999999999999999999"}) {
        std::string next = before;
        size_t at = next.size();
        while (at > 0 && next[at - 1] == '9') {
            next[--at] = '0';
        }
        at == 0 ? next.insert(0, "1")
                : next.replace(at - 1, 1, 1, static_cast<char>(next[at - 1] + 1));
        const auto bodyOf = [](const std::string &version, const char *port) {
            return Body::decode("v=0\no=- 1 " + version +
                                " IN IP4 192.0.2.1\ns=-\nc=IN IP4 192.0.2.1\n" + "t=0 0\nm=audio " +
                                port + " RTP/AVP 0\n")
                .value();
        };
        const auto made = sdpline::nextOffer(bodyOf(before, "5000"), bodyOf("7", "6000"));
        EXPECT_EQ(made->origin().sessionVersion, next);
        EXPECT_EQ(textOf(sdpline::checkNext(bodyOf(before, "5000"), bodyOf(next, "6000"))), "");
        EXPECT_EQ(textOf(sdpline::checkNext(bodyOf(before, "5000"), bodyOf("000" + next, "6000"))),
                  "");
        EXPECT_NE(textOf(sdpline::checkNext(bodyOf(before, "5000"), bodyOf(before, "6000"))), "");
    }
}

// ---- Preconditions: RFC 3312 sections 5 and 6, for one type

const char *const kStatuses[] = {"e2e", "local", "remote"};
const char *const kDirections[] = {"none", "send", "recv", "sendrecv"};
const char *const kStrengths[] = {"", "none", "optional", "mandatory"};

struct Segment {
    bool has = false;
    bool current = false;
    unsigned flows = 0;           // 1 sends, 2 receives
    unsigned desired[2] = {0, 0}; // of sending, of receiving

    bool wanted() const { return desired[0] != 0 || desired[1] != 0; }
    unsigned missing() const {
        return ((desired[0] == 3 ? 1u : 0u) | (desired[1] == 3 ? 2u : 0u)) & ~flows;
    }
};
using Segments = std::array<Segment, 3>;

std::multiset<std::string> linesOf(const Segments &segments, bool confirm) {
    std::multiset<std::string> lines;
    for (size_t i = 0; i < 3; ++i) {
        const Segment &one = segments[i];
        const std::string status = kStatuses[i];
        const auto desire = [&](unsigned strength, const char *way) {
            if (strength != 0) {
                lines.insert(std::string("a=des:qos ") + kStrengths[strength] + ' ' + status + ' ' +
                             way);
            }
        };
        if (one.current || (one.has && confirm)) {
            lines.insert("a=curr:qos " + status + ' ' + kDirections[one.flows]);
        }
        if (one.desired[0] == one.desired[1]) {
            desire(one.desired[0], "sendrecv");
        } else {
            desire(one.desired[0], "send");
            desire(one.desired[1], "recv");
        }
        // Only the peer knows its segment, and whether the direction to us is reserved end to end.
        const unsigned asked = i == 0 ? one.missing() & 2 : i == 2 ? one.missing() : 0;
        if (confirm && asked != 0) {
            lines.insert("a=conf:qos " + status + ' ' + kDirections[asked]);
        }
    }
    return lines;
}

Segments randomSegments(std::mt19937 &engine, bool endToEnd) {
    const auto below = [&](unsigned count) { return static_cast<unsigned>(engine() % count); };
    Segments segments;
    for (size_t i = endToEnd ? 0 : 1; i < (endToEnd ? 1u : 3u); ++i) {
        Segment &one = segments[i];
        one.current = below(4) != 0;
        one.flows = one.current ? below(4) : 0;
        for (unsigned &strength : one.desired) {
            strength = below(4);
        }
        one.has = one.current || one.wanted();
    }
    return segments;
}

Segments turned(const Segments &segments) {
    Segments result = {segments[0], segments[2], segments[1]};
    for (Segment &one : result) {
        std::swap(one.desired[0], one.desired[1]);
        one.flows = (one.flows & 1) << 1 | (one.flows & 2) >> 1;
    }
    return result;
}

// The answer: strengths may rise; we know our segment, and the peer knows the other one.
Segments merged(const Segments &peer, const Segments &own) {
    Segments result;
    for (size_t i = 0; i < 3; ++i) {
        const Segment &theirs = peer[i];
        const Segment &ours = own[i];
        Segment &one = result[i];
        one.has = theirs.has || ours.has;
        const bool oursCounts = !theirs.has || (i == 1 ? ours.current : !theirs.current);
        one.flows = i == 0 ? theirs.flows | ours.flows : oursCounts ? ours.flows : theirs.flows;
        for (size_t way = 0; way < 2; ++way) {
            one.desired[way] = std::max(theirs.desired[way], ours.desired[way]);
        }
    }
    return result;
}

std::string joined(const std::multiset<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + '\n';
    }
    return text;
}

std::multiset<std::string> preconditionsIn(const std::string &text) {
    std::multiset<std::string> lines;
    for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
        const std::string line = text.substr(at, text.find('\n', at) - at);
        if (line.find(":qos ") != std::string::npos) {
            lines.insert(line);
        }
    }
    return lines;
}

TEST(NegotiateModel, Preconditions) {
    std::mt19937 engine(3312);
    unsigned met = 0;
    unsigned compared = 0;
    for (int i = 0; i < 3000; ++i) {
        const bool endToEnd = i % 3 == 0;
        const Segments theirs = randomSegments(engine, endToEnd);
        const Segments ours = randomSegments(engine, endToEnd);
        const auto wants = [](const Segment &one) { return one.wanted(); };
        const bool used = std::any_of(theirs.begin(), theirs.end(), wants) &&
                          std::any_of(ours.begin(), ours.end(), wants);
        const std::string stream = "m=audio 5000 RTP/AVP 0\n";
        const Body offer =
            Body::decode(kOfferHead + stream + joined(linesOf(theirs, false))).value();
        const Body local = Body::decode(kLocalHead + stream + joined(linesOf(ours, false))).value();
        const auto answer = sdpline::answer(offer, local);
        SCOPED_TRACE(joined(linesOf(theirs, false)) + "and\n" + joined(linesOf(ours, false)));
        const Segments both = merged(turned(theirs), ours);
        ASSERT_EQ(preconditionsIn(textOf(answer->body)),
                  used ? linesOf(both, true) : std::multiset<std::string>());
        const bool all = std::all_of(both.begin(), both.end(),
                                     [](const Segment &one) { return one.missing() == 0; });
        const auto state = !used ? sdpline::Preconditions::Absent
                           : all ? sdpline::Preconditions::Met
                                 : sdpline::Preconditions::Unmet;
        ASSERT_EQ(answer->streams[0].preconditions, state);
        ASSERT_EQ(sdpline::agree(offer, local).value().streams[0].preconditions, state);
        met += all ? 1 : 0;
        compared += used ? 1 : 0;
    }
    EXPECT_GT(met, 300u);
    EXPECT_GT(compared, 1500u);
}

} // namespace

} // namespace negotiate_test

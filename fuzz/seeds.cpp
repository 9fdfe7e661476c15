// Makes the seeds of the fuzzers: seeds DICTIONARY FOLDER
//
// Each target gets a folder with one file for each body of the case documents, in the form that the
// target reads. The dictionary is written with the words of the library's tables added.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>

#include "fuzz.hpp"
#include "negotiate/documents.hpp"
#include "support/cases.hpp"
#include "support/packets.hpp"
#include "tables/keywords.hpp"
#include "tidy/tidycases.hpp"
#include "json/json.hpp"

namespace {

using support::Case;

std::string configurationOf(const Case &current) {
    const uint32_t avpf = current.avpf ? 1 : 0;
    const uint32_t family = current.family ? 1 : 0;
    const uint32_t longBodies = current.maxBody > SDP_MAX_BODY ? 1 : 0;
    const fuzz::Configuration configuration = {current.t38Style, avpf, current.lineEnd, family,
                                               longBodies};
    return {static_cast<char>(configuration.byte())};
}

// A number for Input::below(65536)
std::string share(size_t value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

// ---- The input of each target

std::string body(const Case &current) {
    return current.body + configurationOf(current);
}

std::string sized(const Case &current) {
    const size_t length = current.body.size();
    return current.body + share(length) + share(length / 2) + configurationOf(current);
}

// The body's JSON; a refused one has none.
std::string document(const Case &current) {
    const fuzz::Body decoded = fuzz::decode(current.body);
    return decoded == nullptr ? "" : cli::jsonOf(*decoded).dump() + configurationOf(current);
}

std::string message(const Case &current) {
    return "SIP/2.0 200 OK\r\nContent-Type: application/sdp\r\nContent-Length: " +
           std::to_string(current.body.size()) + "\r\n\r\n" + current.body + share(40);
}

// The text, and as many operations on it as the turns make.
std::string operated(const std::string &text, size_t share, std::string_view turns) {
    std::string numbers;
    for (size_t i = 0; i < text.size() / share; ++i) {
        numbers += turns[i % turns.size()];
    }
    return text + numbers + static_cast<char>(std::min<size_t>(numbers.size(), 255));
}

// The next token, switches between the contexts, and texts.
std::string operations(const Case &current) {
    return operated(current.body.substr(0, 255), 1, "\x0F\x07\x0F\x11\x0F\x07\x21\x0F\x31\x0F\x41");
}

// Tokens in the context of lines, with texts and rtpmaps between them.
std::string gatherings(const Case &current) {
    return operated(current.body, 3, std::string_view("\x0F\x0F\x00\x00\x0F\x02\x0F\x01", 8));
}

// A capture with the message in a datagram, in fragments and in segments.
std::string packets(const Case &current) {
    const std::string a = "192.0.2.1";
    const std::string sip = message(current).substr(0, message(current).size() - 2);
    const std::string datagram = support::udp(5060, 5060, sip);
    support::CaptureWriter capture(support::CaptureForm::Pcap, 101);
    capture.add(support::ipv4(a, a, 17, datagram), 0);
    for (const std::string &part : support::ipv4Fragments(a, a, 17, datagram, 1, 256)) {
        capture.add(part, 0);
    }
    for (size_t at = 0; at < sip.size(); at += 200) {
        const auto sequence = static_cast<uint32_t>(at);
        capture.add(support::ipv4(a, a, 6,
                                  support::tcp(5060, 5060, sequence, support::kAck,
                                               std::string_view(sip).substr(at, 200))),
                    0);
    }
    return capture.take() + '\x40';
}

struct Target {
    const char *name;
    std::string (*seed)(const Case &current);
};

constexpr Target kTargets[] = {
    {"decode", body},      {"roundtrip", body},    {"copies", body},     {"serialize", sized},
    {"faults", sized},     {"json", body},         {"json", document},   {"message", message},
    {"packets", packets},  {"segments", sized},    {"fragments", sized}, {"tidy", body},
    {"lexer", operations}, {"gather", gatherings}, {"records", sized},
};

// Two bodies of a case and a third one, if there is one, with a number for each choice.
std::string negotiation(const negotiate_test::Case &current) {
    std::string texts;
    for (const char *const kind :
         {"offer", "sent", "local", "reply", "next", "wanted", "previous"}) {
        if (current.has(kind)) {
            texts += negotiate_test::textOf(*negotiate_test::bodyOf(current, kind)) + '\0';
        }
    }
    const fuzz::Configuration configuration = {0, 1, SDP_LINE_END_CRLF, 0, 0};
    return texts + share(texts.size()) + '\0' + static_cast<char>(configuration.byte());
}

void write(const std::filesystem::path &path, const std::string &bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) {
        std::fprintf(stderr, "%s: cannot be written\n", path.c_str());
        std::exit(1);
    }
}

// ---- The dictionary

std::string quoted(std::string_view word) {
    std::string text = "\"";
    for (const char byte : word) {
        text += byte == '"' || byte == '\\' ? "\\" : "";
        text += byte;
    }
    return text + "\"\n";
}

std::set<std::string_view> words() {
    std::set<std::string_view> all;
    const auto add = [&all](std::string_view word) {
        if (word.find_first_not_of(' ') != word.npos) {
            all.insert(word);
        }
    };
    for (const SipString &name : sstrSdpAttrNames) {
        add({name.pcData, name.ulLen});
    }
    for (const SipString &profile : g_aStrRtpmapProfiles) {
        add({profile.pcData, profile.ulLen});
    }
    using namespace sdpline;
    const std::span<const KeywordRow> tables[] = {
        kNetTypeWords, kAddrTypeWords, kMediaWritten,      kProtoWords,    kFmtWords,
        kT38RateWords, kT38UdpEcWords, kEcanSwitchWritten, kEcanDirWords,  kIpBcpWritten,
        kSetupWords,   kStatusWords,   kPreconditionWords, kStrengthWords, kDirWords,
    };
    for (const auto table : tables) {
        for (const KeywordRow &word : table) {
            add(word.text);
        }
    }
    return all;
}

std::string dictionary(const std::filesystem::path &start) {
    std::ifstream file(start);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    for (const std::string_view word : words()) {
        text += quoted(word);
    }
    return text;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: seeds DICTIONARY FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[2];
    const auto cases = support::readCases(SDPLINE_CASES);
    size_t made = 0;
    for (const Target &target : kTargets) {
        for (const Case &current : cases) {
            const std::string seed = target.seed(current);
            if (!seed.empty()) {
                write(folder / target.name / std::to_string(++made), seed);
            }
        }
    }
    for (const tidytest::TidyCase &current : tidytest::readTidyCases()) {
        write(folder / "tidy" / std::to_string(++made), current.body() + std::string(2, '\0'));
    }
    SdpSetSupMedProtoRtpAvpf(1);
    for (const auto &current : negotiate_test::readCases(SDPLINE_NEGOTIATE_CASES)) {
        write(folder / "negotiate" / std::to_string(++made), negotiation(current));
    }
    SdpSetSupMedProtoRtpAvpf(0);
    write(folder / "sdp.dict", dictionary(argv[1]));
    return 0;
}

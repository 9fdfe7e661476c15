#include "output/hints.hpp"

#include <algorithm>
#include <array>

#include "sdpline/cpp/detail/keywords.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

bool always(std::string_view /*line*/) {
    return true;
}

template <char Letter>
bool isLine(std::string_view line) {
    return line.starts_with(Letter);
}

bool followsTime(std::string_view line) {
    return !line.empty() && std::string_view("rzka").find(line.front()) != std::string_view::npos;
}

// The third word: "RTP/AVPF" of "m=audio 9 RTP/AVPF 0 8", the address of a c= line.
std::string_view thirdWord(std::string_view line) {
    for (int words = 0; words < 2; ++words) {
        line.remove_prefix(std::min(line.find(' '), line.size()));
        line.remove_prefix(line.empty() ? 0 : 1);
    }
    return line.substr(0, line.find(' '));
}

bool isAvpf(std::string_view line) {
    return thirdWord(line) == "RTP/AVPF";
}

// A protocol whose formats --rtp-family reads as payload numbers.
bool isRtp(std::string_view line) {
    return sdpline::tables::endsInRtpProfile(thirdWord(line));
}

// "c=IN IP4 pc.example.com": letters in the address.
bool hasHostName(std::string_view line) {
    const std::string_view address = thirdWord(line);
    return std::any_of(address.begin(), address.end(), isLetter);
}

struct Hint {
    std::string_view checks; // the name of a check, or the beginning of several with "*"
    bool (*applies)(std::string_view line);
    std::string_view text;
};

constexpr std::string_view kBodyStart =
    "a body begins with \"v=0\", a SIP message with a line such as \"INVITE sip:b@host SIP/2.0\"";
constexpr std::string_view kSessionStart = "a body begins with the lines v=, o= and s=";
constexpr std::string_view kSessionOrder =
    "the lines of a session come in the order v= o= s= i= u= e= p= c= b= t= r= z= k= a= m=";
constexpr std::string_view kMediaOrder =
    "the lines of a media description come in the order m= i= c= b= k= a=";

// The first row that applies is used.
constexpr auto kHints = std::to_array<Hint>({
    {"StartVersion", always, kBodyStart},
    {"StartOrigin", always, kSessionStart},
    {"StartName", always, kSessionStart},
    {"AfterMediaConnection", isLine<'c'>, "a media description takes one c= line"},
    {"AfterConnection", isLine<'c'>, "a session takes one c= line"},
    {"AfterMedia*", always, kMediaOrder},
    {"AfterTime", always, kSessionOrder},
    {"AfterZone", always, kSessionOrder},
    {"AfterKey", always, kSessionOrder},
    {"AfterAttributes", always, kSessionOrder},
    {"After*", followsTime, "the lines r= z= k= a= of a session need a t= line before them"},
    {"After*", always, kSessionOrder},
    {"TextEmpty", isLine<'s'>, "write \"s=-\" for a session without a name"},
    {"TextEmpty", always, "leave the line out where it has no value"},
    {"ConnOctet*", hasHostName, "a c= line takes no host name: write the address of the host"},
    {"ConnAddrType", always, "the line is c=IN IP4 ADDRESS or c=IN IP6 ADDRESS"},
    {"ConnNetType", always, "the line is c=IN IP4 ADDRESS or c=IN IP6 ADDRESS"},
    {"Origin*", always, "the line is o=USER SESSION-ID VERSION IN IP4 ADDRESS"},
    {"Time*", always, "the line is t=START STOP, in seconds; 0 0 is a session without end"},
    {"FormatEnd", isAvpf, "--avpf reads the formats of RTP/AVPF as payload numbers"},
    {"FormatEnd", isRtp, "--rtp-family reads the formats of every RTP protocol as payload numbers"},
    {"ParseArgument", isLine<'v'>, "--max-body allows bodies of up to 65535 bytes"},
    {"ParseArgument", always, kBodyStart},
    {"Rtpmap*", always, "the line is a=rtpmap:PAYLOAD NAME/CLOCK-RATE or .../CHANNELS"},
    {"MediaPort*", always, "the line is m=MEDIA PORT PROTOCOL FORMAT ..."},
    {"MediaProto*", always, "the line is m=MEDIA PORT PROTOCOL FORMAT ..."},
    {"MediaWord*", always, "the line is m=MEDIA PORT PROTOCOL FORMAT ..."},
});

bool names(std::string_view checks, std::string_view check) {
    if (!checks.ends_with('*')) {
        return checks == check;
    }
    checks.remove_suffix(1);
    return check.starts_with(checks);
}

constexpr size_t kLongestFound = 30;

std::string quotedWord(std::string_view text) {
    const std::string_view word = text.substr(0, text.find(' '));
    const std::string_view shown = word.substr(0, kLongestFound);
    return '"' + escaped(shown) + (shown.size() < word.size() ? "..." : "") + '"';
}

} // namespace

std::string_view hintFor(std::string_view check, std::string_view line) {
    for (const Hint &hint : kHints) {
        if (names(hint.checks, check) && hint.applies(line)) {
            return hint.text;
        }
    }
    return {};
}

std::string foundAt(std::string_view sentence, std::string_view line, size_t offset, bool atEnd) {
    const bool unexpected = sentence.starts_with("unexpected ");
    if (!unexpected && !sentence.starts_with("expected ")) {
        return {};
    }
    std::string_view rest = line.substr(std::min(offset, line.size()));
    if (unexpected) { // the text after the space is what matters
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    }
    if (rest.empty()) {
        return offset < line.size() ? "a space" : atEnd ? "the end of the text" : "the line end";
    }
    if (rest.front() == ' ') {
        return "a space";
    }
    const bool wholeLine = offset == 0 && rest.size() > 1 && rest[1] == '=';
    return wholeLine ? quotedWord(rest.substr(0, 2)) : quotedWord(rest);
}

} // namespace cli

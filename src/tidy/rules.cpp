#include "tidy/rules.hpp"

#include <array>
#include <iterator>
#include <string_view>

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

namespace {

// What a repair does to the record, and to what readers see.
enum class Loses : uint32_t { Nothing, Something };
enum class Session : uint32_t { Same, MayChange };

constexpr SDPTidyRule row(Rule rule, uint32_t set, const char *name, const char *wrong,
                          const char *done, const char *reference, Loses loses = Loses::Nothing,
                          Session session = Session::Same) {
    return {static_cast<uint32_t>(rule),
            set,
            name,
            wrong,
            done,
            reference,
            static_cast<uint32_t>(loses),
            static_cast<uint32_t>(session)};
}

constexpr uint32_t kDefault = SDP_TIDY_DEFAULT;
constexpr uint32_t kOptional = SDP_TIDY_OPTIONAL;
constexpr uint32_t kByName = SDP_TIDY_BY_NAME;
constexpr uint32_t kDoubt = SDP_TIDY_DOUBT;
constexpr auto kLoses = Loses::Something;
constexpr auto kKeeps = Loses::Nothing;
constexpr auto kMayChange = Session::MayChange;

constexpr SDPTidyRule kRules[] = {
    row(Rule::ByteOrderMark, kDefault, "ByteOrderMark",
        "a byte order mark before v=", "left it out", "RFC 3629 6"),
    row(Rule::LeadingBlank, kDefault, "LeadingBlank",
        "blanks or empty lines before v=", "left them out", "RFC 4566 5"),
    row(Rule::LineEndSize, kDefault, "LineEndSize", "the body is longer than the decoder takes",
        "wrote each CR LF as LF", "RFC 4566 5"),
    row(Rule::TrailingSpace, kDefault, "TrailingSpace", "white space after the line's last field",
        "left it out", "RFC 4566 9"),
    row(Rule::SpaceRun, kDefault, "SpaceRun", "white space other than one blank between fields",
        "wrote one blank, or none where none belongs", "RFC 4566 5"),
    row(Rule::LineEmpty, kDefault, "LineEmpty", "an optional line has no value",
        "left the line out", "RFC 4566 9"),
    row(Rule::LineOrder, kDefault, "LineOrder", "the line comes too late", "moved it to its place",
        "RFC 4566 5"),
    row(Rule::LineTwice, kDefault, "LineTwice", "the same line again", "left the second one out",
        "RFC 4566 5"),
    row(Rule::OriginMissing, kDefault, "OriginMissing", "there is no o= line",
        "wrote o=- 0 0 IN IP4 0.0.0.0", "RFC 4566 5.2"),
    row(Rule::OriginAddress, kDefault, "OriginAddress", "the o= line has no address",
        "wrote 0.0.0.0 or ::", "RFC 4566 5.2"),
    row(Rule::NameMissing, kDefault, "NameMissing", "there is no s= line", "wrote s=-",
        "RFC 4566 5.3"),
    row(Rule::NameEmpty, kDefault, "NameEmpty", "s= is empty", "wrote s=-", "RFC 4566 5.3"),
    row(Rule::TimeMissing, kDefault, "TimeMissing", "there is no t= line where one must be",
        "wrote t=0 0", "RFC 4566 5.9"),
    row(Rule::NetCase, kDefault, "NetCase", "IN, IP4 or IP6 in small letters",
        "wrote it in capitals", "RFC 4566 5"),
    row(Rule::AddrFamily, kDefault, "AddrFamily", "IP4 before an IPv6 address", "wrote IP6",
        "RFC 4566 5.7"),
    row(Rule::ValueMissing, kDefault, "ValueMissing", "an attribute's value is missing",
        "left the colon out, or the line where the attribute needs a value", "RFC 4566 5.13"),
    row(Rule::RtpmapSpace, kDefault, "RtpmapSpace",
        "a blank after the colon or a slash of a=rtpmap", "left it out", "RFC 4566 6"),
    row(Rule::SilenceParams, kDefault, "SilenceParams", "a=silenceSupp has no parameters",
        "wrote - for each", "RFC 3108 5.6.3.2"),

    row(Rule::LineEndCr, kOptional, "LineEndCr", "lines end in CR alone", "wrote CR LF",
        "RFC 4566 5", kKeeps, kMayChange),
    row(Rule::EmptyLines, kOptional, "EmptyLines", "an empty line between lines", "left it out",
        "RFC 4566 9", kKeeps, kMayChange),
    row(Rule::LineLevel, kOptional, "LineLevel", "a line of the session below an m= line",
        "moved it to the session", "RFC 4566 5", kKeeps, kMayChange),
    row(Rule::LineUnknown, kOptional, "LineUnknown", "a line of an unknown type",
        "kept it as an attribute, a=x-line", "RFC 4566 5"),
    row(Rule::OriginUser, kOptional, "OriginUser", "the o= line has no user name", "wrote -",
        "RFC 4566 5.2"),
    row(Rule::OriginSpaces, kOptional, "OriginSpaces",
        "blanks in the user name of o=", "wrote _ for each run of them", "RFC 4566 5.2", kLoses),
    row(Rule::OriginId, kOptional, "OriginId", "the session's id or version is not a number",
        "wrote a number made from its text", "RFC 4566 5.2", kLoses, kMayChange),
    row(Rule::AddrTypeWord, kOptional, "AddrTypeWord", "another word for IP4 or IP6",
        "wrote IP4 or IP6", "RFC 4566 5.7"),
    row(Rule::FormatMissing, kOptional, "FormatMissing", "the m= line has no format",
        "wrote the payloads that a=rtpmap lines name, or *", "RFC 4566 5.14", kKeeps, kMayChange),
    row(Rule::AttrColon, kOptional, "AttrColon", "a blank for the colon after an attribute's name",
        "wrote a colon", "RFC 4566 5.13", kKeeps, kMayChange),
    row(Rule::RtpmapClock, kOptional, "RtpmapClock", "a=rtpmap has no clock rate",
        "wrote the registered one", "RFC 4566 6"),
    row(Rule::RtpmapNoClock, kOptional, "RtpmapNoClock",
        "a=rtpmap has no clock rate, and none is registered",
        "kept the line as an attribute, a=x-line", "RFC 4566 6", kKeeps, kMayChange),

    row(Rule::ConnHost, kByName, "ConnHost", "a host name for the address of c=",
        "wrote 0.0.0.0 or ::, and kept the line as an attribute, a=x-line", "RFC 4566 5.7", kLoses,
        kMayChange),
    row(Rule::ConnAgain, kByName, "ConnAgain", "another c= line follows",
        "left the earlier one out", "RFC 4566 5.7", kLoses, kMayChange),
    row(Rule::LineAgain, kByName, "LineAgain", "a second line of a type that comes once",
        "left it out", "RFC 4566 5", kLoses, kMayChange),
    row(Rule::VersionMissing, kByName, "VersionMissing", "there is no v= line", "wrote v=0",
        "RFC 4566 5.1", kKeeps, kMayChange),
    row(Rule::KeySpace, kByName, "KeySpace", "white space before or after the = of a line",
        "left it out", "RFC 4566 5", kKeeps, kMayChange),
    row(Rule::AddrTypeMissing, kByName, "AddrTypeMissing",
        "an address without IP4 or IP6 before it", "wrote the one that it shows", "RFC 4566 5.7",
        kKeeps, kMayChange),

    row(Rule::CrInside, kDoubt, "CrInside", "a CR inside a line", "it is text; others end a line",
        "RFC 4566 9"),
    row(Rule::NulInside, kDoubt, "NulInside", "a NUL byte",
        "it is left out; others end the text there", "RFC 4566 9", kLoses),
    row(Rule::LinesAfterEnd, kDoubt, "LinesAfterEnd", "text after an empty line",
        "it is not read; others read on", "RFC 4566 9", kLoses, kMayChange),
    row(Rule::LineIndent, kDoubt, "LineIndent", "blanks before a line's type",
        "they are left out; others skip or refuse the line", "RFC 4566 5"),
    row(Rule::PortRange, kDoubt, "PortRange", "a port above 65535",
        "it is kept modulo 2^32; others cut it to 16 bits", "RFC 4566 5.14"),
    row(Rule::PayloadRange, kDoubt, "PayloadRange", "a payload number above 127",
        "it is kept modulo 2^32", "RFC 3550 5.1"),
    row(Rule::OctetRange, kDoubt, "OctetRange", "an octet of an address above 255",
        "its low byte is kept", "RFC 4566 9", kLoses, kMayChange),
    row(Rule::NumberWraps, kDoubt, "NumberWraps", "a number above 4294967295",
        "it is kept modulo 2^32", "RFC 4566 9", kLoses),
    row(Rule::AddressText, kDoubt, "AddressText", "not the text of an IPv6 address",
        "what can be read of it is kept", "RFC 4291 2.2", kLoses, kMayChange),
    row(Rule::DirectionTwice, kDoubt, "DirectionTwice", "directions contradict each other",
        "all are kept; others take the first or the last", "RFC 8866 6.7"),
    row(Rule::TimeAgain, kDoubt, "TimeAgain", "a second t= line",
        "it is read, and not written back", "RFC 4566 5.9", kLoses),
    row(Rule::RepeatUnit, kDoubt, "RepeatUnit", "a time unit of several letters",
        "the first letter is kept", "RFC 4566 5.10", kLoses),
    row(Rule::FramerateRounded, kDoubt, "FramerateRounded", "a frame rate with a fraction",
        "the fraction is dropped", "RFC 4566 6", kLoses),
    row(Rule::AttributeLost, kDoubt, "AttributeLost", "a value that is not written back as read",
        "see the grammar of its value", "RFC 4566 9", kLoses),
    row(Rule::MediaCount, kDoubt, "MediaCount", "more than 255 m= lines",
        "their number is kept modulo 256", "RFC 4566 5.14", kLoses, kMayChange),
};

// A rule's number is its row.
constexpr bool rowsAreInOrder() {
    for (uint32_t i = 0; i < std::size(kRules); ++i) {
        if (kRules[i].enRule != i) {
            return false;
        }
    }
    return true;
}
static_assert(std::size(kRules) == SDP_TIDY_RULE_COUNT && SDP_TIDY_RULE_COUNT <= 64);
static_assert(rowsAreInOrder());

// The rules of each set, a bit for each.
constexpr auto kSets = [] {
    std::array<uint64_t, SDP_TIDY_DOUBT + 1> sets = {};
    for (const SDPTidyRule &rule : kRules) {
        sets[rule.enSet] |= SDP_TIDY_BIT(rule.enRule);
    }
    return sets;
}();

} // namespace

uint64_t rulesOf(uint32_t set) {
    return set < std::size(kSets) ? kSets[set] : 0;
}

} // namespace sdpline::tidy

using namespace sdpline::tidy;

extern "C" {

const SDPTidyRule *SdpTidyRuleAt(uint32_t enRule) {
    return enRule < std::size(kRules) ? &kRules[enRule] : nullptr;
}

const SDPTidyRule *SdpTidyRuleByName(const char *pcName, uint32_t ulLen) {
    if (pcName == nullptr) {
        return nullptr;
    }
    for (const SDPTidyRule &rule : kRules) {
        if (sameIgnoringCase(rule.pcName, {pcName, ulLen})) {
            return &rule;
        }
    }
    return nullptr;
}

uint64_t SdpTidyRulesOf(uint32_t enSet) {
    return rulesOf(enSet);
}

} // extern "C"

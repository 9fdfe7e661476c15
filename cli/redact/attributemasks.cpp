// Decides what is masked in an attribute, by its name. Values of attributes without a rule are
// masked word by word.
#include <algorithm>

#include "redact/linemasks.hpp"
#include "sdpline/cpp/detail/attributes.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// Attributes whose values are words of a protocol, other than those that the library decodes.
constexpr std::string_view kNames[] = {
    "accept-types",
    "accept-wrapped-types",
    "acfg",
    "bundle-only",
    "cdsc",
    "cliprect",
    "connection",
    "content",
    "cparmax",
    "cparmin",
    "creq",
    "csup",
    "depend",
    "direction",
    "end-of-candidates",
    "extmap",
    "extmap-allow-mixed",
    "floorctrl",
    "framecount",
    "framesize",
    "gpmd",
    "ice-lite",
    "ice-mismatch",
    "ice-options",
    "ice-pacing",
    "imageattr",
    "max-message-size",
    "maxprate",
    "maxps",
    "mediaclk",
    "minptime",
    "mptime",
    "pcfg",
    "range",
    "record",
    "rid",
    "rtcp-fb",
    "rtcp-mux",
    "rtcp-mux-only",
    "rtcp-rsize",
    "rtcp-xr",
    "sctp-port",
    "sctpmap",
    "simulcast",
    "sqn",
    "ssrc-group",
    "T38FaxUdpFECMaxSpan",
    "x-dimensions",
    "x-framerate",
};

bool isProtocolAttribute(std::string_view name) {
    using sdpline::tables::AttributeRow;
    return isOneOf(name, kNames) ||
           std::ranges::any_of(sdpline::tables::kAttributes, [name](const AttributeRow &row) {
               return equalsIgnoringCase(row.bareName(), name);
           });
}

} // namespace

// a=name, a=name:value; refused lines may have another byte in place of the colon.
void LineMasks::attribute(size_t from) {
    const size_t nameEnd = std::min(line_.find_first_of(": \t", from), line_.size());
    const std::string_view name = line_.substr(from, nameEnd - from);
    const size_t value = std::min(nameEnd + 1, line_.size());
    if (const Rule rule = ruleOf(name)) {
        (this->*rule)(value);
    } else if (isProtocolAttribute(name)) {
        protocolWords(value);
    } else {
        word({from, nameEnd}, Others::Kept);
        if (isNumber(name, name.size()) && !isShortNumber(name)) {
            mask(Mask::Word, from, nameEnd); // it may be a part of a value
        }
        otherWords(value);
    }
}

const LineMasks::AttributeRule LineMasks::kAttributeRules[] = {
    {"acap", &LineMasks::nested},
    {"alt", &LineMasks::alternative},
    {"candidate", &LineMasks::candidate},
    {"cat", &LineMasks::freeText},
    {"charset", &LineMasks::registeredWords},
    {"cname", &LineMasks::secret},
    {"cpar", &LineMasks::nested},
    {"crypto", &LineMasks::crypto},
    {"ecan", &LineMasks::afterSwitch},
    {"fingerprint", &LineMasks::fingerprint},
    {"group", &LineMasks::firstWordKept},
    {"ice-pwd", &LineMasks::secret},
    {"ice-ufrag", &LineMasks::secret},
    {"identity", &LineMasks::secret},
    {"key-mgmt", &LineMasks::keyManagement},
    {"keywds", &LineMasks::freeText},
    {"lang", &LineMasks::registeredWords},
    {"msid-semantic", &LineMasks::firstWordKept},
    {"orient", &LineMasks::registeredWords},
    {"password", &LineMasks::secret},
    {"remote-candidates", &LineMasks::addresses},
    {"rtcp", &LineMasks::addresses},
    {"rtpmap", &LineMasks::encodingName},
    {"sdplang", &LineMasks::registeredWords},
    {"silenceSupp", &LineMasks::afterSwitch},
    {"source-filter", &LineMasks::addresses},
    {"ssrc", &LineMasks::nested},
    {"tcap", &LineMasks::transports},
    {"tls-id", &LineMasks::secret},
    {"tool", &LineMasks::whole},
    {"type", &LineMasks::registeredWords},
    {"zrtp-hash", &LineMasks::secret},
};

// Null where each word is judged by itself.
LineMasks::Rule LineMasks::ruleOf(std::string_view name) {
    for (const AttributeRule &row : kAttributeRules) {
        if (equalsIgnoringCase(row.name, name)) {
            return row.rule;
        }
    }
    return nullptr;
}

// a=orient:portrait, a=type:meeting (RFC 4566 section 6), a=charset:UTF-8, a=lang:en-GB: keeps
// registered words, and languages of two letters.
void LineMasks::registeredWords(size_t from) {
    constexpr std::string_view registered[] = {"portrait", "landscape", "seascape",   "broadcast",
                                               "meeting",  "moderated", "test",       "H332",
                                               "UTF-8",    "US-ASCII",  "ISO-8859-1", "ISO-10646"};
    const auto isLanguage = [](std::string_view word) {
        return (word.size() == 2 || (word.size() == 5 && word[2] == '-')) &&
               std::ranges::count_if(word, isLetter) == static_cast<int>(word.size() / 5 + 1) * 2;
    };
    for (const Word &each : wordsFrom(from)) {
        if (!isOneOf(text(each), registered) && !isLanguage(text(each))) {
            word(each, Others::Masked);
        }
    }
}

// a=group:BUNDLE 0 1
void LineMasks::firstWordKept(size_t from) {
    const std::vector<Word> words = wordsFrom(from);
    for (size_t i = 0; i < words.size(); ++i) {
        word(words[i], i == 0 ? Others::Kept : Others::Masked);
    }
}

// a=rtcp:53020 IN IP4 host, a=source-filter: incl IN IP4 * host host
void LineMasks::addresses(size_t from) {
    for (const Word &word : wordsFrom(from)) {
        const std::string_view value = text(word);
        const bool isKept = isNetworkWord(value) || value == "incl" || value == "excl" ||
                            isNumber(value, kPortDigits);
        if (!isKept) {
            addressWord(word);
        }
    }
}

// 1 AES_CM_128_HMAC_SHA1_80 inline:key|2^20|1:32 FEC_ORDER=SRTP_FEC (RFC 4568 section 9.1)
void LineMasks::crypto(size_t from) {
    constexpr size_t kLongestSuite = 48;
    const auto isSuite = [](std::string_view word) {
        constexpr std::string_view ciphers[] = {"AES", "AEAD", "ARIA", "CAMELLIA", "DOUBLE",
                                                "F8",  "MS",   "NULL", "SEED"};
        const bool isToken =
            std::ranges::all_of(word, [](char byte) { return isAlnum(byte) || byte == '_'; });
        return isToken && word.size() <= kLongestSuite && word.find('_') != kNone &&
               isOneOf(word.substr(0, word.find('_')), ciphers);
    };
    const std::vector<Word> words = wordsFrom(from);
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string_view value = text(words[i]);
        if (i == 0 ? !isNumber(value, 9) : i != 1 || !isSuite(value)) {
            return secret(words[i].begin + (value.starts_with("inline:") ? 7 : 0));
        }
    }
}

// sha-256 4A:AD:B9:...; a single word is not the name of a hash.
void LineMasks::fingerprint(size_t from) {
    const std::vector<Word> words = wordsFrom(from);
    const std::string_view hash = words.size() > 1 ? text(words[0]) : "";
    constexpr std::string_view hashes[] = {"sha-1",   "sha-224", "sha-256", "sha-384",
                                           "sha-512", "md5",     "md2"};
    const bool isHash = isOneOf(hash, hashes);
    secret(isHash ? words[1].begin : from);
}

// mikey AQAFgM0X... (RFC 4567 section 3)
void LineMasks::keyManagement(size_t from) {
    const std::vector<Word> words = wordsFrom(from);
    const bool isProtocol = words.size() > 1 && equalsIgnoringCase(text(words[0]), "mikey");
    secret(isProtocol ? words[1].begin : from);
}

// 1 1 UDP 2130706431 10.0.1.1 8998 typ srflx raddr 10.0.1.2 rport 9 ufrag x (RFC 8839 section
// 5.1). Foundations are computed from addresses.
void LineMasks::candidate(size_t from) {
    constexpr std::string_view names[] = {
        "typ",   "raddr", "rport", "tcptype",    "generation",   "ufrag", "pwd", "host", "srflx",
        "prflx", "relay", "so",    "network-id", "network-cost", "udp",   "tcp", "tls",  "ssltcp"};
    constexpr size_t kAddress = 4;
    const std::vector<Word> words = wordsFrom(from);
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string_view value = text(words[i]);
        const std::string_view before = i > 0 ? text(words[i - 1]) : "";
        if (before == "ufrag" || before == "pwd") {
            mask(Mask::Secret, words[i].begin, words[i].end);
        } else if (i == kAddress || before == "raddr") {
            addressWord(words[i]);
        } else if (i == 0 || !(isNumber(value, 10) || isOneOf(value, names))) {
            word(words[i], Others::Masked);
        }
    }
}

// 1 1 : user password 10.1.1.2 34640
void LineMasks::alternative(size_t from) {
    bool isSecret = false; // after the colon, up to the address
    for (const Word &each : wordsFrom(from)) {
        const bool isAddress = ipv4Of(text(each)) || ipv6Of(text(each));
        isSecret = isSecret && !isAddress;
        if (isSecret) {
            mask(Mask::Secret, each.begin, each.end);
        } else if (isAddress) {
            addressWord(each);
        } else if (!isNumber(text(each), kPortDigits)) {
            word(each, Others::Masked);
        }
        isSecret = isSecret || text(each) == ":";
    }
}

// A number and an attribute: a=acap:1 crypto:1 ... (RFC 5939 section 3.4.1), a=ssrc:1 cname:x
// (RFC 5576 section 4.1), a=cpar:a=rtpmap:... An attribute in one of these is not nested again.
void LineMasks::nested(size_t from) {
    const std::vector<Word> words = wordsFrom(from);
    const size_t first = !words.empty() && isNumber(text(words[0]), 10) ? 1 : 0;
    if (words.size() <= first) {
        return;
    }
    if (isNested_) {
        return secret(words[first].begin);
    }
    isNested_ = true;
    const size_t inner = words[first].begin;
    attribute(inner + (line_.substr(inner).starts_with("a=") ? 2 : 0));
}

// 1 RTP/SAVPF UDP/TLS/RTP/SAVP (RFC 5939 section 3.4.2)
void LineMasks::transports(size_t from) {
    const auto isTransport = [](std::string_view word) {
        return word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ/-") == kNone;
    };
    if (line_.find(':', from) != kNone) {
        return nested(from);
    }
    for (const Word &each : wordsFrom(from)) {
        if (!isTransport(text(each)) && !isNumber(text(each), kPortDigits)) {
            word(each, Others::Masked);
        }
    }
}

// fb on parameters, on parameters: the switch is decoded, the parameters are text.
void LineMasks::afterSwitch(size_t from) {
    for (const Word &each : wordsFrom(from)) {
        const std::string_view value = text(each);
        const size_t size = value.starts_with("on") ? 2 : value.starts_with("off") ? 3 : 0;
        if (size != 0) {
            // A mask directly after the switch would become part of it: the byte after it is kept.
            outline({std::min(each.begin + size + 1, each.end), each.end});
            return protocolWords(each.end);
        }
        if (value != "fb" && value != "f" && value != "b") {
            return protocolWords(each.begin);
        }
    }
}

// 96 opus/48000/2: the numbers after the name are not masked.
void LineMasks::encodingName(size_t from) {
    line_ = line_.substr(0, line_.find('/', from));
    protocolWords(from);
}

} // namespace cli

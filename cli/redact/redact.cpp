#include "redact/redact.hpp"

#include <algorithm>
#include <optional>

#include <arpa/inet.h>

#include "output/text.hpp"
#include "sdpline/sdpinternals.h"

namespace cli {

namespace {

constexpr size_t kNone = std::string_view::npos;

bool isWordEnd(char byte) {
    return byte == ' ' || byte == '\t';
}

// A piece of a line between blanks.
struct Word {
    size_t begin;
    size_t end;
};

std::vector<Word> wordsOf(std::string_view line, size_t from) {
    std::vector<Word> words;
    for (size_t at = from; at < line.size();) {
        if (isWordEnd(line[at])) {
            ++at;
            continue;
        }
        const auto *const end = std::find_if(line.begin() + at, line.end(), isWordEnd);
        words.push_back({at, static_cast<size_t>(end - line.begin())});
        at = words.back().end;
    }
    return words;
}

std::string_view textOf(std::string_view line, const Word &word) {
    return line.substr(word.begin, word.end - word.begin);
}

// Whether the word stands behind "IN IP4" or "IN IP6".
bool followsAddressType(std::string_view line, const std::vector<Word> &words, size_t i) {
    if (i < 2 || !equalsIgnoringCase(textOf(line, words[i - 2]), "IN")) {
        return false;
    }
    const std::string_view type = textOf(line, words[i - 1]);
    return equalsIgnoringCase(type, "IP4") || equalsIgnoringCase(type, "IP6");
}

std::optional<std::array<uint8_t, 4>> ipv4Of(std::string_view text) {
    std::array<uint8_t, 4> address = {};
    for (size_t octet = 0; octet < address.size(); ++octet) {
        uint32_t value = 0;
        size_t digits = 0;
        for (; digits < text.size() && isDigit(text[digits]) && value < 256; ++digits) {
            value = value * 10 + static_cast<uint32_t>(text[digits] - '0');
        }
        if (digits == 0 || value > 255) {
            return std::nullopt;
        }
        address[octet] = static_cast<uint8_t>(value);
        text.remove_prefix(digits);
        if (octet < 3) {
            if (!text.starts_with('.')) {
                return std::nullopt;
            }
            text.remove_prefix(1);
        }
    }
    return text.empty() ? std::optional(address) : std::nullopt;
}

std::optional<std::array<uint8_t, 16>> ipv6Of(std::string_view text) {
    std::array<uint8_t, 16> address = {};
    const bool valid = inet_pton(AF_INET6, std::string(text).c_str(), address.data()) == 1;
    return valid ? std::optional(address) : std::nullopt;
}

// As the decoder reads the address of a c= line, which is less strict.
std::optional<std::array<uint8_t, 16>> decodedIpv6Of(std::string_view text) {
    std::array<uint8_t, 16> address = {};
    const std::string copy(text);
    const bool valid = SdpLoadIpV6StringToArray(copy.c_str(), static_cast<uint32_t>(copy.size()),
                                                address.data()) == 0;
    return valid ? std::optional(address) : std::nullopt;
}

// Letters and digits become "x": the shape of a text that must not be shown.
std::string shapeOf(std::string_view text) {
    std::string shape(text);
    std::replace_if(
        shape.begin(), shape.end(),
        [](char byte) { return isAlnum(byte) || static_cast<unsigned char>(byte) > 126; }, 'x');
    return shape;
}

// The attributes whose values are secret, and from which word of the value on.
struct SecretAttribute {
    std::string_view name;
    size_t fromWord;
};
constexpr SecretAttribute kSecretAttributes[] = {
    {"crypto", 2},    {"key-mgmt", 1}, {"fingerprint", 1},
    {"ice-ufrag", 0}, {"ice-pwd", 0},  {"identity", 0},
};

const SecretAttribute *secretAttribute(std::string_view name) {
    const auto *const row =
        std::find_if(std::begin(kSecretAttributes), std::end(kSecretAttributes),
                     [name](const auto &each) { return equalsIgnoringCase(each.name, name); });
    return row != std::end(kSecretAttributes) ? row : nullptr;
}

// "msrp://" of "msrp://host/path", "http://" where there is none.
std::string uriScheme(std::string_view uri) {
    const size_t end = uri.find("://");
    size_t begin = end == kNone ? 0 : end;
    while (begin > 0 && isAlnum(uri[begin - 1])) {
        --begin;
    }
    const std::string scheme(uri.substr(begin, end == kNone ? 0 : end - begin));
    return (scheme.empty() ? "http" : scheme) + "://";
}

bool isAddressByte(char byte) {
    return isAlnum(byte) || byte == '.' || byte == ':';
}

bool isMailByte(char byte) {
    return isAlnum(byte) || std::string_view("._%+-@").find(byte) != kNone;
}

// Where the run of such bytes that begins at the offset ends.
size_t runEnd(std::string_view line, size_t at, size_t end, bool (*belongs)(char)) {
    while (at < end && belongs(line[at])) {
        ++at;
    }
    return at;
}

} // namespace

std::string applied(std::string_view text, const std::vector<Edit> &edits) {
    std::string result;
    size_t at = 0;
    for (const Edit &edit : edits) {
        result += text.substr(at, edit.begin - at);
        result += edit.with;
        at = edit.end;
    }
    result += text.substr(at);
    return result;
}

size_t movedOffset(size_t offset, const std::vector<Edit> &edits) {
    size_t moved = offset;
    for (const Edit &edit : edits) {
        if (offset < edit.begin) {
            break;
        }
        if (offset < edit.end) {
            const bool sameShape = edit.with.size() == edit.end - edit.begin;
            return sameShape ? moved : moved - (offset - edit.begin);
        }
        moved = moved - (edit.end - edit.begin) + edit.with.size();
    }
    return moved;
}

size_t Redactor::number(Kind kind, std::string_view value) {
    auto &known = numbers_[kind];
    const auto found = known.find(value);
    return found != known.end() ? found->second
                                : known.emplace(value, known.size() + 1).first->second;
}

std::string Redactor::named(Kind kind, std::string_view value) {
    const std::string n = std::to_string(number(kind, value));
    switch (kind) {
    case User: return "user" + n;
    case Host: return "host" + n + ".invalid";
    case Email: return "email" + n + "@redacted.invalid";
    case Phone: return "phone" + n;
    case Uri: return uriScheme(value) + "redacted.invalid/" + n;
    default: return "secret" + n;
    }
}

std::string Redactor::user(std::string_view name) {
    return name == "-" || name.empty() ? std::string(name) : named(User, name);
}

// Masks of 198.18.0.0/15, the block for benchmarks (RFC 2544). 0.0.0.0 is nobody's.
std::string Redactor::ipv4(const std::array<uint8_t, 4> &address) {
    if (address == std::array<uint8_t, 4>{}) {
        return "0.0.0.0";
    }
    const size_t n = number(Ipv4, {reinterpret_cast<const char *>(address.data()), 4});
    return "198." + std::to_string(18 + (n >> 16 & 1)) + '.' + std::to_string(n >> 8 & 255) + '.' +
           std::to_string(n & 255);
}

// Masks of 2001:db8::/32, the prefix for documentation (RFC 3849). "::" is nobody's.
std::string Redactor::ipv6(const std::array<uint8_t, 16> &address) {
    if (address == std::array<uint8_t, 16>{}) {
        return "::";
    }
    const size_t n = number(Ipv6, {reinterpret_cast<const char *>(address.data()), 16});
    const std::array<uint8_t, 16> mask = {0x20,
                                          0x01,
                                          0x0d,
                                          0xb8,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          static_cast<uint8_t>(n >> 24),
                                          static_cast<uint8_t>(n >> 16),
                                          static_cast<uint8_t>(n >> 8),
                                          static_cast<uint8_t>(n)};
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(AF_INET6, mask.data(), text, sizeof text);
    return text;
}

std::string Redactor::address(std::string_view address) {
    if (const auto bytes = ipv4Of(address)) {
        return ipv4(*bytes);
    }
    if (address.find(':') != kNone) {
        const auto bytes = decodedIpv6Of(address);
        return bytes ? ipv6(*bytes) : shapeOf(address);
    }
    const bool isHost = std::any_of(address.begin(), address.end(), isLetter);
    return isHost ? named(Host, address) : shapeOf(address);
}

void Redactor::learn(std::string_view body) {
    while (!body.empty()) {
        const size_t end = std::min(body.find('\n'), body.size());
        std::string_view line = body.substr(0, end);
        body.remove_prefix(std::min(end + 1, body.size()));
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        if (!line.empty()) {
            editsOf(line);
        }
    }
}

std::vector<Edit> Redactor::editsOf(std::string_view line) {
    const size_t start = std::min(line.find_first_not_of(std::string_view(" \0", 2)), line.size());
    const std::string_view rest = line.substr(start);
    std::vector<Edit> edits;
    if (rest.size() < 2 || !isLetter(rest[0]) || rest[1] != '=') {
        return {{0, line.size(), shapeOf(line)}};
    }
    const std::string_view value = rest.substr(2);
    const size_t valueAt = start + 2;
    const auto whole = [&](Kind kind) {
        if (!value.empty()) {
            edits.push_back({valueAt, line.size(), named(kind, value)});
        }
    };
    switch (rest[0] | 0x20) { // in either case
    case 'o': originEdits(line, edits); break;
    case 'e': whole(Email); break;
    case 'p': whole(Phone); break;
    case 'u': whole(Uri); break;
    case 'k': keyEdits(line, edits); break;
    case 'a': attributeEdits(line, edits); break;
    default: wordEdits(line, valueAt, edits); break;
    }
    return edits;
}

// o=alice 1 2 IN IP4 192.0.2.1; refused lines may lack a word.
void Redactor::originEdits(std::string_view line, std::vector<Edit> &edits) {
    const std::vector<Word> words = wordsOf(line, line.find('=') + 1);
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = textOf(line, words[i]);
        if (i == 0) {
            edits.push_back({words[i].begin, words[i].end, user(word)});
        } else if (i >= 5 || followsAddressType(line, words, i)) {
            edits.push_back({words[i].begin, words[i].end, address(word)});
        } else {
            wordEdit(line, words[i].begin, words[i].end, edits);
        }
    }
}

// k=prompt, k=clear:key
void Redactor::keyEdits(std::string_view line, std::vector<Edit> &edits) {
    const size_t begin = line.find('=') + 1;
    const size_t colon = line.find(':', begin);
    const size_t secret = colon == kNone ? begin : colon + 1;
    if (line.substr(begin) != "prompt" && secret < line.size()) {
        edits.push_back({secret, line.size(), named(Secret, line.substr(secret))});
    }
}

// a=name, a=name:value; refused lines may have something else between them.
void Redactor::attributeEdits(std::string_view line, std::vector<Edit> &edits) {
    const size_t begin = line.find('=') + 1;
    const size_t nameEnd = std::min(line.find_first_of(": \t", begin), line.size());
    const std::string_view name = line.substr(begin, nameEnd - begin);
    const size_t value = std::min(nameEnd + 1, line.size());
    wordEdit(line, begin, nameEnd, edits);
    if (const SecretAttribute *const secret = secretAttribute(name)) {
        const std::vector<Word> words = wordsOf(line, value);
        if (words.size() > secret->fromWord) {
            const size_t from = words[secret->fromWord].begin;
            const bool isInline = line.substr(from).starts_with("inline:");
            const size_t keyAt = from + (isInline ? 7 : 0);
            edits.push_back({keyAt, line.size(), named(Secret, line.substr(keyAt))});
        }
    } else if (equalsIgnoringCase(name, "candidate") ||
               equalsIgnoringCase(name, "remote-candidates")) {
        candidateEdits(line, value, edits);
    } else if (equalsIgnoringCase(name, "rtpmap")) { // the name ends at its "/"
        wordEdits(line.substr(0, line.find('/', value)), value, edits);
    } else {
        wordEdits(line, value, edits);
    }
}

// ... 1 UDP 2130706431 10.0.1.1 8998 typ host raddr 10.0.1.2 rport 9 ufrag x (RFC 8839 section 5.1)
void Redactor::candidateEdits(std::string_view line, size_t from, std::vector<Edit> &edits) {
    const std::vector<Word> words = wordsOf(line, from);
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = textOf(line, words[i]);
        const std::string_view before = i > 0 ? textOf(line, words[i - 1]) : "";
        if (before == "ufrag" || before == "pwd") {
            edits.push_back({words[i].begin, words[i].end, named(Secret, word)});
        } else if (before == "raddr" || word.find_first_of(".:") != kNone) {
            edits.push_back({words[i].begin, words[i].end, address(word)});
        }
    }
}

// Looks at every word of the line behind the offset.
void Redactor::wordEdits(std::string_view line, size_t from, std::vector<Edit> &edits) {
    const std::vector<Word> words = wordsOf(line, from);
    for (size_t i = 0; i < words.size(); ++i) {
        if (followsAddressType(line, words, i)) {
            const std::string_view text = textOf(line, words[i]);
            const std::string_view host = text.substr(0, text.find('/'));
            edits.push_back({words[i].begin, words[i].begin + host.size(), address(host)});
        } else {
            wordEdit(line, words[i].begin, words[i].end, edits);
        }
    }
}

// One word: a key, a URI, a mail or SIP address, a cname, or IP addresses in other text.
void Redactor::wordEdit(std::string_view line, size_t begin, size_t end, std::vector<Edit> &edits) {
    const std::string_view word = line.substr(begin, end - begin);
    for (const std::string_view marker : {"inline:", "cname:"}) {
        const size_t found = word.find(marker);
        if (found != kNone && found + marker.size() < word.size()) {
            const size_t value = begin + found + marker.size();
            edits.push_back({value, end, named(Secret, line.substr(value, end - value))});
            return;
        }
    }
    if (word.find("://") != kNone) {
        edits.push_back({begin, end, named(Uri, word)});
        return;
    }
    for (size_t at = begin; at < end;) {
        const size_t mailEnd = runEnd(line, at, end, isMailByte);
        const std::string_view mail = line.substr(at, mailEnd - at);
        const size_t sign = mail.find('@');
        if (sign != kNone && sign > 0 && sign + 1 < mail.size()) {
            edits.push_back({at, mailEnd, named(Email, mail)});
            at = mailEnd;
        } else {
            at = addressEdit(line, at, end, edits);
        }
    }
}

// Masks the address that begins at the offset, if one does; answers where to look on.
size_t Redactor::addressEdit(std::string_view line, size_t at, size_t end,
                             std::vector<Edit> &edits) {
    const size_t run = runEnd(line, at, end, isAddressByte);
    std::string_view text = line.substr(at, run - at);
    while (text.ends_with('.')) {
        text.remove_suffix(1); // of the sentence
    }
    if (const auto bytes = ipv6Of(text)) {
        edits.push_back({at, at + text.size(), ipv6(*bytes)});
        return run;
    }
    const size_t colon = text.find(':'); // "192.0.2.1:5060", "sip:192.0.2.1"
    const std::string_view first = text.substr(0, colon);
    if (const auto bytes = ipv4Of(first)) {
        edits.push_back({at, at + first.size(), ipv4(*bytes)});
    }
    return colon != kNone ? at + colon + 1 : std::max(run, at + 1);
}

} // namespace cli

#include "redact/shapes.hpp"

#include <algorithm>

#include "sdpline/cpp/address.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr size_t kLongestIpv6 = 45; // "ffff:ffff:ffff:ffff:ffff:ffff:255.255.255.255"
constexpr size_t kShortestRandom = 20;
constexpr size_t kShortestHex = 32;
constexpr size_t kShortestPhone = 5; // digits
constexpr size_t kFewestPairs = 6;   // of hexadecimal digits: a hardware address

constexpr std::string_view kHostSchemes[] = {"sip",  "sips", "h323",   "mailto", "im",
                                             "pres", "xmpp", "callto", "skype"};
constexpr std::string_view kPhoneScheme = "tel";
constexpr std::string_view kSecretNames[] = {"inline", "cname", "password", "passwd", "pwd",
                                             "secret", "key",   "token",    "auth"};

bool isHex(char byte) {
    return isDigit(byte) || (isLetter(byte) && (byte | 0x20) <= 'f');
}

bool isIpv6Byte(char byte) {
    return isHex(byte) || byte == ':' || byte == '.';
}

bool isDottedByte(char byte) {
    return isDigit(byte) || byte == '.';
}

bool isHostByte(char byte) {
    return isWordByte(byte) || byte == '.' || byte == '-' || byte == '_';
}

bool isPhoneByte(char byte) {
    return isDigit(byte) || byte == '.' || byte == '-';
}

// Bytes of base64 in both alphabets, and of tokens in base64.
bool isKeyByte(char byte) {
    return isAlnum(byte) || byte == '+' || byte == '/' || byte == '_' || byte == '-';
}

// Bytes that end a URI or an address in a text.
bool isBracket(char byte) {
    return std::string_view("<>()[]{},;\"|").find(byte) != kNone;
}

size_t countOf(std::string_view text, bool (*counts)(char)) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), counts));
}

// The offset of the first occurrence of the name, in any case, before one of the bytes `ends` and
// not after a letter or digit.
size_t findName(std::string_view text, std::string_view name, std::string_view ends) {
    for (size_t at = text.find_first_of(ends); at != kNone; at = text.find_first_of(ends, at + 1)) {
        const size_t begin = at - std::min(at, name.size());
        const bool bounded = begin == 0 || !isWordByte(text[begin - 1]);
        if (bounded && equalsIgnoringCase(text.substr(begin, at - begin), name)) {
            return begin;
        }
    }
    return kNone;
}

// 8-4-4-4-12 hexadecimal digits (RFC 9562 section 4)
bool isUuid(std::string_view text) {
    if (text.size() != 36) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash ? text[i] != '-' : !isHex(text[i])) {
            return false;
        }
    }
    return true;
}

// "4A:AD:B9:...", or with dashes: a fingerprint or a hardware address.
bool isPairs(std::string_view text) {
    if (text.size() < 3 * kFewestPairs - 1 || text.size() % 3 != 2) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2 ? text[i] != text[2] || isAlnum(text[i]) : !isHex(text[i])) {
            return false;
        }
    }
    return true;
}

// A word that looks random: letters in both cases and digits, or many hexadecimal digits.
bool isRandom(std::string_view text) {
    if (text.size() < kShortestRandom) {
        return false;
    }
    const size_t digits = countOf(text, isDigit);
    const size_t lower = countOf(text, [](char byte) { return byte >= 'a' && byte <= 'z'; });
    const size_t upper = countOf(text, [](char byte) { return byte >= 'A' && byte <= 'Z'; });
    const bool isHexText = countOf(text, isHex) == text.size();
    return digits != 0 && ((lower != 0 && upper != 0) ||
                           (isHexText && text.size() >= kShortestHex && lower + upper != 0));
}

// A dotted name whose last label is not a number. "vnd." and "prs." begin media types (RFC 6838).
bool isHost(std::string_view text) {
    const size_t dot = text.rfind('.');
    if (dot == kNone || dot == 0 || text.starts_with("vnd.") || text.starts_with("prs.")) {
        return false;
    }
    const std::string_view last = text.substr(dot + 1);
    return last.size() >= 2 && !isDigit(last.front()) && countOf(text, isHostByte) == text.size();
}

class Search {
public:
    explicit Search(std::string_view word) : word_(word) {}

    std::vector<Finding> run() {
        size_t end = word_.size();
        for (const std::string_view name : kSecretNames) {
            const size_t found = findName(word_.substr(0, end), name, ":=");
            if (found != kNone && found + name.size() + 1 < end) {
                secret_ = {Shape::Secret, found + name.size() + 1, word_.size(), found};
                end = found;
            }
        }
        uriOrSegments(end);
        if (secret_.end != 0) {
            findings_.push_back(secret_);
        }
        return std::move(findings_);
    }

private:
    void add(Shape shape, size_t begin, size_t end) { addAfter(begin, shape, begin, end); }

    void addAfter(size_t prefix, Shape shape, size_t begin, size_t end) {
        if (begin < end) {
            findings_.push_back({shape, begin, end, prefix});
        }
    }

    std::string_view part(size_t begin, size_t end) const {
        return word_.substr(begin, end - begin);
    }

    // The end of the run of such bytes.
    size_t runEnd(size_t at, size_t end, bool (*belongs)(char)) const {
        const auto *const last = std::find_if_not(word_.begin() + at, word_.begin() + end, belongs);
        return static_cast<size_t>(last - word_.begin());
    }

    void uriOrSegments(size_t end) {
        if (part(0, end).find("://") != kNone) {
            add(Shape::Uri, 0, end);
            return;
        }
        for (size_t at = 0; at < end;) {
            const size_t next = runEnd(at, end, [](char byte) { return !isBracket(byte); });
            segment(at, next);
            at = next + 1;
        }
    }

    // Between brackets, commas and semicolons.
    void segment(size_t begin, size_t end) {
        const std::string_view text = part(begin, end);
        if (const size_t found = findName(text, kPhoneScheme, ":"); found != kNone) {
            mailOrKeys(begin, begin, begin + found);
            addAfter(begin + found, Shape::Phone, begin + found + kPhoneScheme.size() + 1, end);
            return;
        }
        for (const std::string_view scheme : kHostSchemes) {
            if (const size_t found = findName(text, scheme, ":"); found != kNone) {
                mailOrKeys(begin, begin, begin + found);
                afterScheme(begin + found, begin + found + scheme.size() + 1, end);
                return;
            }
        }
        mailOrKeys(begin, begin, end);
    }

    // "alice@example.com", "pbx:5060", "192.0.2.1"
    void afterScheme(size_t prefix, size_t begin, size_t end) {
        const std::string_view text = part(begin, end);
        if (text.find('@') != kNone) {
            mailOrKeys(prefix, begin, end);
            return;
        }
        const std::string_view host = text.substr(0, text.find(':'));
        const Shape shape = ipv4Of(host) ? Shape::Ipv4 : Shape::Host;
        addAfter(prefix, shape, begin, begin + host.size());
        keys(begin + host.size(), end);
    }

    // A mail address ends before a port.
    void mailOrKeys(size_t prefix, size_t begin, size_t end) {
        const std::string_view text = part(begin, end);
        const size_t sign = text.rfind('@');
        if (sign == kNone) {
            keys(begin, end);
            return;
        }
        const size_t colon = text.rfind(':');
        const bool hasPort = colon != kNone && colon > sign && colon + 6 >= text.size() &&
                             countOf(text.substr(colon + 1), isDigit) == text.size() - colon - 1;
        addAfter(prefix, Shape::Email, begin, hasPort ? begin + colon : end);
    }

    // Finds long words of mixed letters and digits, and searches the text between them.
    void keys(size_t begin, size_t end) {
        size_t done = begin;
        for (size_t at = begin; at < end;) {
            size_t next = runEnd(at, end, isKeyByte);
            if (isUuid(part(at, next)) || isPairs(part(at, next))) {
                tokens(done, at);
                add(isUuid(part(at, next)) ? Shape::Uuid : Shape::Secret, at, next);
                done = next;
            } else if (isRandom(part(at, next))) {
                tokens(done, at);
                next = runEnd(next, end, [](char byte) { return byte == '='; });
                add(Shape::Secret, at, next);
                done = next;
            }
            at = std::max(next, at + 1);
        }
        tokens(done, end);
    }

    // Searches runs of bytes that occur in addresses and names.
    void tokens(size_t begin, size_t end) {
        const auto belongs = [](char byte) {
            return isHostByte(byte) || byte == ':' || byte == '%' || byte == '+' || byte == '~';
        };
        for (size_t at = begin; at < end;) {
            const size_t next = runEnd(at, end, belongs);
            colons(at, next);
            at = next + 1;
        }
    }

    // Finds IPv6 addresses and fingerprints, and searches the parts between colons.
    void colons(size_t begin, size_t end) {
        size_t done = begin;
        for (size_t at = begin; at < end;) {
            size_t next = runEnd(at, end, isIpv6Byte);
            const Finding found = trimmedRun(at, next);
            if (std::count(word_.begin() + found.begin, word_.begin() + found.end, ':') >= 2) {
                names(done, found.begin);
                // The zone of a link-local address belongs to it.
                next = next < end && word_[next] == '%' ? end : next;
                done = next == end ? end : found.end;
                const bool isAddress = ipv6Of(part(found.begin, found.end)).has_value();
                add(isAddress ? Shape::Ipv6 : Shape::Secret, found.begin, done);
            }
            at = std::max(next, at + 1);
        }
        names(done, end);
    }

    // The run without the colon of a name before it, and without punctuation at the end of a
    // sentence.
    Finding trimmedRun(size_t begin, size_t end) const {
        if (part(begin, end).starts_with(':') && !part(begin, end).starts_with("::")) {
            ++begin;
        }
        while (end > begin && (word_[end - 1] == '.' ||
                               (word_[end - 1] == ':' && !part(begin, end).ends_with("::")))) {
            --end;
        }
        return {Shape::Ipv6, begin, end, begin};
    }

    void names(size_t begin, size_t end) {
        for (size_t at = begin; at < end;) {
            const size_t next =
                runEnd(at, end, [](char byte) { return byte != ':' && byte != '%'; });
            name(at, next);
            at = next + 1;
        }
    }

    // Finds a host name, a phone number, or IPv4 addresses between other text.
    void name(size_t begin, size_t end) {
        while (end > begin && word_[end - 1] == '.') {
            --end;
        }
        const std::string_view text = part(begin, end);
        if (isHost(text)) {
            add(Shape::Host, begin, end);
            return;
        }
        if (text.starts_with('+') && countOf(text.substr(1), isPhoneByte) + 1 == text.size() &&
            countOf(text, isDigit) >= kShortestPhone) {
            add(Shape::Phone, begin, end);
            return;
        }
        for (size_t at = begin; at < end;) {
            const size_t next = runEnd(at, end, isDottedByte);
            dotted(at, next);
            at = std::max(next, at + 1);
        }
    }

    // Text with at least three dots is an address, or was meant to be one.
    void dotted(size_t begin, size_t end) {
        while (begin < end && word_[begin] == '.') {
            ++begin;
        }
        while (end > begin && word_[end - 1] == '.') {
            --end;
        }
        if (std::count(word_.begin() + begin, word_.begin() + end, '.') >= 3) {
            add(ipv4Of(part(begin, end)) ? Shape::Ipv4 : Shape::Secret, begin, end);
        }
    }

    std::string_view word_;
    std::vector<Finding> findings_;
    Finding secret_ = {Shape::Secret, 0, 0, 0};
};

} // namespace

bool isWordByte(char byte) {
    return isAlnum(byte) || static_cast<unsigned char>(byte) > 126;
}

size_t digitsOf(std::string_view text) {
    return countOf(text, isDigit);
}

bool isNumber(std::string_view text, size_t mostDigits) {
    return !text.empty() && text.size() <= mostDigits && digitsOf(text) == text.size();
}

bool isShortNumber(std::string_view word) {
    constexpr size_t kMostDigits = 2;
    return digitsOf(word) == countOf(word, isWordByte) && digitsOf(word) <= kMostDigits;
}

bool isNetworkWord(std::string_view word) {
    return word == "IN" || word == "IP4" || word == "IP6";
}

bool isOneOf(std::string_view word, std::span<const std::string_view> list) {
    return std::any_of(list.begin(), list.end(),
                       [word](std::string_view each) { return equalsIgnoringCase(each, word); });
}

// Unlike Address::fromText, accepts leading zeros.
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
    const auto address = sdpline::Address::fromText(text.substr(0, kLongestIpv6 + 1));
    if (!address || !address->isV6()) {
        return std::nullopt;
    }
    std::array<uint8_t, 16> octets;
    std::ranges::copy(address->octets(), octets.begin());
    return octets;
}

std::vector<Finding> findingsOf(std::string_view word) {
    return Search(word).run();
}

std::string outlineOf(std::string_view text) {
    std::string outline(text);
    std::replace_if(outline.begin(), outline.end(), isWordByte, 'x');
    return outline;
}

} // namespace cli

#include "redact/linemasks.hpp"

#include <algorithm>

#include "sdpline/sdpinternals.h"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr std::string_view kBlanks = " \t";

// Words of session names that say nothing about anybody.
constexpr std::string_view kPlainWords[] = {
    "a",   "and",     "at",    "audio", "call", "conference", "fax",   "for",  "from",
    "in",  "media",   "name",  "no",    "of",   "on",         "or",    "rtp",  "sdp",
    "sip", "session", "sound", "talk",  "the",  "to",         "video", "with",
};

// Words that are common in values of all attributes.
constexpr std::string_view kCommonWords[] = {
    "IN",   "IP4",     "IP6", "active", "application", "audio",   "both", "data", "false", "image",
    "main", "message", "no",  "off",    "on",          "passive", "text", "true", "video", "yes",
};

// "2890844526", "-1h", "7days"
bool isTime(std::string_view word) {
    word.remove_prefix(word.starts_with('-') ? 1 : 0);
    const size_t digits = std::min(word.find_first_not_of("0123456789"), word.size());
    const std::string_view unit = word.substr(digits);
    return digits > 0 && unit.size() <= 4 && std::all_of(unit.begin(), unit.end(), isLetter);
}

// "AS:128"
bool isBandwidth(std::string_view word) {
    const size_t colon = word.find(':');
    return colon != kNone && word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ-") == colon &&
           isNumber(word.substr(colon + 1), word.size());
}

// Reads an address as the decoder reads that of a c= line, which is less strict than inet_pton.
std::optional<std::array<uint8_t, 16>> decodedIpv6Of(std::string_view text) {
    std::array<uint8_t, 16> address = {};
    const std::string copy(text);
    const bool valid = SdpLoadIpV6StringToArray(copy.c_str(), static_cast<uint32_t>(copy.size()),
                                                address.data()) == 0;
    return valid ? std::optional(address) : std::nullopt;
}

Mask maskOf(Shape shape) {
    switch (shape) {
    case Shape::Phone: return Mask::Phone;
    case Shape::Email: return Mask::Email;
    case Shape::Uri: return Mask::Uri;
    case Shape::Secret: return Mask::Secret;
    case Shape::Uuid: return Mask::Word;
    default: return Mask::Host;
    }
}

} // namespace

std::string addressMask(std::string_view address, Masks &masks) {
    if (const auto bytes = ipv4Of(address)) {
        return masks.ipv4(*bytes);
    }
    if (address.find(':') != kNone) {
        const auto bytes = decodedIpv6Of(address);
        return bytes ? masks.ipv6(*bytes) : outlineOf(address);
    }
    const bool isHost = std::any_of(address.begin(), address.end(),
                                    [](char byte) { return isWordByte(byte) && !isDigit(byte); });
    return isHost ? masks.of(Mask::Host, address) : outlineOf(address);
}

// ---- Lines

std::vector<Edit> LineMasks::run() {
    const size_t start = std::min(line_.find_first_not_of(kDroppedBeforeLine), line_.size());
    const std::string_view rest = line_.substr(start);
    constexpr std::string_view keys = "vosiuepcbtrzkam";
    if (rest.size() < 2 || rest[1] != '=' ||
        keys.find(static_cast<char>(rest[0] | 0x20)) == kNone) {
        edits_.push_back({0, line_.size(), outlineOf(line_)});
    } else {
        line(static_cast<char>(rest[0] | 0x20), start + 2);
    }
    return std::move(edits_);
}

void LineMasks::line(char key, size_t from) {
    switch (key) {
    case 'o': origin(from); break;
    case 's':
    case 'i': freeText(from); break;
    case 'u': mask(Mask::Uri, from, line_.size()); break;
    case 'e': mask(Mask::Email, from, line_.size()); break;
    case 'p': mask(Mask::Phone, from, line_.size()); break;
    case 'c': connection(from); break;
    case 'k': this->key(from); break;
    case 'a': attribute(from); break;
    case 'm': protocolWords(from); break;
    default: numbers(from); break;
    }
}

// o=alice 1 2 IN IP4 192.0.2.1; a word may be missing in a refused line. "-" names no user.
void LineMasks::origin(size_t from) {
    const std::vector<Word> words = wordsFrom(from);
    for (size_t i = 0; i < words.size(); ++i) {
        const auto [begin, end] = words[i];
        const std::string_view value = text(words[i]);
        if (i == 0) {
            value == "-" ? void() : mask(Mask::User, begin, end);
        } else if (i < 3 && !std::all_of(value.begin(), value.end(), isDigit)) {
            mask(Mask::Word, begin, end); // a word in place of a number, which is refused
        } else if (i == 1) {
            edits_.push_back({begin, end, masks_.sessionId(value)});
        } else if (i == 2) {
            edits_.push_back({begin, end, masks_.sessionVersion(value)});
        } else if (!isNetworkWord(value)) {
            edits_.push_back({begin, end, addressMask(value, masks_)});
        }
    }
}

// c=IN IP4 224.2.1.1/127/3
void LineMasks::connection(size_t from) {
    for (const Word &word : wordsFrom(from)) {
        if (!isNetworkWord(text(word))) {
            addressWord(word);
        }
    }
}

// k=prompt, k=clear:key; any other word before the colon may be part of the key.
void LineMasks::key(size_t from) {
    const std::string_view value = line_.substr(from);
    for (const std::string_view method : {"clear:", "base64:", "uri:"}) {
        if (value.starts_with(method)) {
            return secret(from + method.size());
        }
    }
    if (value != "prompt") {
        secret(from);
    }
}

// v= b= t= r= z=
void LineMasks::numbers(size_t from) {
    for (const Word &word : wordsFrom(from)) {
        if (!isTime(text(word)) && !isBandwidth(text(word))) {
            outline(word);
        }
    }
}

// Masks addresses and the like word by word, and each run of other words by one mask.
void LineMasks::freeText(size_t from) {
    const auto isPhonePart = [this](const Word &word) {
        return text(word).find_first_not_of("0123456789+-.()/") == kNone;
    };
    const std::vector<Word> words = wordsFrom(from);
    for (size_t i = 0; i < words.size();) {
        const std::vector<Finding> found = findingsOf(text(words[i]));
        const Word inner = core(words[i]);
        if (inner.begin == inner.end ||
            (found.empty() ? isOneOf(text(inner), kPlainWords) && !isKnown(inner)
                           : explains(words[i], found))) {
            findings(words[i++], found);
            continue;
        }
        size_t last = i;
        const auto joins = [&](const Word &next) {
            return core(next).begin != core(next).end &&
                   isPhonePart(next) == isPhonePart(words[i]) && findingsOf(text(next)).empty() &&
                   !isOneOf(text(core(next)), kPlainWords);
        };
        while (last + 1 < words.size() && joins(words[last + 1])) {
            ++last;
        }
        textRun(words[i], words[last]);
        i = last + 1;
    }
}

// ---- Words

void LineMasks::words(size_t from, Others others) {
    const std::vector<Word> words = wordsFrom(from);
    for (size_t i = 0; i < words.size(); ++i) {
        isAddressPlace(words, i) ? addressWord(words[i]) : word(words[i], others);
    }
}

void LineMasks::word(const Word &word, Others others) {
    const std::vector<Finding> found = findingsOf(text(word));
    const Word inner = core(word);
    // Readers that end lines at a CR would find another line in the word.
    const bool isOneLine = text(inner).find('\r') == kNone;
    if ((others == Others::Masked || !isOneLine) && inner.begin != inner.end) {
        const bool isHarmless =
            (isShortNumber(text(inner)) || isOneOf(text(inner), kCommonWords)) && !isKnown(inner);
        if (!isOneLine || (found.empty() ? !isHarmless : !explains(word, found))) {
            return mask(Mask::Word, inner.begin, inner.end);
        }
    }
    findings(word, found);
}

// Keeps the TTL and the number of addresses: "/127/3".
void LineMasks::addressWord(const Word &word) {
    const size_t size = std::min(text(word).find('/'), text(word).size());
    const std::string_view host = text(word).substr(0, size);
    edits_.push_back({word.begin, word.begin + size, addressMask(host, masks_)});
    const Word rest = {word.begin + size, word.end};
    if (text(rest).find_first_not_of("0123456789/") != kNone) {
        outline(rest);
    }
}

void LineMasks::findings(const Word &word, const std::vector<Finding> &found) {
    for (const Finding &each : found) {
        const size_t begin = word.begin + each.begin;
        const size_t end = word.begin + each.end;
        if (each.shape == Shape::Ipv4 || each.shape == Shape::Ipv6) {
            edits_.push_back({begin, end, addressMask(line_.substr(begin, end - begin), masks_)});
        } else {
            mask(maskOf(each.shape), begin, end);
        }
    }
}

// Whether the word holds nothing but the found values, with a port and punctuation.
bool LineMasks::explains(const Word &word, const std::vector<Finding> &found) const {
    const auto isSmall = [&](size_t begin, size_t end) {
        const std::string_view between = text(word).substr(begin, end - begin);
        return digitsOf(between) <= kPortDigits &&
               digitsOf(between) ==
                   static_cast<size_t>(std::count_if(between.begin(), between.end(), isWordByte));
    };
    size_t done = 0;
    for (const Finding &each : found) {
        if (!isSmall(done, each.prefix)) {
            return false;
        }
        done = each.end;
    }
    return isSmall(done, text(word).size());
}

bool LineMasks::isKnown(const Word &word) const {
    return !isShortNumber(text(word)) && masks_.known(text(word)).has_value();
}

// Masks a run of words that no rule knows, or of the digits of a phone number.
void LineMasks::textRun(const Word &first, const Word &last) {
    const Word run = core({first.begin, last.end});
    const std::string_view value = text(run);
    const bool isPhone =
        value.find_first_not_of("0123456789+-.()/ \t") == kNone && digitsOf(value) >= kPortDigits;
    const bool hasPlus = isPhone && run.begin > first.begin && line_[run.begin - 1] == '+';
    mask(isPhone ? Mask::Phone : Mask::Word, run.begin - (hasPlus ? 1 : 0), run.end);
}

void LineMasks::outline(const Word &word) {
    edits_.push_back({word.begin, word.end, outlineOf(text(word))});
}

void LineMasks::mask(Mask kind, size_t begin, size_t end) {
    if (begin < end) {
        edits_.push_back({begin, end, masks_.of(kind, line_.substr(begin, end - begin))});
    }
}

std::vector<LineMasks::Word> LineMasks::wordsFrom(size_t from) const {
    std::vector<Word> words;
    for (size_t at = line_.find_first_not_of(kBlanks, from); at != kNone;) {
        const size_t end = std::min(line_.find_first_of(kBlanks, at), line_.size());
        words.push_back({at, end});
        at = line_.find_first_not_of(kBlanks, end);
    }
    return words;
}

LineMasks::Word LineMasks::core(const Word &word) const {
    Word inner = word;
    while (inner.begin < inner.end && !isWordByte(line_[inner.begin])) {
        ++inner.begin;
    }
    while (inner.end > inner.begin && !isWordByte(line_[inner.end - 1])) {
        --inner.end;
    }
    return inner;
}

// Whether "IN IP4" or "IN IP6" comes before it.
bool LineMasks::isAddressPlace(const std::vector<Word> &words, size_t i) const {
    return i >= 2 && equalsIgnoringCase(text(words[i - 2]), "IN") &&
           (equalsIgnoringCase(text(words[i - 1]), "IP4") ||
            equalsIgnoringCase(text(words[i - 1]), "IP6"));
}

} // namespace cli

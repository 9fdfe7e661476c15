// Repairs of the o= line (RFC 4566 section 5.2) and the c= line (section 5.7).
#include "tidy/address.hpp"
#include "tidy/fields.hpp"
#include "tidy/gaps.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

constexpr std::string_view kIp4 = "IP4";
constexpr std::string_view kIp6 = "IP6";

inline bool isAddressType(std::string_view word) {
    return equals(word, "IP4") || equals(word, "IP6");
}

// Whether a word is an IPv6 address, or one with a "/" after it.
bool looksLikeIp6(std::string_view word) {
    return isIp6Text(word.substr(0, word.find('/')));
}

constexpr bool looksLikeIp4(std::string_view word) {
    uint32_t dots = 0;
    for (const char byte : word.substr(0, word.find('/'))) {
        if (!isDigit(byte) && byte != '.') {
            return false;
        }
        dots += byte == '.' ? 1 : 0;
    }
    return dots == 3;
}

// Whether a word is a host name (RFC 1123 section 2.1; "_" is accepted too) and not a number.
constexpr bool isHostName(std::string_view word) {
    bool letter = false;
    for (const char byte : word) {
        const bool alpha = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        if (!alpha && !isDigit(byte) && byte != '-' && byte != '.' && byte != '_') {
            return false;
        }
        letter = letter || alpha;
    }
    return letter;
}

// Whether the decoder refuses the host name. After IP6 it accepts names of letters, digits and
// dots, and reads them as an address as far as it can.
constexpr bool isRefusedHost(std::string_view word, std::string_view type) {
    return isHostName(word) &&
           (type == kIp4 || word.find('-') != std::string_view::npos || word.ends_with('.'));
}

// The network type and the address type, which are two adjacent fields.
class Types {
public:
    Types(Workspace &work, Line &line, Fields &fields, uint32_t net)
        : work_(work), line_(line), fields_(fields), net_(net) {}

    // Returns false if they cannot be repaired.
    bool repair() {
        if (fields_[net_] != "IN" && !inCapitals(net_, "in", "IN")) {
            return false;
        }
        return isAddressType(fields_[net_ + 1]) || inCapitals(net_ + 1, "ip4", kIp4) ||
               inCapitals(net_ + 1, "ip6", kIp6) || anotherWord("ipv4", kIp4) ||
               anotherWord("ipv6", kIp6) || missing();
    }

private:
    bool inCapitals(uint32_t index, std::string_view lower, std::string_view word) {
        return sameIgnoringCase(fields_[index], lower) && put(index, Rule::NetCase, word);
    }

    bool anotherWord(std::string_view lower, std::string_view word) {
        return sameIgnoringCase(fields_[net_ + 1], lower) &&
               put(net_ + 1, Rule::AddrTypeWord, word);
    }

    bool put(uint32_t index, Rule rule, std::string_view word) {
        if (!work_.wants(rule)) {
            return false;
        }
        work_.report(rule, line_, fields_.place(index));
        fields_.set(index, word);
        return true;
    }

    // Inserts a missing address type, which follows from the address in its place.
    bool missing() {
        const std::string_view word = fields_[net_ + 1];
        const bool ip4 = looksLikeIp4(word);
        if (fields_.count() != net_ + 2 || !(ip4 || looksLikeIp6(word)) ||
            !work_.wants(Rule::AddrTypeMissing)) {
            return false;
        }
        work_.report(Rule::AddrTypeMissing, line_, fields_.place(net_ + 1));
        fields_.insert(net_ + 1, ip4 ? kIp4 : kIp6);
        return true;
    }

    Workspace &work_;
    Line &line_;
    Fields &fields_;
    uint32_t net_;
};

// A number of at most ten digits, a hash of the whole text: equal texts get equal numbers, and
// different texts get, with high probability, different ones.
std::string_view numberFor(Workspace &work, std::string_view text) {
    uint32_t value = 2166136261u;
    for (const char byte : text) {
        value = (value ^ static_cast<uint8_t>(byte)) * 16777619u;
    }
    return decimal(work.memory, value);
}

// user SP sess-id SP sess-version SP "IN" SP ( "IP4" / "IP6" ) SP address
class Origin {
public:
    Origin(Workspace &work, Line &line, Fields &fields)
        : work_(work), line_(line), fields_(fields) {}

    // Returns false if the fields cannot be repaired to those of an origin.
    bool repair() {
        if (fields_.leading() != nullptr || isNet(2)) {
            addUser();
        }
        if (!isNet(3)) {
            joinUser();
        }
        if (fields_.count() < 4 || !Types(work_, line_, fields_, 3).repair()) {
            return false;
        }
        if (fields_.count() == 5) {
            addAddress();
        }
        return fields_.count() == 6 && id(1) && id(2);
    }

private:
    bool isNet(uint32_t index) const { return sameIgnoringCase(fields_[index], "in"); }

    void addUser() {
        if (isNet(2) && work_.wants(Rule::OriginUser)) {
            work_.report(Rule::OriginUser, line_, fields_.place(0));
            fields_.insert(0, "-");
        }
    }

    // Joins the words before the two ids and "IN" to one user name. The address or its type, after
    // "IN", may be missing.
    void joinUser() {
        const uint32_t count = fields_.count();
        const uint32_t net = count > 4 && isNet(count - 2) ? count - 2 : count - 3;
        if (count < 6 || net < 4 || !isNet(net) || !work_.wants(Rule::OriginSpaces)) {
            return;
        }
        const uint32_t words = net - 2;
        work_.report(Rule::OriginSpaces, line_, fields_.place(0) + fields_[0].size());
        Draft user(work_.memory, line_.original.size());
        for (uint32_t i = 0; i < words; ++i) {
            user << (i == 0 ? "" : "_") << fields_[i];
        }
        fields_.set(words - 1, user.text());
        fields_.drop(words - 1);
    }

    void addAddress() {
        if (work_.wants(Rule::OriginAddress)) {
            work_.report(Rule::OriginAddress, line_, fields_.place(4) + fields_[4].size());
            fields_.insert(5, fields_[4] == kIp6 ? "::" : "0.0.0.0");
        }
    }

    bool id(uint32_t index) {
        if (isNumber(fields_[index])) {
            return true;
        }
        if (!work_.wants(Rule::OriginId)) {
            return false;
        }
        work_.report(Rule::OriginId, line_, fields_.place(index));
        fields_.set(index, numberFor(work_, fields_[index]));
        return true;
    }

    Workspace &work_;
    Line &line_;
    Fields &fields_;
};

} // namespace

// user SP sess-id SP sess-version SP "IN" SP ( "IP4" / "IP6" ) SP address
Look lookAtOrigin(const Workspace &work, std::string_view value, Cut &cut) {
    Gaps gaps;
    if (gaps.find(work, value)) {
        gaps.next(); // the user
        if (isNumber(gaps.next()) && isNumber(gaps.next()) && equals(gaps.next(), "IN") &&
            isAddressType(gaps.next()) && !gaps.next().empty() && gaps.done()) {
            return gaps.look(work, cut);
        }
    }
    return Look::Other;
}

void repairOrigin(Workspace &work, Line &line, std::string_view value) {
    Fields fields(value);
    if (fields.count() == 0 && work.wants(Rule::OriginMissing)) {
        work.report(Rule::OriginMissing, line);
        line.text = kOriginLine;
        return;
    }
    // A blank at the start: the user name is missing.
    const bool blank = fields.leading() != nullptr;
    if (fields.repairable(work) && Origin(work, line, fields).repair() &&
        (fields.needsWriting() || blank)) {
        fields.write(work, line, "o=");
    }
}

// "IN" SP ( "IP4" / "IP6" ) SP address; the address type follows from an address that shows it
void repairConnection(Workspace &work, Line &line, std::string_view value) {
    Fields fields(value);
    if (fields.leading() != nullptr || !fields.repairable(work) || fields.count() < 2 ||
        !Types(work, line, fields, 0).repair() || fields.count() != 3) {
        return;
    }
    if (fields[1] == kIp4 && looksLikeIp6(fields[2]) && work.wants(Rule::AddrFamily)) {
        work.report(Rule::AddrFamily, line, fields.place(1));
        fields.set(1, kIp6);
    }
    if (isRefusedHost(fields[2], fields[1]) && work.wants(Rule::ConnHost)) {
        work.report(Rule::ConnHost, line, fields.place(2));
        keepAsAttribute(work, line);
        fields.set(2, fields[1] == kIp4 ? "0.0.0.0" : "::");
    }
    if (fields.needsWriting()) {
        fields.write(work, line, "c=");
    }
}

} // namespace sdpline::tidy

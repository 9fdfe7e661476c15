// The a= line (RFC 4566 section 5.13): the space around an attribute's parts, colons and values
// that are missing. What the decoder asks of a value goes by the attribute's shape.
#include <algorithm>
#include <array>
#include <iterator>

#include "tidy/fields.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

// What follows an attribute's name.
enum class Shape : uint8_t {
    Flag,       // nothing
    Words,      // ":" and words with one blank between them
    MaybeWords, // the same, or nothing
    Text,       // ":" and any text
    Rtpmap,
    Silence,
    Any, // [ ":" any text ], under a name that the decoder does not know
};

struct Attribute {
    std::string_view name;
    Shape shape;
};

constexpr Attribute kAttributes[] = {
    {"rtpmap", Shape::Rtpmap},
    {"fmtp", Shape::Text},
    {"sendrecv", Shape::Flag},
    {"sendonly", Shape::Flag},
    {"recvonly", Shape::Flag},
    {"inactive", Shape::Flag},
    {"ptime", Shape::Words},
    {"maxptime", Shape::Words},
    {"setup", Shape::Words},
    {"curr", Shape::Words},
    {"des", Shape::Words},
    {"conf", Shape::Words},
    {"framerate", Shape::Words},
    {"quality", Shape::Words},
    {"cat", Shape::Text},
    {"keywds", Shape::Text},
    {"tool", Shape::Text},
    {"orient", Shape::Text},
    {"type", Shape::Text},
    {"charset", Shape::Text},
    {"sdplang", Shape::Text},
    {"lang", Shape::Text},
    {"T38FaxVersion", Shape::Words},
    {"T38MaxBitRate", Shape::Words},
    {"T38FaxMaxBuffer", Shape::Words},
    {"T38FaxMaxDatagram", Shape::Words},
    {"T38FaxFillBitRemoval", Shape::MaybeWords},
    {"T38FaxTranscodingMMR", Shape::MaybeWords},
    {"T38FaxTranscodingJBIG", Shape::MaybeWords},
    {"T38FaxRateManagement", Shape::Words},
    {"T38FaxUdpEC", Shape::Words},
    {"silenceSupp", Shape::Silence},
    {"ecan", Shape::Text},
    {"ipbcp", Shape::Words},
    {"fax", Shape::Flag},
    {"modem", Shape::Flag},
    {"X-fax", Shape::Flag},
    {"X-modem", Shape::Flag},
};

constexpr size_t kLongest = 21;

// The table by the length of the names, and where in it each length begins.
struct Index {
    std::array<Attribute, std::size(kAttributes)> rows;
    uint8_t begin[kLongest + 2];
};

constexpr Index kIndex = [] {
    Index index = {};
    std::ranges::copy(kAttributes, index.rows.begin());
    std::ranges::sort(index.rows, {}, [](const Attribute &row) { return row.name.size(); });
    for (size_t size = 0; size < std::size(index.begin); ++size) {
        index.begin[size] = static_cast<uint8_t>(std::ranges::count_if(
            index.rows, [size](const Attribute &row) { return row.name.size() < size; }));
    }
    return index;
}();
static_assert(kIndex.rows.back().name.size() == kLongest);

Shape shapeOf(std::string_view name) {
    if (!name.empty() && name.size() <= kLongest) {
        for (uint32_t i = kIndex.begin[name.size()]; i < kIndex.begin[name.size() + 1]; ++i) {
            if (kIndex.rows[i].name.front() == name.front() && kIndex.rows[i].name == name) {
                return kIndex.rows[i].shape;
            }
        }
    }
    return Shape::Any;
}

// The parameters of a=silenceSupp, none of which is known (RFC 3108 section 5.6.3.2).
constexpr std::string_view kSilenceParams = " - - - -";

// What a byte is, where names, numbers and words end.
constexpr uint8_t kColon = 1;
constexpr uint8_t kBlank = 2;
constexpr uint8_t kSlash = 4;
constexpr uint8_t kDigit = 8;

constexpr auto kClasses = [] {
    std::array<uint8_t, 256> classes = {};
    classes[':'] = kColon;
    classes[' '] = classes['\t'] = kBlank;
    classes['/'] = kSlash;
    for (char digit = '0'; digit <= '9'; ++digit) {
        classes[static_cast<uint8_t>(digit)] = kDigit;
    }
    return classes;
}();

constexpr bool isOf(char byte, uint8_t classes) {
    return (kClasses[static_cast<uint8_t>(byte)] & classes) != 0;
}

// The text up to the first byte of such a class.
constexpr std::string_view upTo(std::string_view text, uint8_t classes) {
    size_t size = 0;
    while (size != text.size() && !isOf(text[size], classes)) {
        ++size;
    }
    return {text.data(), size};
}

// Words with one blank between them and none around them.
bool isWellSpaced(std::string_view words) {
    bool blank = true;
    for (const char byte : words) {
        if (byte == '\t' || (byte == ' ' && blank)) {
            return false;
        }
        blank = byte == ' ';
    }
    return !blank;
}

// "/" and digits, once or twice
bool isClock(std::string_view rest) {
    const char *at = rest.data();
    const char *const end = at + rest.size();
    for (uint32_t parts = 0; parts < 2 && at != end && *at == '/'; ++parts) {
        const char *const digits = ++at;
        while (at != end && isDigit(*at)) {
            ++at;
        }
        if (at == digits) {
            return false;
        }
    }
    return at == end;
}

// payload SP name clock, and nothing around them
bool isPlainRtpmap(std::string_view value) {
    size_t digits = 0;
    while (digits != value.size() && isDigit(value[digits])) {
        ++digits;
    }
    if (digits == 0 || digits == value.size() || value[digits] != ' ') {
        return false;
    }
    value = withoutBlanksBefore(value.substr(digits + 1));
    const size_t name = upTo(value, kBlank | kSlash).size();
    return name != 0 && name != value.size() && isClock(value.substr(name));
}

class AttributeLine {
public:
    AttributeLine(Workspace &work, Line &line, std::string_view value)
        : work_(work), line_(line), value_(value), name_(upTo(value, kColon | kBlank)),
          rest_(value.substr(name_.size())), shape_(shapeOf(name_)) {}

    // Whether there is nothing to repair, as in most attributes. False is no promise.
    bool isPlain() const {
        if (rest_.empty()) {
            return !name_.empty() && !needsValue();
        }
        if (name_.empty() || rest_.size() == 1 || rest_.front() != ':') {
            return false;
        }
        const std::string_view value = rest_.substr(1);
        switch (shape_) {
        case Shape::Text:
        case Shape::Any: return true;
        case Shape::Words:
        case Shape::MaybeWords: return isWellSpaced(value);
        case Shape::Rtpmap: return isPlainRtpmap(value);
        default: return false;
        }
    }

    void repair() {
        if (name_.empty()) {
            return;
        }
        if (rest_.empty()) {
            return repairBare();
        }
        if (rest_.front() == ':') {
            rest_.remove_prefix(1);
            return withoutBlanksBefore(rest_).empty() && !isTextOfBlanks() ? valueMissing()
                                                                           : repairValue();
        }
        if (withoutBlanksBefore(rest_).empty()) {
            return needsValue() ? valueMissing() : trailing();
        }
        addColon();
    }

private:
    bool needsValue() const {
        return shape_ != Shape::Flag && shape_ != Shape::MaybeWords && shape_ != Shape::Any;
    }

    // "a=fmtp: ": one blank is a text.
    bool isTextOfBlanks() const {
        return !rest_.empty() && (shape_ == Shape::Text || shape_ == Shape::Any);
    }

    void repairBare() {
        if (needsValue()) {
            valueMissing();
        }
    }

    // The colon goes, or the line where the attribute says nothing without a value.
    void valueMissing() {
        if (!work_.wants(Rule::ValueMissing)) {
            return;
        }
        work_.report(Rule::ValueMissing, line_, name_.data() + name_.size());
        if (needsValue()) {
            leaveOut(line_);
        } else {
            write(name_, "");
        }
    }

    void trailing() {
        if (work_.wants(Rule::TrailingSpace)) {
            work_.report(Rule::TrailingSpace, line_, rest_.data());
            write(name_, "");
        }
    }

    // "a=fmtp 97 ...", "a=rtpmap 97 ..."
    void addColon() {
        if (shape_ == Shape::Flag || !work_.wants(Rule::AttrColon)) {
            return;
        }
        work_.report(Rule::AttrColon, line_, rest_.data());
        rest_ = withoutBlanksBefore(rest_);
        write(name_, rest_);
        repairValue();
    }

    void repairValue() {
        switch (shape_) {
        case Shape::Words:
        case Shape::MaybeWords: return repairWords();
        case Shape::Rtpmap: return repairRtpmap();
        case Shape::Silence: return repairSilence();
        default: return;
        }
    }

    void repairWords() {
        Fields fields(rest_);
        const bool leads = fields.leading() != nullptr;
        if (!fields.repairable(work_) || (leads && !work_.wants(Rule::SpaceRun)) ||
            (!leads && !fields.needsWriting())) {
            return;
        }
        if (leads) {
            work_.report(Rule::SpaceRun, line_, fields.leading());
        }
        fields.write(work_, line_, begin());
    }

    // "on" or "off" and nothing more, and blanks before that
    void repairSilence() {
        const std::string_view value = withoutBlanksBefore(rest_);
        const bool leads = value.size() != rest_.size();
        const bool bare = value == "on" || value == "off";
        if ((!leads && !bare) || (leads && !work_.wants(Rule::SpaceRun)) ||
            (bare && !work_.wants(Rule::SilenceParams))) {
            return;
        }
        if (leads) {
            work_.report(Rule::SpaceRun, line_, rest_.data());
        }
        if (bare) {
            work_.report(Rule::SilenceParams, line_, value.data() + value.size());
        }
        write(name_, value, bare ? kSilenceParams : std::string_view());
    }

    void repairRtpmap();
    bool addsClock(std::string_view name);
    void writeClock(std::string_view payload, std::string_view name);
    void writeRtpmap(std::string_view payload, std::string_view name, std::string_view clock);

    // "a=", the name and the colon
    std::string_view begin() {
        return (Draft(work_.memory, name_.size() + 3) << "a=" << name_ << ":").text();
    }

    // The attribute with its value; without one there is no colon.
    void write(std::string_view name, std::string_view text, std::string_view after = {}) {
        Draft draft(work_.memory, name.size() + text.size() + after.size() + 3);
        draft << "a=" << name << (text.empty() ? "" : ":") << text << after;
        line_.text = draft.text();
    }

    Workspace &work_;
    Line &line_;
    std::string_view value_;
    std::string_view name_;
    std::string_view rest_;
    std::string_view rate_; // that an a=rtpmap lacks
    std::string_view gap_;  // before its encoding name
    Shape shape_;
};

// ---- a=rtpmap (RFC 4566 section 6)

// Payload formats beyond the static ones whose registration has one clock rate.
struct Registered {
    std::string_view name; // in small letters
    std::string_view rate;
};

constexpr Registered kRegistered[] = {
    {"amr", "8000"},             // RFC 4867 8.1
    {"amr-wb", "16000"},         // RFC 4867 8.2
    {"ilbc", "8000"},            // RFC 3952 4.1
    {"h263-1998", "90000"},      // RFC 4629 8.1
    {"h263-2000", "90000"},      // RFC 4629 8.1
    {"h264", "90000"},           // RFC 6184 8.1
    {"h265", "90000"},           // RFC 7798 7.1
    {"vp8", "90000"},            // RFC 7741 6.1
    {"vp9", "90000"},            // RFC 9628 6.1
    {"mp4v-es", "90000"},        // RFC 6416
    {"opus", "48000/2"},         // RFC 7587 7
    {"evrc", "8000"},            // RFC 3558
    {"smv", "8000"},             // RFC 3558
    {"clearmode", "8000"},       // RFC 4040
    {"t140", "1000"},            // RFC 4103
    {"telephone-event", "8000"}, // RFC 4733 7.1.1, where none is said
};

constexpr uint16_t kProfiles = 35;

std::string_view viewOf(const SipString &text) {
    return {text.pcData, text.ulLen};
}

bool sameIgnoringCase(std::string_view first, std::string_view second) {
    return std::ranges::equal(first, second, [](char a, char b) {
        const auto lower = [](char byte) {
            return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
        };
        return lower(a) == lower(b);
    });
}

// The rate of the profiles of that name (RFC 3551 section 6) where all have the same; else 0.
uint32_t profileRate(std::string_view name) {
    uint32_t rate = 0;
    for (uint16_t row = 0; row < kProfiles; ++row) {
        if (!sameIgnoringCase(viewOf(SdpGetRtpmapProfile(row)), name)) {
            continue;
        }
        const uint32_t found = SdpGetRtpmapClockRates(row);
        if (found == 0 || (rate != 0 && rate != found)) {
            return 0;
        }
        rate = found;
    }
    return rate;
}

std::string_view registeredRate(Memory &memory, std::string_view name) {
    if (name.empty()) {
        return {};
    }
    for (const Registered &format : kRegistered) {
        if (equalsIgnoringCase(name, format.name)) {
            return format.rate;
        }
    }
    uint32_t rate = profileRate(name);
    if (rate == 0) {
        return {};
    }
    char digits[10];
    uint32_t at = sizeof digits;
    for (; rate != 0; rate /= 10) {
        digits[--at] = static_cast<char>('0' + rate % 10);
    }
    return (Draft(memory, sizeof digits) << std::string_view(digits + at, sizeof digits - at))
        .text();
}

// ":" payload SP name "/" clock-rate [ "/" channels ], cut at its blanks and slashes
struct Rtpmap {
    explicit Rtpmap(std::string_view value) {
        const std::string_view bare = withoutBlanksBefore(value);
        spaceBefore = bare.size() != value.size() ? value.data() : nullptr;
        size_t digits = 0;
        while (digits < bare.size() && isDigit(bare[digits])) {
            ++digits;
        }
        payload = bare.substr(0, digits);
        const std::string_view after = bare.substr(digits);
        const std::string_view names = withoutBlanksBefore(after);
        gap = after.substr(0, after.size() - names.size());
        const size_t slash = std::min(names.find('/'), names.size());
        name = names.substr(0, slash);
        rest = names.substr(slash);
    }

    const char *spaceBefore;  // white space after the colon, null for none
    std::string_view payload; // digits
    std::string_view gap;     // the white space after them
    std::string_view name;    // as far as the slash
    std::string_view rest;    // from the slash on
};

// Clock rate and channels without the white space in them.
std::string_view closed(Memory &memory, std::string_view rest) {
    Draft draft(memory, rest.size());
    for (size_t at = 0; at < rest.size(); ++at) {
        if (!isBlank(rest[at])) {
            draft << rest.substr(at, 1);
        }
    }
    return draft.text();
}

void AttributeLine::writeRtpmap(std::string_view payload, std::string_view name,
                                std::string_view clock) {
    Draft draft(work_.memory, payload.size() + gap_.size() + name.size() + clock.size() + 16);
    line_.text = (draft << "a=rtpmap:" << payload << gap_ << name << clock).text();
}

// Which rule is for a clock rate that is missing, and whether it is wanted.
bool AttributeLine::addsClock(std::string_view name) {
    rate_ = registeredRate(work_.memory, name);
    return work_.wants(rate_.empty() ? Rule::RtpmapNoClock : Rule::RtpmapClock);
}

void AttributeLine::writeClock(std::string_view payload, std::string_view name) {
    const char *const place = name.data() + name.size();
    if (rate_.empty()) {
        work_.report(Rule::RtpmapNoClock, line_, place);
        return makeAttribute(work_, line_);
    }
    work_.report(Rule::RtpmapClock, line_, place);
    Draft clock(work_.memory, rate_.size() + 1);
    writeRtpmap(payload, name, (clock << "/" << rate_).text());
}

void AttributeLine::repairRtpmap() {
    const Rtpmap map(rest_);
    if (map.payload.empty() || map.gap.empty()) {
        return;
    }
    const std::string_view clock = withoutBlanksAfter(map.rest);
    const bool missing = clock.size() <= 1; // none, or a slash alone
    const std::string_view name = missing ? withoutBlanksAfter(map.name) : map.name;
    const bool trailing = clock.size() != map.rest.size() || name.size() != map.name.size();
    const bool inside = wordOf(clock).size() != clock.size();
    const bool space = map.spaceBefore != nullptr || inside;
    // A name may begin with blanks, if not with a tab: then they alone are no fault.
    const bool tab = map.gap.front() == '\t';
    const bool run = tab || (map.gap.size() > 1 && work_.wants(Rule::SpaceRun));
    gap_ = run ? " " : map.gap;
    if ((space && !work_.wants(Rule::RtpmapSpace)) || (tab && !work_.wants(Rule::SpaceRun)) ||
        (trailing && !work_.wants(Rule::TrailingSpace))) {
        return;
    }
    const std::string_view bare = inside ? closed(work_.memory, clock) : clock;
    if (missing ? !addsClock(name) : !isClock(bare) || (!space && !tab && !trailing)) {
        return;
    }
    if (space) {
        work_.report(Rule::RtpmapSpace, line_,
                     map.spaceBefore != nullptr ? map.spaceBefore : map.rest.data());
    }
    if (run) {
        work_.report(Rule::SpaceRun, line_, map.gap.data());
    }
    if (trailing) {
        const std::string_view last = clock.empty() ? name : clock;
        work_.report(Rule::TrailingSpace, line_, last.data() + last.size());
    }
    if (missing) {
        return writeClock(map.payload, name);
    }
    writeRtpmap(map.payload, name, bare);
}

} // namespace

void repairAttribute(Workspace &work, Line &line, std::string_view value) {
    AttributeLine attribute(work, line, value);
    if (!attribute.isPlain() && !endsTwice(line)) {
        attribute.repair();
    }
}

} // namespace sdpline::tidy

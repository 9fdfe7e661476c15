// Repairs of a=rtpmap (RFC 4566 section 6): white space around its parts, a missing clock rate.
#include <algorithm>

#include "tidy/rates.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

// "/" and digits, once or twice
constexpr bool isClock(std::string_view rest) {
    for (uint32_t parts = 0; parts < 2 && rest.starts_with('/'); ++parts) {
        rest.remove_prefix(1);
        const size_t digits = countDigits(rest);
        if (digits == 0) {
            return false;
        }
        rest.remove_prefix(digits);
    }
    return rest.empty();
}

// ":" payload SP name "/" clock-rate [ "/" channels ], cut at its blanks and slashes
struct Rtpmap {
    explicit Rtpmap(std::string_view value) {
        const std::string_view bare = withoutBlanksBefore(value);
        spaceBefore = bare.size() != value.size() ? value.data() : nullptr;
        payload = bare.substr(0, countDigits(bare));
        const std::string_view after = withoutFirst(bare, payload.size());
        const std::string_view names = withoutBlanksBefore(after);
        gap = after.substr(0, after.size() - names.size());
        const size_t slash = std::min(names.find('/'), names.size());
        name = names.substr(0, slash);
        rest = withoutFirst(names, slash);
    }

    const char *spaceBefore;  // white space after the colon, null for none
    std::string_view payload; // digits
    std::string_view gap;     // the white space after them
    std::string_view name;    // up to the slash
    std::string_view rest;    // the slash and the text after it
};

// Clock rate and channels without the white space around their slashes. Between two numbers one
// blank stays.
std::string_view closed(Memory &memory, std::string_view rest) {
    Draft draft(memory, rest.size());
    while (!rest.empty()) {
        const std::string_view part = wordOf(rest);
        const std::string_view more = withoutBlanksBefore(withoutFirst(rest, part.size()));
        const bool spaced = !more.empty() && !part.ends_with('/') && !more.starts_with('/');
        draft << part << (spaced ? " " : "");
        rest = more;
    }
    return draft.text();
}

class RtpmapLine {
public:
    RtpmapLine(Workspace &work, Line &line, std::string_view value)
        : work_(work), line_(line), map_(value) {}

    void repair() {
        if (map_.payload.empty() || map_.gap.empty()) {
            return;
        }
        const std::string_view clock = withoutBlanksAfter(map_.rest);
        const bool missing = clock.size() <= 1; // none, or a slash alone
        const bool inside = wordOf(clock).size() != clock.size();
        const bool space = map_.spaceBefore != nullptr || inside;
        // A name may end in blanks. They are removed only together with others around the slash.
        const std::string_view name = missing || space ? withoutBlanksAfter(map_.name) : map_.name;
        const bool trailing =
            clock.size() != map_.rest.size() || (missing && name.size() != map_.name.size());
        // A name may begin with blanks, but not with a tab: blanks alone are accepted.
        const bool tab = map_.gap.front() == '\t';
        const bool run = tab || (map_.gap.size() > 1 && work_.wants(Rule::SpaceRun));
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
                         map_.spaceBefore != nullptr ? map_.spaceBefore
                                                     : name.data() + name.size());
        }
        if (run) {
            work_.report(Rule::SpaceRun, line_, map_.gap.data());
            map_.gap = " ";
        }
        if (trailing) {
            const std::string_view last = clock.empty() ? name : clock;
            work_.report(Rule::TrailingSpace, line_, last.data() + last.size());
        }
        missing ? writeClock(name) : write(name, bare);
    }

private:
    // Whether the rule for a missing clock rate is wanted: one rule is for registered names, the
    // other for all others.
    bool addsClock(std::string_view name) {
        rate_ = registeredRate(work_.memory, name, map_.payload);
        return work_.wants(rate_.empty() ? Rule::RtpmapNoClock : Rule::RtpmapClock);
    }

    void writeClock(std::string_view name) {
        const char *const place = name.data() + name.size();
        if (rate_.empty()) {
            work_.report(Rule::RtpmapNoClock, line_, place);
            return makeAttribute(work_, line_);
        }
        work_.report(Rule::RtpmapClock, line_, place);
        Draft clock(work_.memory, rate_.size() + 1);
        write(name, (clock << "/" << rate_).text());
    }

    void write(std::string_view name, std::string_view clock) {
        constexpr std::string_view begin = "a=rtpmap:";
        Draft draft(work_.memory, begin.size() + map_.payload.size() + map_.gap.size() +
                                      name.size() + clock.size());
        line_.text = (draft << begin << map_.payload << map_.gap << name << clock).text();
    }

    Workspace &work_;
    Line &line_;
    Rtpmap map_;
    std::string_view rate_; // the missing one, if registered
};

// Returns the first slash, else the end.
const char *findSlash(const char *at, const char *end) {
    for (; end - at >= 8; at += 8) {
        if (const uint64_t slashes = bytesEqual('/', at); slashes != 0) {
            at += bytesBefore(slashes);
            break;
        }
    }
    while (at != end && *at != '/') {
        ++at;
    }
    return at;
}

const char *afterDigits(const char *at, const char *end) {
    while (at != end && isDigit(*at)) {
        ++at;
    }
    return at;
}

// payload SP name "/" clock-rate [ "/" channels ], with no other white space
bool isSettled(const char *at, const char *end) {
    const char *const gap = afterDigits(at, end);
    const char *const slash = findSlash(gap, end);
    if (gap == at || slash == end || slash - gap < 2 || *gap != ' ' || isBlank(gap[1]) ||
        isBlank(slash[-1])) {
        return false;
    }
    const char *const rate = afterDigits(slash + 1, end);
    if (rate == end || *rate != '/') {
        return rate == end && rate - slash > 1;
    }
    const char *const channels = afterDigits(rate + 1, end);
    return channels == end && channels - rate > 1 && rate - slash > 1;
}

} // namespace

Look lookAtRtpmap(std::string_view value, Cut &cut) {
    const char *const end = value.data() + value.size();
    const char *const bare = afterBlanks(value.data(), end);
    if (!isSettled(bare, end)) {
        return Look::Other;
    }
    if (bare == value.data()) {
        return Look::Plain;
    }
    cut = {Rule::RtpmapSpace, value.data(), value.data(), bare};
    return Look::Cut;
}

void repairRtpmap(Workspace &work, Line &line, std::string_view value) {
    RtpmapLine(work, line, value).repair();
}

} // namespace sdpline::tidy

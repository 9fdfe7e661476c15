// Repairs of the m= line (RFC 4566 section 5.14): white space between its fields, missing formats.
#include <algorithm>

#include "sdpline/cpp/detail/keywords.hpp"
#include "tidy/gaps.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

constexpr uint32_t kBeforeFormats = 3; // media, port, protocol

// The payload number of an a=rtpmap line, empty for any other line.
std::string_view payloadOf(std::string_view value) {
    constexpr std::string_view begin = "a=rtpmap:";
    if (value.starts_with(kKept)) { // a payload without a mapping
        value.remove_prefix(kKept.size());
    }
    if (!value.starts_with(begin)) {
        return {};
    }
    value = withoutBlanksBefore(withoutFirst(value, begin.size()));
    return value.substr(0, countDigits(value));
}

bool isZero(std::string_view number) {
    return number.find_first_not_of('0') == std::string_view::npos;
}

// media SP port SP proto *( SP fmt )
class MediaLine {
public:
    MediaLine(Workspace &work, Line &line, std::string_view value)
        : work_(work), line_(line), value_(value) {
        scan();
    }

    void repair() {
        if (count_ < kBeforeFormats) {
            return;
        }
        rtp_ = takesPayloads(first_[2], work_.takesRtpFamily());
        if (count_ == kBeforeFormats && mayAddFormats()) {
            line_.deferred = work_.hasDeferred = true;
            return;
        }
        repairSpace();
    }

    // Called when the lines after it are repaired.
    void repairDeferred() {
        rtp_ = takesPayloads(first_[2], work_.takesRtpFamily());
        if (!addFormats()) {
            repairSpace();
        }
    }

private:
    void repairSpace() {
        // The decoder accepts one blank after the last payload number, or after the protocol if
        // there are none.
        const bool listed = count_ > kBeforeFormats;
        const bool faulty = rtp_ ? trailing_.size() > 1 || trailing_ == "\t" : !trailing_.empty();
        const Rule rule = rtp_ && !listed ? Rule::SpaceRun : Rule::TrailingSpace;
        if ((run_ == nullptr && !faulty) || (run_ != nullptr && !work_.wants(Rule::SpaceRun)) ||
            (faulty && !work_.wants(rule))) {
            return;
        }
        if (run_ != nullptr) {
            work_.report(Rule::SpaceRun, line_, run_);
        }
        if (faulty) {
            work_.report(rule, line_, trailing_.data());
        }
        const bool blank = rtp_ && !trailing_.empty() && (!faulty || !listed);
        if (isOneCut_ && value_.data() == line_.text.data() + 2 &&
            (!blank || trailing_.front() == ' ')) {
            return cut(blank);
        }
        write(blank ? " " : "");
    }

    // Repairs a line that is still the given one: shortens it, or removes blanks at one place.
    void cut(bool keepsBlank) {
        if (!trailing_.empty()) {
            const char *const end = trailing_.data() + (keepsBlank ? 1 : 0);
            line_.text = line_.text.substr(0, static_cast<size_t>(end - line_.text.data()));
        }
        if (run_ != nullptr) {
            cutOut(line_, run_ + 1, afterBlanks(run_, line_.text.data() + line_.text.size()));
        }
    }

    // Counts the fields, and finds white space that is not one blank.
    void scan() {
        const char *at = value_.data();
        const char *const end = at + value_.size();
        while (at != end) {
            const char *const space = at;
            at = afterBlanks(at, end);
            if (at == end) {
                trailing_ = {space, static_cast<size_t>(at - space)};
                return;
            }
            if (count_ != 0 && (at - space > 1 || *space == '\t')) {
                isOneCut_ = isOneCut_ && run_ == nullptr && *space == ' ';
                run_ = run_ == nullptr ? space : run_;
            }
            const char *const field = at;
            at = findBlank(at, end);
            if (count_ < kBeforeFormats) {
                first_[count_] = {field, static_cast<size_t>(at - field)};
            }
            ++count_;
        }
    }

    // Whether the line needs formats, and the wanted rules allow to add them.
    bool mayAddFormats() const {
        const bool needed = !rtp_ || (trailing_.empty() && !isZero(first_[1]));
        return needed && work_.wants(Rule::FormatMissing) &&
               (run_ == nullptr || work_.wants(Rule::SpaceRun));
    }

    // Adds the payload numbers of the a=rtpmap lines after it, or "*".
    bool addFormats() {
        size_t size = 0;
        eachPayload([&](std::string_view payload) { size += payload.size() + 1; });
        if (rtp_ && size == 0) {
            return false;
        }
        if (run_ != nullptr) {
            work_.report(Rule::SpaceRun, line_, run_);
        }
        work_.report(Rule::FormatMissing, line_, first_[2].data() + first_[2].size());
        Draft formats(work_.memory, size + 2);
        if (rtp_) {
            eachPayload([&](std::string_view payload) { formats << " " << payload; });
        } else {
            formats << " *";
        }
        write(formats.text());
        return true;
    }

    template <class Use>
    void eachPayload(Use use) const {
        Line *const end = work_.lines + work_.entryCount;
        for (Line *line = &line_ + 1; rtp_ && line != end && line->key != 'm'; ++line) {
            join(work_, *line);
            size_t size = 0;
            for (std::string_view lines = line->text; !lines.empty();
                 lines = withoutFirst(lines, size)) {
                size = std::min(lines.find('\n'), lines.size() - 1) + 1;
                if (const auto payload = payloadOf(lines.substr(0, size)); !payload.empty()) {
                    use(payload);
                }
            }
        }
    }

    // Writes the fields with one blank between each two, and then `after`.
    void write(std::string_view after) {
        Draft draft(work_.memory, value_.size() + after.size() + 2);
        draft << "m=";
        std::string_view rest = withoutBlanksAfter(value_);
        while (!rest.empty()) {
            const std::string_view field = wordOf(rest);
            const std::string_view more = withoutBlanksBefore(withoutFirst(rest, field.size()));
            const size_t blanks = rest.size() - field.size() - more.size();
            const bool even = blanks == 1 && rest[field.size()] == ' ';
            draft << field
                  << (more.empty() ? ""
                      : even       ? withoutFirst(rest, field.size()).substr(0, 1)
                                   : " ");
            rest = more;
        }
        line_.text = (draft << after).text();
    }

    Workspace &work_;
    Line &line_;
    std::string_view value_;
    std::string_view first_[kBeforeFormats];
    std::string_view trailing_;
    const char *run_ = nullptr;
    uint32_t count_ = 0;
    bool rtp_ = false;
    bool isOneCut_ = true; // white space at one place at most, of which the first blank may stay
};

} // namespace

bool takesPayloads(std::string_view protocol, bool rtpFamily) {
    return protocol == "RTP/AVP" || protocol == "RTP/SAVP" ||
           (protocol == "RTP/AVPF" && SdpGetSupMedProtoRtpAvpf() == 1) ||
           (rtpFamily && tables::endsInRtpProfile(protocol));
}

// Three fields before the formats, and at least one format.
Look lookAtMedia(const Workspace &work, std::string_view value, Cut &cut) {
    Gaps gaps;
    if (gaps.find(work, value)) {
        return gaps.hasMoreThan(kBeforeFormats) ? gaps.look(work, cut) : Look::Other;
    }
    const uint32_t blanks = countBlanks(value);
    return blanks >= kBeforeFormats && blanks != kNotEven ? Look::Plain : Look::Other;
}

void repairMedia(Workspace &work, Line &line, std::string_view value) {
    if (!isBlank(value.front())) {
        MediaLine(work, line, value).repair();
    }
}

// Of a deferred line only the white space around its "=" was repaired: its value is still in the
// given text.
void addFormats(Workspace &work, Line &line) {
    const size_t size = line.text.size() - (line.text.find('=') + 1);
    MediaLine(work, line, withoutFirst(line.original, line.original.size() - size))
        .repairDeferred();
}

} // namespace sdpline::tidy

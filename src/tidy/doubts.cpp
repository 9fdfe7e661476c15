// SdpTidyFindDoubts: finds what the decoder accepts and other readers read differently. The text
// has been decoded, so the form of its values is known to be right.
#include <algorithm>

#include "tidy/address.hpp"
#include "tidy/decode.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

constexpr uint32_t kBlockFirst = 512;
constexpr uint32_t kBlockNext = 2048;
constexpr uint64_t kLargestU32 = 0xFFFFFFFF;

bool isNul(char byte) {
    return byte == '\0';
}

// Removes the digits at the start of the text and returns their value, at most 2^32.
uint64_t takeNumber(std::string_view &text) {
    uint64_t value = 0;
    while (!text.empty() && isDigit(text.front())) {
        value = std::min(value * 10 + static_cast<uint64_t>(text.front() - '0'), kLargestU32 + 1);
        text.remove_prefix(1);
    }
    return value;
}

void skip(std::string_view &text, char byte) {
    if (text.starts_with(byte)) {
        text.remove_prefix(1);
    }
}

std::string_view takeWord(std::string_view &text) {
    const std::string_view word = text.substr(0, std::min(text.find(' '), text.size()));
    text.remove_prefix(word.size());
    skip(text, ' ');
    return word;
}

constexpr std::string_view kDirections[] = {"sendrecv", "sendonly", "recvonly", "inactive"};
constexpr std::string_view kNumbers[] = {
    "ptime:",         "maxptime:",      "framerate:",       "quality:",
    "T38FaxVersion:", "T38MaxBitRate:", "T38FaxMaxBuffer:", "T38FaxMaxDatagram:"};
constexpr std::string_view kFlags[] = {
    "T38FaxFillBitRemoval:", "T38FaxTranscodingMMR:", "T38FaxTranscodingJBIG:"};

class Doubter {
public:
    Doubter(SDPMemCp *memCp, std::string_view text, bool rtpFamily)
        : memory_(memCp, kBlockFirst), text_(text), rtpFamily_(rtpFamily) {}

    // False without memory.
    bool run() {
        std::string_view rest = text_;
        while (!rest.empty()) {
            const size_t size = std::min(rest.find('\n'), rest.size());
            const std::string_view whole = rest;
            std::string_view given = rest.substr(0, size);
            rest.remove_prefix(std::min(size + 1, rest.size()));
            given.remove_suffix(whole.size() > size && given.ends_with('\r') ? 1 : 0);
            given_ = given;
            ++line_;
            if (std::ranges::all_of(given, [](char byte) { return byte == ' ' || isNul(byte); })) {
                afterEnd(rest);
                break;
            }
            readLine();
        }
        return !memory_.hasFailed();
    }

    SDPTidyRow *rows() const { return rows_; }
    uint32_t count() const { return count_; }

private:
    // ---- Rows

    // Reports a doubt at a byte of the line as it is read, which lacks the NULs of the given line.
    void doubt(Rule rule, std::string_view at) {
        auto offset = static_cast<size_t>(at.data() - line().data());
        if (read_.data() != given_.data()) {
            size_t left = offset;
            for (offset = 0; isNul(given_[offset]) || left-- > 0; ++offset) {
            }
        }
        doubtAt(rule, lineStart() + static_cast<uint32_t>(offset), static_cast<uint32_t>(offset));
    }

    void doubtAt(Rule rule, uint32_t offset, uint32_t inLine) {
        if (count_ == capacity_) {
            const uint32_t capacity = std::max(2 * capacity_, 8u);
            auto *const more = memory_.array<SDPTidyRow>(capacity);
            if (more == nullptr) {
                return;
            }
            std::copy_n(rows_, count_, more);
            rows_ = more;
            capacity_ = capacity;
        }
        rows_[count_++] = {static_cast<uint32_t>(rule), line_, inLine + 1, offset, line_};
    }

    std::string_view line() const { return read_; }

    void limit(std::string_view &rest, uint64_t most, Rule rule) {
        const std::string_view at = rest;
        if (takeNumber(rest) > most) {
            doubt(rule, at);
        }
    }

    // Reports a number that wraps, or has the value that is not written back.
    void limitExcept(std::string_view &rest, uint64_t lost) {
        const std::string_view at = rest;
        const uint64_t number = takeNumber(rest);
        if (number > kLargestU32) {
            doubt(Rule::NumberWraps, at);
        } else if (number == lost && rest.size() != at.size()) {
            doubt(Rule::AttributeLost, at);
        }
    }

    // The offset of the line in the text.
    uint32_t lineStart() const { return static_cast<uint32_t>(given_.data() - text_.data()); }

    // ---- Lines

    void readLine() {
        read_ = given_;
        const size_t nul = given_.find('\0');
        if (nul != std::string_view::npos) {
            doubtAt(Rule::NulInside, lineStart() + static_cast<uint32_t>(nul),
                    static_cast<uint32_t>(nul));
            read_ = withoutNul();
        }
        const size_t cr = read_.find('\r');
        if (cr != std::string_view::npos) {
            doubt(Rule::CrInside, withoutFirst(read_, cr));
        }
        std::string_view value = read_;
        if (line_ > 1 && value.starts_with(' ')) {
            doubt(Rule::LineIndent, value);
            value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
        }
        if (value.size() > 1 && !memory_.hasFailed()) {
            readValue(value.front(), withoutFirst(value, 2));
        }
    }

    std::string_view withoutNul() {
        auto *const copy = memory_.array<char>(static_cast<uint32_t>(given_.size()));
        if (copy == nullptr) {
            return {};
        }
        const auto end = std::ranges::remove_copy_if(given_, copy, isNul).out;
        return {copy, static_cast<size_t>(end - copy)};
    }

    void readValue(char key, std::string_view value) {
        switch (key) {
        case 'v': return limit(value, kLargestU32, Rule::NumberWraps);
        case 'c': return connection(value);
        case 't':
            if (hasTime_) {
                doubt(Rule::TimeAgain, line());
            }
            hasTime_ = true;
            return;
        case 'r': return repeat(value);
        case 'm': return media(value);
        case 'a': return attribute(value);
        default: return;
        }
    }

    // "IN" SP type SP address [ "/" ttl [ "/" count ] ]
    void connection(std::string_view value) {
        takeWord(value);
        if (takeWord(value) == "IP4") {
            for (uint32_t i = 0; i < 4; ++i) {
                limit(value, 255, Rule::OctetRange);
                skip(value, '.');
            }
        } else {
            const std::string_view address = value.substr(0, value.find('/'));
            if (!isIp6Text(address)) {
                doubt(Rule::AddressText, value);
            }
            value.remove_prefix(address.size());
        }
        while (value.starts_with('/')) {
            skip(value, '/');
            limitExcept(value, SDP_NOT_GIVEN);
        }
    }

    // typed-time *( SP typed-time )
    void repeat(std::string_view value) {
        while (!value.empty()) {
            std::string_view word = takeWord(value);
            limit(word, kLargestU32, Rule::NumberWraps);
            if (word.size() > 1) {
                doubt(Rule::RepeatUnit, word);
            }
        }
    }

    // media SP port [ "/" count ] SP proto SP formats
    void media(std::string_view value) {
        direction_ = {};
        if (++mediaCount_ == 256) {
            doubt(Rule::MediaCount, line());
        }
        takeWord(value);
        limit(value, 65535, Rule::PortRange);
        if (value.starts_with('/')) {
            skip(value, '/');
            limitExcept(value, 0);
        }
        skip(value, ' ');
        if (!takesPayloads(takeWord(value), rtpFamily_)) {
            return;
        }
        while (!value.empty()) {
            limit(value, 127, Rule::PayloadRange);
            skip(value, ' ');
        }
    }

    void attribute(std::string_view value) {
        if (std::ranges::find(kDirections, value) != std::end(kDirections)) {
            if (!direction_.empty() && direction_ != value) {
                doubt(Rule::DirectionTwice, line());
            }
            direction_ = value;
            return;
        }
        const std::string_view name = value.substr(0, value.find(':') + 1);
        value.remove_prefix(name.size());
        if (name == "rtpmap:") {
            rtpmap(value);
        } else if (name == "ipbcp:") {
            limit(value, 255, Rule::AttributeLost);
        } else if (std::ranges::find(kNumbers, name) != std::end(kNumbers)) {
            limit(value, kLargestU32, Rule::NumberWraps);
            if (value.find_first_not_of(".0") != std::string_view::npos) {
                doubt(Rule::FramerateRounded, value);
            }
        } else if (std::ranges::find(kFlags, name) != std::end(kFlags)) {
            flag(value);
        }
    }

    // payload SP name "/" clock-rate [ "/" channels ]
    void rtpmap(std::string_view value) {
        limit(value, 127, Rule::PayloadRange);
        value.remove_prefix(std::min(value.find('/'), value.size()));
        skip(value, '/');
        limit(value, kLargestU32, Rule::NumberWraps);
        skip(value, '/');
        limitExcept(value, 0);
    }

    // Reports the value of a flag that is not written back: only the style SDP_T38_STYLE_VALUE
    // writes numbers; the others write a bare name for 1.
    void flag(std::string_view value) {
        const std::string_view at = value;
        const uint64_t number = takeNumber(value);
        if (SdpGetT380ptCfg() != SDP_T38_STYLE_VALUE && number != 1) {
            doubt(Rule::AttributeLost, at);
        } else if (number > kLargestU32) {
            doubt(Rule::NumberWraps, at);
        }
    }

    // Reports text other than blanks and empty lines after the line that ends the description.
    void afterEnd(std::string_view rest) {
        ++line_;
        const char *begin = rest.data();
        for (const char &byte : rest) {
            if (byte == '\n') {
                ++line_;
                begin = &byte + 1;
            } else if (!isBlank(byte) && byte != '\r' && !isNul(byte)) {
                return doubtAt(Rule::LinesAfterEnd, static_cast<uint32_t>(&byte - text_.data()),
                               static_cast<uint32_t>(&byte - begin));
            }
        }
    }

    Memory memory_;
    std::string_view text_;
    std::string_view given_; // the line as it was given
    std::string_view read_;  // the line as it is read, without NULs
    std::string_view direction_;
    SDPTidyRow *rows_ = nullptr;
    uint32_t count_ = 0;
    uint32_t capacity_ = 0;
    uint32_t line_ = 0;
    uint32_t mediaCount_ = 0;
    bool hasTime_ = false;
    bool rtpFamily_;
};

SDPResult withoutMemory(SDPTidyReport &report) {
    SdpLine *line = report.pstLine;
    SdpLibReleaseSdp(&line);
    report.pstLine = nullptr;
    report.enOutcome = SDP_TIDY_REFUSED;
    return SDP_TIDY_NO_MEMORY;
}

SDPResult findDoubts(const Request &request, SDPTidyReport &report) {
    SDPMemCp *memCp = nullptr;
    if (SipMmCreateBufMem(kBlockFirst, kBlockNext, &memCp) != 0) {
        return withoutMemory(report);
    }
    Doubter doubter(memCp, viewOf(request.text), request.decode.bRtpFamily == 1);
    const bool done = doubter.run();
    if (!done || doubter.count() == 0) {
        SipMmReleaseBufMem(&memCp);
        return done ? 0 : withoutMemory(report);
    }
    report.pstMemCp = memCp;
    report.pstRows = doubter.rows();
    report.ulNoOfRows = doubter.count();
    return 0;
}

} // namespace

} // namespace sdpline::tidy

using namespace sdpline::tidy;

extern "C" {

SDPResult SdpTidyFindDoubts(const SipString *pstText, const SDPTidyOptions *pstOptions,
                            SDPTidyReport *pstReport) {
    Request request;
    if (!begin(pstText, pstOptions, pstReport, request)) {
        return SDP_TIDY_ARGUMENT;
    }
    if (const SDPResult result = decodeGiven(request, *pstReport)) {
        return result;
    }
    return findDoubts(request, *pstReport);
}

} // extern "C"

// Replacing payload numbers that would change their codec, in all lines that have them.
#include "negotiate/renumber.hpp"

#include <algorithm>

#include "negotiate/formats.hpp"
#include "negotiate/pairing.hpp"

namespace sdpline::negotiate {

namespace {

// Unassigned numbers, used when 96 to 127 are in use (RFC 3551 section 3).
constexpr uint32_t kFirstUnassigned = 35;
constexpr uint32_t kLastUnassigned = 63;

// Names of lines whose value begins with a payload number: "96 nack pli" (RFC 4585 section 4.2,
// RFC 6236 section 3.1.1).
bool beginsWithNumber(std::string_view name) {
    return name == "rtcp-fb" || name == "imageattr";
}

class Renumbering {
public:
    Renumbering(const SDPMediaDesc &previous, const SDPMediaDesc &wanted, Arena &arena)
        : arena_(arena) {
        gather(previous, before_);
        gather(wanted, after_);
    }

    // Returns false if every number keeps its codec.
    bool needed() const {
        return std::any_of(after_.begin(), after_.end(),
                           [this](const Format &format) { return clashes(format); });
    }

    void run(MediaDraft &draft) {
        for (uint32_t number = 0; number <= kHighestPayload; ++number) {
            numbers_[number] = static_cast<uint8_t>(number);
        }
        // Changes nothing, but marks the numbers of all lines. A number that the m= line lacks and
        // another line has is in use: that line would be about the format with the new number.
        replaceIn(draft);
        for (const Format &format : after_) {
            if (clashes(format)) {
                numbers_[format.number] = static_cast<uint8_t>(replacement(format));
            }
        }
        replaceIn(draft);
    }

private:
    void replaceIn(MediaDraft &draft) {
        payloads(draft.line.stMediaFmt);
        for (SDPAttr &attribute : draft.attributes) {
            if (attribute.ulAttrType == SDP_ATTR_RTPMAP) {
                SDPRtpMapAttr &map = attribute.unAttrValue.stRtpMap;
                map.ulPayloadType = replaced(map.ulPayloadType);
            } else if (attribute.ulAttrType == SDP_ATTR_FMTP) {
                attribute = parameters(attribute);
            } else if (beginsWithNumber(otherName(attribute))) {
                attribute = formatLine(attribute);
            } else if (otherName(attribute) == "rid") {
                attribute = restrictions(attribute);
            }
        }
    }

    bool clashes(const Format &format) const {
        const auto place = before_.indexOf(format.number);
        return format.number >= kFirstDynamicPayload && format.number <= kHighestPayload && place &&
               format.defined && before_.items[*place].defined &&
               !sameCodec(format, before_.items[*place]);
    }

    uint32_t replacement(const Format &format) {
        for (const Format &one : before_) {
            if (sameCodec(one, format) && sameParameters(one, format) && !used_[one.number]) {
                used_[one.number] = true;
                return one.number;
            }
        }
        auto number = firstFree(kFirstDynamicPayload, kHighestPayload);
        if (!number) {
            number = firstFree(kFirstUnassigned, kLastUnassigned);
        }
        return number.value_or(format.number); // all of them are in use
    }

    std::optional<uint32_t> firstFree(uint32_t first, uint32_t last) {
        for (uint32_t number = first; number <= last; ++number) {
            if (!used_[number] && !before_.indexOf(number)) {
                used_[number] = true;
                return number;
            }
        }
        return std::nullopt;
    }

    uint32_t replaced(uint32_t number) {
        if (number > kHighestPayload) {
            return number;
        }
        used_[number] = true;
        return numbers_[number];
    }

    void payloads(SDPMediaFmt &format) {
        if (format.enFmtType == SDP_FMT_OTHER) { // one number, which the decoder stores as a word
            Text text;
            list(viewOf(format.unMediaFmt.strOtherFmts), ' ', text);
            format.unMediaFmt.strOtherFmts = lent(arena_.copy(text.view()));
            return;
        }
        const SDPRtpPayLoads old = format.unMediaFmt.stRtpPayLoads;
        auto *const fresh = arena_.make<uint32_t>(old.ulNoOfPayLoads);
        if (fresh == nullptr) {
            return;
        }
        for (uint32_t i = 0; i < old.ulNoOfPayLoads; ++i) {
            fresh[i] = replaced(old.pulPayLoads[i]);
        }
        format.unMediaFmt.stRtpPayLoads.pulPayLoads = fresh;
    }

    SDPAttr parameters(const SDPAttr &attribute) {
        std::string_view rest = viewOf(attribute.unAttrValue.strValue);
        uint32_t number = 0;
        if (!takeNumber(rest, number)) {
            return attribute;
        }
        Text text;
        text << replaced(number);
        within(rest, references(number, rest), '/', text);
        return textLine(arena_, SDP_ATTR_FMTP, text);
    }

    // The numbers in the parameters of a format that refers to others: " apt=96" or " 96/97".
    std::string_view references(uint32_t number, std::string_view parameters) const {
        const auto place = after_.indexOf(number);
        const Role role = place ? after_.items[*place].role : Role::Codec;
        if (role == Role::Red) {
            return after(parameters, parameters.find_first_not_of(' '));
        }
        return role == Role::Rtx ? parameter(parameters, "apt").value_or("") : "";
    }

    SDPAttr formatLine(const SDPAttr &attribute) {
        std::string_view rest = otherValue(attribute);
        uint32_t number = 0;
        if (!takeNumber(rest, number)) {
            return attribute;
        }
        Text text;
        text << replaced(number) << rest;
        return otherLine(arena_, otherName(attribute), text);
    }

    // "1 send pt=96,97;max-width=1280" (RFC 8851 section 4)
    SDPAttr restrictions(const SDPAttr &attribute) {
        const std::string_view all = otherValue(attribute);
        std::string_view rest = all;
        takeWord(rest);
        takeWord(rest);
        const auto numbers = parameter(rest, "pt");
        if (!numbers) {
            return attribute;
        }
        Text text;
        within(all, *numbers, ',', text);
        return otherLine(arena_, "rid", text);
    }

    // Writes `all` with the numbers of its part `numbers` replaced.
    void within(std::string_view all, std::string_view numbers, char separator, Text &text) {
        if (numbers.empty()) {
            text << all;
            return;
        }
        const auto begin = static_cast<size_t>(numbers.data() - all.data());
        text << firstBytes(all, begin);
        list(numbers, separator, text);
        text << after(all, begin + numbers.size());
    }

    void list(std::string_view rest, char separator, Text &text) {
        uint32_t number = 0;
        while (takeNumber(rest, number)) {
            text << replaced(number);
            if (rest.empty() || rest[0] != separator) {
                break;
            }
            text << std::string_view(&separator, 1);
            rest.remove_prefix(1);
        }
        text << rest;
    }

    Arena &arena_;
    FormatList before_;
    FormatList after_;
    uint8_t numbers_[kHighestPayload + 1];
    bool used_[kHighestPayload + 1] = {}; // in a line of the new description
};

} // namespace

void keepNumbers(const SDPMediaDesc &previous, const SDPMediaDesc &wanted, Arena &arena,
                 MediaDraft &draft) {
    Renumbering renumbering(previous, wanted, arena);
    if (renumbering.needed()) {
        renumbering.run(draft);
    }
}

} // namespace sdpline::negotiate

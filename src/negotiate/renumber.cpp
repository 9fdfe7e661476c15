// Replacing payload numbers that would change their codec, in all lines that have them.
#include "negotiate/renumber.hpp"

#include "negotiate/formats.hpp"
#include "negotiate/pairing.hpp"

namespace sdpline::negotiate {

namespace {

// Unassigned numbers, used when 96 to 127 are in use (RFC 3551 section 3).
constexpr uint32_t kFirstUnassigned = 35;
constexpr uint32_t kLastUnassigned = 63;

class Renumbering {
public:
    Renumbering(const SDPMediaDesc &previous, const SDPMediaDesc &wanted, Arena &arena)
        : arena_(arena) {
        gather(previous, before_);
        gather(wanted, after_);
    }

    // Returns false if every number keeps its codec.
    bool plan() {
        for (uint32_t number = 0; number <= kHighestPayload; ++number) {
            numbers_[number] = static_cast<uint8_t>(number);
            taken_[number] = before_.indexOf(number) || after_.indexOf(number);
        }
        bool any = false;
        for (const Format &format : after_) {
            if (clashes(format)) {
                numbers_[format.number] = static_cast<uint8_t>(replacement(format));
                any = true;
            }
        }
        return any;
    }

    void apply(MediaDraft &draft) {
        payloads(draft.line.stMediaFmt);
        for (SDPAttr &attribute : draft.attributes) {
            if (attribute.ulAttrType == SDP_ATTR_RTPMAP) {
                SDPRtpMapAttr &map = attribute.unAttrValue.stRtpMap;
                map.ulPayloadType = replaced(map.ulPayloadType);
            } else if (attribute.ulAttrType == SDP_ATTR_FMTP) {
                attribute = parameters(attribute);
            } else if (otherName(attribute) == "rtcp-fb") {
                attribute = feedback(attribute);
            }
        }
    }

private:
    bool clashes(const Format &format) const {
        const auto place = before_.indexOf(format.number);
        return format.number >= kFirstDynamicPayload && format.number <= kHighestPayload && place &&
               format.defined && before_.items[*place].defined &&
               !sameCodec(format, before_.items[*place]);
    }

    uint32_t replacement(const Format &format) {
        for (const Format &one : before_) {
            if (sameCodec(one, format) && sameParameters(one, format) &&
                !after_.indexOf(one.number) && !given_[one.number]) {
                given_[one.number] = true;
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
            if (!taken_[number]) {
                taken_[number] = true;
                return number;
            }
        }
        return std::nullopt;
    }

    uint32_t replaced(uint32_t number) const {
        return number <= kHighestPayload ? numbers_[number] : number;
    }

    void payloads(SDPMediaFmt &format) {
        if (format.enFmtType == SDP_FMT_OTHER) {
            return;
        }
        const SDPRtpPayLoads old = format.unMediaFmt.stRtpPayLoads;
        auto *const fresh = arena_.make<uint32_t>(old.ulNoOfPayLoads);
        for (uint32_t i = 0; fresh != nullptr && i < old.ulNoOfPayLoads; ++i) {
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
        const auto place = after_.indexOf(number);
        Text text;
        text << replaced(number);
        const bool refers =
            place && after_.items[*place].fmtp != nullptr &&
            (after_.items[*place].role == Role::Red || after_.items[*place].role == Role::Rtx);
        if (!refers) {
            text << rest;
            return textLine(arena_, SDP_ATTR_FMTP, text);
        }
        references(after_.items[*place], text);
        return textLine(arena_, SDP_ATTR_FMTP, text);
    }

    // Writes " apt=96" or " 96/97" with the numbers replaced.
    void references(const Format &format, Text &text) {
        const std::string_view all = format.parameters;
        const std::string_view list =
            format.role == Role::Rtx ? parameter(all, "apt").value_or(firstBytes(all, 0)) : all;
        const auto begin = static_cast<size_t>(list.data() - all.data());
        text << " " << firstBytes(all, begin);
        std::string_view rest = list;
        uint32_t number = 0;
        while (takeNumber(rest, number)) {
            text << replaced(number);
            if (rest.empty() || rest[0] != '/') {
                break;
            }
            text << "/";
            rest.remove_prefix(1);
        }
        text << rest << after(all, begin + list.size());
    }

    SDPAttr feedback(const SDPAttr &attribute) {
        std::string_view rest = otherValue(attribute);
        uint32_t number = 0;
        if (!takeNumber(rest, number)) {
            return attribute;
        }
        Text text;
        text << replaced(number) << rest;
        return otherLine(arena_, "rtcp-fb", text);
    }

    Arena &arena_;
    FormatList before_;
    FormatList after_;
    uint8_t numbers_[kHighestPayload + 1];
    bool taken_[kHighestPayload + 1];
    bool given_[kHighestPayload + 1] = {};
};

} // namespace

void keepNumbers(const SDPMediaDesc &previous, const SDPMediaDesc &wanted, Arena &arena,
                 MediaDraft &draft) {
    Renumbering renumbering(previous, wanted, arena);
    if (renumbering.plan()) {
        renumbering.apply(draft);
    }
}

} // namespace sdpline::negotiate

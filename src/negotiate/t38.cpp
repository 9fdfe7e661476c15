// T.38 streams: the parameters that are negotiated, and those that each side declares.
#include "negotiate/t38.hpp"

#include <algorithm>
#include <optional>

#include "negotiate/attributes.hpp"

namespace sdpline::negotiate {

namespace {

constexpr uint32_t kFlags[] = {SDP_ATTR_T38_FILL_BIT_REMOVAL, SDP_ATTR_T38_TRANSCODING_MMR,
                               SDP_ATTR_T38_TRANSCODING_JBIG};

std::optional<uint32_t> valueOf(const SDPMediaDesc &media, uint32_t type) {
    const SDPAttr *const line = find(attributesOf(media.pstAttrList), type);
    return line != nullptr ? std::optional(line->unAttrValue.ulValue) : std::nullopt;
}

bool isSet(const SDPMediaDesc &media, uint32_t flag) {
    return valueOf(media, flag).value_or(0) != 0;
}

// Whether one of the lines of the type, of which there may be several, has the value.
bool lists(const SDPMediaDesc &media, uint32_t type, uint32_t value) {
    const AttributeSpan all = attributesOf(media.pstAttrList);
    return std::any_of(all.begin(), all.end(), [&](const SDPAttr *one) {
        return one->ulAttrType == type && one->unAttrValue.ulValue == value;
    });
}

std::string_view nameOf(uint32_t type) {
    return wordOf(AttributeType{type});
}

void answerVersion(const SDPMediaDesc &offered, const SDPMediaDesc &ours, uint32_t stream,
                   Report &report, Growing<SDPAttr> &lines) {
    const auto theirs = valueOf(offered, SDP_ATTR_T38_FAX_VERSION);
    const auto own = valueOf(ours, SDP_ATTR_T38_FAX_VERSION);
    if (!theirs && !own) {
        return;
    }
    const uint32_t lower = std::min(theirs.value_or(0), own.value_or(0));
    lines.add(numberLine(SDP_ATTR_T38_FAX_VERSION, lower));
    if (theirs.value_or(0) != own.value_or(0)) {
        Text detail;
        detail << "offered " << theirs.value_or(0) << ", ours " << own.value_or(0);
        report.add(Reason::FaxVersionLowered, stream, detail);
    }
}

void answerFlags(const SDPMediaDesc &offered, const SDPMediaDesc &ours, uint32_t stream,
                 Report &report, Growing<SDPAttr> &lines) {
    for (const uint32_t flag : kFlags) {
        const bool theirs = isSet(offered, flag);
        if (theirs && isSet(ours, flag)) {
            lines.add(numberLine(flag, 1));
        } else if (theirs != isSet(ours, flag)) {
            report.add(Reason::FaxFlagDropped, stream, nameOf(flag));
        }
    }
}

// Adds the first of our error corrections that was offered.
void answerCorrection(const SDPMediaDesc &offered, const SDPMediaDesc &ours, uint32_t stream,
                      Report &report, Growing<SDPAttr> &lines) {
    for (const SDPAttr *const line : attributesOf(ours.pstAttrList)) {
        if (line->ulAttrType == SDP_ATTR_T38_UDP_EC &&
            lists(offered, SDP_ATTR_T38_UDP_EC, line->unAttrValue.ulValue)) {
            lines.add(*line);
            return;
        }
    }
    if (valueOf(offered, SDP_ATTR_T38_UDP_EC) || valueOf(ours, SDP_ATTR_T38_UDP_EC)) {
        report.add(Reason::FaxCorrectionDropped, stream);
    }
}

void addOurs(const SDPMediaDesc &ours, uint32_t type, Growing<SDPAttr> &lines) {
    if (const SDPAttr *const line = find(attributesOf(ours.pstAttrList), type)) {
        lines.add(*line);
    }
}

} // namespace

Reason fitFax(const SDPMediaDesc &offered, const SDPMediaDesc &ours, Text &why) {
    const auto theirs = valueOf(offered, SDP_ATTR_T38_RATE_MANAGEMENT);
    const auto own = valueOf(ours, SDP_ATTR_T38_RATE_MANAGEMENT);
    if (!theirs || !own || lists(ours, SDP_ATTR_T38_RATE_MANAGEMENT, *theirs)) {
        return Reason::None;
    }
    why << "offered " << wordOf(T38RateManagement{*theirs}) << ", ours "
        << wordOf(T38RateManagement{*own});
    return Reason::RateManagement;
}

void answerFax(const SDPMediaDesc &offered, const SDPMediaDesc &ours, uint32_t stream,
               Report &report, Growing<SDPAttr> &lines) {
    answerVersion(offered, ours, stream, report, lines);
    addOurs(ours, SDP_ATTR_T38_MAX_BIT_RATE, lines);
    answerFlags(offered, ours, stream, report, lines);
    if (const auto theirs = valueOf(offered, SDP_ATTR_T38_RATE_MANAGEMENT)) {
        lines.add(numberLine(SDP_ATTR_T38_RATE_MANAGEMENT, *theirs));
    } else {
        addOurs(ours, SDP_ATTR_T38_RATE_MANAGEMENT, lines);
    }
    addOurs(ours, SDP_ATTR_T38_MAX_BUFFER, lines);
    addOurs(ours, SDP_ATTR_T38_MAX_DATAGRAM, lines);
    answerCorrection(offered, ours, stream, report, lines);
}

void checkFax(const SDPMediaDesc &offered, const SDPMediaDesc &answered, uint32_t stream,
              Report &report) {
    const uint32_t highest = valueOf(offered, SDP_ATTR_T38_FAX_VERSION).value_or(0);
    const uint32_t version = valueOf(answered, SDP_ATTR_T38_FAX_VERSION).value_or(0);
    if (version > highest) {
        report.add(Reason::FaxVersionRaised, stream,
                   Text() << "offered " << highest << ", answered " << version);
    }
    const auto offeredRate = valueOf(offered, SDP_ATTR_T38_RATE_MANAGEMENT);
    const auto answeredRate = valueOf(answered, SDP_ATTR_T38_RATE_MANAGEMENT);
    if (offeredRate && answeredRate && *offeredRate != *answeredRate) {
        report.add(Reason::RateManagementChanged, stream,
                   Text() << "offered " << wordOf(T38RateManagement{*offeredRate}) << ", answered "
                          << wordOf(T38RateManagement{*answeredRate}));
    }
    for (const uint32_t flag : kFlags) {
        if (isSet(answered, flag) && !isSet(offered, flag)) {
            report.add(Reason::FaxFlagNotOffered, stream, nameOf(flag));
        }
    }
    const auto correction = valueOf(answered, SDP_ATTR_T38_UDP_EC);
    if (correction && !lists(offered, SDP_ATTR_T38_UDP_EC, *correction)) {
        report.add(Reason::FaxCorrectionNotOffered, stream,
                   wordOf(T38ErrorCorrection{*correction}));
    }
}

} // namespace sdpline::negotiate

// Groups of streams: an answer has those whose semantics both sides use.
#include "negotiate/grouping.hpp"

#include <algorithm>

#include "negotiate/attributes.hpp"

namespace sdpline::negotiate {

namespace {

constexpr std::string_view kBundle = "BUNDLE";

bool isGroup(const SDPAttr &attribute) {
    return otherName(attribute) == "group";
}

// The first word of a group such as "LS 1 2"; whether an id is in the group.
std::string_view semanticsOf(std::string_view group) {
    return takeWord(group);
}
bool lists(std::string_view group, std::string_view id) {
    takeWord(group);
    while (!group.empty()) {
        if (takeWord(group) == id) {
            return true;
        }
    }
    return false;
}

bool hasGroup(const SdpLine &body, std::string_view semantics) {
    const AttributeSpan all = attributesOf(body.pstAttrList);
    return std::any_of(all.begin(), all.end(), [&](const SDPAttr *one) {
        return isGroup(*one) && semanticsOf(otherValue(*one)) == semantics;
    });
}

// Whether a body has any mids or groups.
bool usesMids(const SdpLine &body) {
    const MediaSpan media = mediaOf(body);
    return find(attributesOf(body.pstAttrList), "group") != nullptr ||
           std::any_of(media.begin(), media.end(),
                       [](const SDPMediaDesc *one) { return !midOf(*one).empty(); });
}

// The bundle in which a stream is offered; empty for none.
std::string_view bundleOf(const SdpLine &offer, const SDPMediaDesc &offered) {
    const std::string_view mid = midOf(offered);
    for (const SDPAttr *const attribute : attributesOf(offer.pstAttrList)) {
        const std::string_view group = otherValue(*attribute);
        if (isGroup(*attribute) && semanticsOf(group) == kBundle && !mid.empty() &&
            lists(group, mid)) {
            return group;
        }
    }
    return {};
}

} // namespace

std::string_view midOf(const SDPMediaDesc &media) {
    const SDPAttr *const line = find(attributesOf(media.pstAttrList), "mid");
    return line != nullptr ? otherValue(*line) : std::string_view();
}

bool isBundleOnly(const SdpLine &offer, const SDPMediaDesc &offered, const SdpLine &local) {
    return offered.stMediaField.ulPort == 0 &&
           find(attributesOf(offered.pstAttrList), "bundle-only") != nullptr &&
           !bundleOf(offer, offered).empty() && hasGroup(local, kBundle);
}

bool Grouping::lacksBundle(uint32_t stream) const {
    const MediaSpan offered = mediaOf(offer_);
    if (draft_.media[stream].line.ulPort == 0 || offered[stream]->stMediaField.ulPort != 0) {
        return false;
    }
    const std::string_view group = bundleOf(offer_, *offered[stream]);
    for (uint32_t i = 0; i < offered.size(); ++i) {
        const std::string_view mid = midOf(*offered[i]);
        if (offered[i]->stMediaField.ulPort != 0 && draft_.media[i].line.ulPort != 0 &&
            !mid.empty() && lists(group, mid)) {
            return false;
        }
    }
    return true;
}

void Grouping::addMids() {
    if (!usesMids(local_)) {
        return;
    }
    const MediaSpan offered = mediaOf(offer_);
    for (uint32_t i = 0; i < draft_.media.size(); ++i) {
        const std::string_view mid = midOf(*offered[i]);
        if (!mid.empty()) {
            draft_.media[i].attributes.add(otherLine(report_.arena, "mid", Text() << mid));
        }
    }
}

void Grouping::addGroups() {
    for (const SDPAttr *const attribute : attributesOf(offer_.pstAttrList)) {
        if (!isGroup(*attribute)) {
            continue;
        }
        const std::string_view group = otherValue(*attribute);
        if (hasGroup(local_, semanticsOf(group))) {
            addGroup(group);
        } else {
            report_.add(Reason::GroupDropped, kSession, group);
        }
    }
}

// The accepted stream of an id. No two streams should have one id (RFC 5888 section 4); if they do,
// the first one is meant, and none may be rejected.
std::optional<uint32_t> Grouping::acceptedWith(std::string_view mid) const {
    const MediaSpan streams = mediaOf(offer_);
    std::optional<uint32_t> found;
    for (uint32_t i = 0; i < streams.size(); ++i) {
        if (midOf(*streams[i]) != mid) {
            continue;
        }
        if (draft_.media[i].line.ulPort == 0) {
            return std::nullopt;
        }
        found = found.value_or(i);
    }
    return found;
}

// Writes the group with the ids of the accepted streams, in the offer's order, each once.
void Grouping::addGroup(std::string_view offered) {
    Growing<uint32_t> members(report_.arena);
    Text text;
    std::string_view rest = offered;
    text << takeWord(rest);
    while (!rest.empty()) {
        const std::string_view mid = takeWord(rest);
        const auto stream = acceptedWith(mid);
        if (stream && std::find(members.begin(), members.end(), *stream) == members.end()) {
            text << " " << mid;
            members.add(*stream);
        }
    }
    if (members.size() == 0) {
        return;
    }
    draft_.attributes.add(otherLine(report_.arena, "group", text));
    if (semanticsOf(offered) == kBundle) {
        bundle(members);
    }
}

// All streams of a bundle get the address of the first one, and only that one has transport
// attributes (RFC 8843 sections 7.1.3 and 7.3).
void Grouping::bundle(const Growing<uint32_t> &streams) {
    const MediaDraft &tagged = draft_.media[streams[0]];
    for (uint32_t i = 1; i < streams.size(); ++i) {
        MediaDraft &one = draft_.media[streams[i]];
        one.line.ulPort = tagged.line.ulPort;
        one.connection = tagged.connection;
        Growing<SDPAttr> kept(report_.arena);
        for (const SDPAttr &attribute : one.attributes) {
            if (!isTransport(attribute)) {
                kept.add(attribute);
            }
        }
        one.attributes = kept;
    }
}

// ---- Checks

namespace {

// Whether the answer's group is a group of the offer, or a part of one.
bool wasOffered(const SdpLine &offer, std::string_view answered) {
    for (const SDPAttr *const attribute : attributesOf(offer.pstAttrList)) {
        const std::string_view group = otherValue(*attribute);
        if (!isGroup(*attribute) || semanticsOf(group) != semanticsOf(answered)) {
            continue;
        }
        std::string_view rest = answered;
        takeWord(rest);
        bool all = true;
        while (!rest.empty()) {
            all = lists(group, takeWord(rest)) && all;
        }
        if (all) {
            return true;
        }
    }
    return false;
}

bool hasRejected(const SdpLine &answer, std::string_view group) {
    const MediaSpan answered = mediaOf(answer);
    return std::any_of(answered.begin(), answered.end(), [&](const SDPMediaDesc *one) {
        const std::string_view mid = midOf(*one);
        return one->stMediaField.ulPort == 0 && !mid.empty() && lists(group, mid) &&
               find(attributesOf(one->pstAttrList), "bundle-only") == nullptr;
    });
}

} // namespace

void checkGroups(const SdpLine &offer, const SdpLine &answer, Report &report) {
    const MediaSpan offered = mediaOf(offer);
    const MediaSpan answered = mediaOf(answer);
    for (uint32_t i = 0; i < std::min(offered.size(), answered.size()); ++i) {
        const std::string_view mid = midOf(*answered[i]);
        if (!mid.empty() && mid != midOf(*offered[i])) {
            report.add(Reason::MidChanged, i, mid);
        }
    }
    for (const SDPAttr *const attribute : attributesOf(answer.pstAttrList)) {
        if (!isGroup(*attribute)) {
            continue;
        }
        const std::string_view group = otherValue(*attribute);
        if (!wasOffered(offer, group)) {
            report.add(Reason::GroupNotOffered, kSession, group);
        }
        if (hasRejected(answer, group)) {
            report.add(Reason::GroupRejected, kSession, group);
        }
    }
}

} // namespace sdpline::negotiate

// a=rtcp-fb: "96 nack pli" for one format, "* nack pli" for all.
#include "negotiate/feedback.hpp"

#include "negotiate/transport.hpp"

namespace sdpline::negotiate {

namespace {

constexpr uint32_t kAll = SDP_NEGOTIATE_NONE;

struct Feedback {
    uint32_t number; // kAll for "*"
    std::string_view message;
};

// Reads an a=rtcp-fb line. Returns false for any other attribute, and for a malformed line.
bool feedbackOf(const SDPAttr &attribute, Feedback &feedback) {
    if (attribute.ulAttrType != SDP_ATTR_UNREC_VALUE || otherName(attribute) != "rtcp-fb") {
        return false;
    }
    std::string_view text = otherValue(attribute);
    std::string_view target = takeWord(text);
    feedback = {kAll, text};
    return target == "*" || (takeNumber(target, feedback.number) && target.empty());
}

// Whether a list has the message for that number; with kAll only lines with "*" are considered.
bool has(const SDPMediaDesc &media, uint32_t number, std::string_view message) {
    for (const SDPAttr *const attribute : attributesOf(media.pstAttrList)) {
        Feedback one = {};
        if (feedbackOf(*attribute, one) && (one.number == number || one.number == kAll) &&
            sameWord(one.message, message)) {
            return true;
        }
    }
    return false;
}

SDPAttr lineOf(Arena &arena, uint32_t number, std::string_view message) {
    Text text;
    if (number == kAll) {
        text << "*";
    } else {
        text << number;
    }
    text << " " << message;
    return otherLine(arena, "rtcp-fb", text);
}

// Adds a line for each chosen format that the offered line applies to, and for which we have the
// message.
bool addFor(const Feedback &offered, const SDPMediaDesc &ours, const Pairing &pairing, Arena &arena,
            Growing<SDPAttr> &lines) {
    if (offered.number == kAll && has(ours, kAll, offered.message)) {
        lines.add(lineOf(arena, kAll, offered.message));
        return true;
    }
    bool added = false;
    for (uint32_t i = 0; i < pairing.chosenCount; ++i) {
        const uint32_t place = pairing.chosen[i];
        const uint32_t number = pairing.offered.items[place].number;
        if ((offered.number == kAll || offered.number == number) &&
            has(ours, pairing.ourOf(place).number, offered.message)) {
            lines.add(lineOf(arena, number, offered.message));
            added = true;
        }
    }
    return added;
}

} // namespace

void answerFeedback(const SDPMediaDesc &offered, const SDPMediaDesc &ours, const Pairing &pairing,
                    uint32_t stream, Report &report, Growing<SDPAttr> &lines) {
    const bool used = hasFeedback(offered) && hasFeedback(ours);
    for (const SDPAttr *const attribute : attributesOf(offered.pstAttrList)) {
        Feedback feedback = {};
        if (feedbackOf(*attribute, feedback) &&
            !(used && addFor(feedback, ours, pairing, report.arena, lines))) {
            report.add(Reason::FeedbackDropped, stream, otherValue(*attribute), feedback.number);
        }
    }
}

void checkFeedback(const SDPMediaDesc &offered, const SDPMediaDesc &answered,
                   const Pairing &pairing, uint32_t stream, Report &report) {
    for (const SDPAttr *const attribute : attributesOf(answered.pstAttrList)) {
        Feedback feedback = {};
        if (!feedbackOf(*attribute, feedback)) {
            continue;
        }
        bool known = has(offered, kAll, feedback.message);
        for (uint32_t i = 0; !known && i < pairing.chosenCount; ++i) {
            const uint32_t place = pairing.chosen[i];
            known = pairing.ourOf(place).number == feedback.number &&
                    has(offered, pairing.offered.items[place].number, feedback.message);
        }
        if (!known) {
            report.add(Reason::FeedbackNotOffered, stream, otherValue(*attribute));
        }
    }
}

} // namespace sdpline::negotiate

// Checking an answer against its offer.
#include <algorithm>

#include "negotiate/agree.hpp"
#include "negotiate/attributes.hpp"
#include "negotiate/describe.hpp"
#include "negotiate/direction.hpp"
#include "negotiate/feedback.hpp"
#include "negotiate/grouping.hpp"
#include "negotiate/origin.hpp"
#include "negotiate/precondition.hpp"
#include "negotiate/t38.hpp"
#include "negotiate/transport.hpp"

namespace sdpline::negotiate {

namespace {

bool listsFormats(const SDPMediaDesc &media) {
    const SDPMediaFmt &format = media.stMediaField.stMediaFmt;
    return format.enFmtType != SDP_FMT_RTP_PAYLOADS ||
           format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads != 0;
}

// Whether both have the same b= lines.
bool sameBandwidths(const SDPStringList *one, const SDPStringList *two) {
    const auto textsOf = [](const SDPStringList *list) {
        return list != nullptr && list->ppstStrings != nullptr
                   ? std::span(list->ppstStrings, list->ulNoOfStrings)
                   : std::span<SipString *>();
    };
    const auto first = textsOf(one);
    const auto second = textsOf(two);
    return std::equal(
        first.begin(), first.end(), second.begin(), second.end(),
        [](const SipString *a, const SipString *b) { return viewOf(a) == viewOf(b); });
}

// The a=ptime of a stream, 0 for none.
uint32_t packetTimeOf(const SDPMediaDesc &media) {
    const SDPAttr *const line = find(attributesOf(media.pstAttrList), uint32_t{SDP_ATTR_PTIME});
    return line != nullptr ? line->unAttrValue.ulValue : 0;
}

class AnswerCheck {
public:
    AnswerCheck(const SdpLine &offer, const SdpLine &answer, Report &report)
        : offer_(offer), answer_(answer), report_(report) {}

    void run() {
        const MediaSpan offered = mediaOf(offer_);
        const MediaSpan answered = mediaOf(answer_);
        const auto common = static_cast<uint32_t>(std::min(offered.size(), answered.size()));
        for (uint32_t i = 0; i < common; ++i) {
            stream(i, *offered[i], *answered[i]);
        }
        for (uint32_t i = common; i < offered.size(); ++i) {
            report_.add(Reason::StreamMissing, i);
        }
        for (uint32_t i = common; i < answered.size(); ++i) {
            report_.add(Reason::StreamExtra, i);
        }
        times();
        checkGroups(offer_, answer_, report_);
    }

private:
    // Compares the first t= lines: the encoder writes no other.
    void times() {
        const auto first = [](const SdpLine &body) {
            const SDPTimeSet &set = body.stTimeSet;
            const SDPTimeField *const time =
                set.ulNoOfTimeFields != 0 && set.ppstTimeFields != nullptr ? set.ppstTimeFields[0]
                                                                           : nullptr;
            return time != nullptr
                       ? std::pair(uint32_t{time->ulStartTime}, uint32_t{time->ulStopTime})
                       : std::pair(0u, 0u);
        };
        const auto offered = first(offer_);
        const auto answered = first(answer_);
        if (offered != answered) {
            report_.add(Reason::TimeChanged, kSession,
                        Text() << "offered " << offered.first << " " << offered.second
                               << ", answered " << answered.first << " " << answered.second);
        }
    }

    void stream(uint32_t index, const SDPMediaDesc &offered, const SDPMediaDesc &answered) {
        if (!sameMedia(offered, answered)) {
            change(Reason::MediaTypeChanged, index, mediaWord(offered), mediaWord(answered));
            return;
        }
        if (!sameProtocol(offered, answered)) {
            change(Reason::ProtocolChanged, index, protocolWord(offered), protocolWord(answered));
        }
        const uint32_t port = answered.stMediaField.ulPort;
        if (port == 0 && !isBundleOnly(answer_, answered, offer_)) {
            if (listsFormats(offered) && !listsFormats(answered)) {
                report_.add(Reason::RejectedWithoutFormats, index);
            }
            return;
        }
        if (offered.stMediaField.ulPort == 0 &&
            find(attributesOf(offered.pstAttrList), "bundle-only") == nullptr) {
            report_.add(Reason::StreamReopened, index);
            return;
        }
        if (port > kHighestPort) {
            report_.add(Reason::AnswerPortTooHigh, index, Text() << port);
        }
        accepted(index, offered, answered);
    }

    void accepted(uint32_t index, const SDPMediaDesc &offered, const SDPMediaDesc &answered) {
        if (connectionOf(answer_, answered) == nullptr) {
            report_.add(Reason::AnswerNoConnection, index);
        }
        formats(index, offered, answered);
        if (isMulticast(connectionOf(offer_, offered))) {
            multicast(index, offered, answered);
        } else {
            direction(index, offered, answered);
        }
        const Sides sides = {offer_, offered, answer_, answered};
        checkTransport(sides, index, report_);
        checkFeedback(offered, answered, pairing_, index, report_);
        checkPreconditions(offered, answered, index, report_);
        if (pairing_.offered.count != 0 && sameWord(pairing_.offered.items[0].name, "t38")) {
            checkFax(offered, answered, index, report_);
        }
        if (find(attributesOf(answered.pstAttrList), "rtcp-mux") != nullptr &&
            find(attributesOf(offered.pstAttrList), "rtcp-mux") == nullptr) {
            report_.add(Reason::RtcpMuxNotOffered, index);
        }
    }

    void formats(uint32_t index, const SDPMediaDesc &offered, const SDPMediaDesc &answered) {
        pairAnswer(offered, answered, pairing_);
        bool any = false;
        eachNumber(answered, [&](uint32_t number) {
            any = true;
            if (number > kHighestPayload) {
                report_.add(Reason::AnswerNumberTooHigh, index, Text() << number, number);
            }
        });
        for (const Format &format : pairing_.ours) {
            if (!format.defined) {
                report_.add(Reason::AnswerFormatUndefined, index, Text() << format.number,
                            format.number);
            }
        }
        if (!any && pairing_.ours.count == 0) {
            report_.add(Reason::NoFormats, index);
        } else if (pairing_.chosenCount == 0) {
            Text detail;
            writeMismatch(pairing_.offered, pairing_.ours, "answered", detail);
            report_.add(Reason::AnswerNoCommonFormat, index, detail);
        }
        modeSets(index);
    }

    // Formats are compared by their numbers here: a format with another mode-set has no partner.
    void modeSets(uint32_t index) {
        for (const Format &offered : pairing_.offered) {
            const auto place = pairing_.ours.indexOf(offered.number);
            if (!isAmr(offered) || !place || !sameCodec(offered, pairing_.ours.items[*place])) {
                continue;
            }
            const auto modes = modeSetOf(offered.parameters);
            if (modes && modes != modeSetOf(pairing_.ours.items[*place].parameters)) {
                report_.add(Reason::ModeSetChanged, index, Text() << offered.number,
                            offered.number);
            }
        }
    }

    void direction(uint32_t index, const SDPMediaDesc &offered, const SDPMediaDesc &answered) {
        const uint32_t theirs = flowsOf(offer_, offered);
        const uint32_t ours = flowsOf(answer_, answered);
        if ((ours & ~turned(theirs)) != 0) {
            change(Reason::DirectionConflict, index, directionWord(theirs), directionWord(ours));
        }
    }

    void multicast(uint32_t index, const SDPMediaDesc &offered, const SDPMediaDesc &answered) {
        const SDPConnection *const theirs = connectionOf(offer_, offered);
        const SDPConnection *const ours = connectionOf(answer_, answered);
        const bool sameAddress =
            ours != nullptr &&
            sdpline::Media(&offered).port() == sdpline::Media(&answered).port() &&
            addressOf(*theirs) == addressOf(*ours);
        if (!sameAddress || flowsOf(offer_, offered) != flowsOf(answer_, answered)) {
            report_.add(Reason::MulticastChanged, index);
        }
        const uint32_t packetTime = packetTimeOf(offered);
        if ((packetTime != 0 && packetTime != packetTimeOf(answered)) ||
            (offered.pstBandwidthList != nullptr &&
             !sameBandwidths(offered.pstBandwidthList, answered.pstBandwidthList))) {
            report_.add(Reason::MulticastRates, index);
        }
        for (uint32_t i = 0; i < pairing_.ours.count; ++i) {
            const Format &format = pairing_.ours.items[i];
            if (format.defined && !isPaired(i)) {
                Text detail;
                detail << format.name;
                if (format.number != SDP_NEGOTIATE_NONE) {
                    detail << " " << format.number;
                }
                report_.add(Reason::MulticastFormat, index, detail, format.number);
            }
        }
    }

    bool isPaired(uint32_t place) const {
        const uint8_t *const end = pairing_.partner + pairing_.offered.count;
        return std::find(pairing_.partner, end, place) != end;
    }

    static std::string_view addressOf(const SDPConnection &connection) {
        const bool v6 = connection.stTptAddr.enTptAddrType == SDP_TPTADDR_IPV6;
        return {reinterpret_cast<const char *>(&connection.stTptAddr.unTptAddr), v6 ? 16u : 4u};
    }

    void change(Reason reason, uint32_t index, std::string_view offered,
                std::string_view answered) {
        report_.add(reason, index, Text() << "offered " << offered << ", answered " << answered);
    }

    const SdpLine &offer_;
    const SdpLine &answer_;
    Report &report_;
    Pairing pairing_;
};

} // namespace

} // namespace sdpline::negotiate

extern "C" SDPResult SdpNegotiateCheck(const SdpLine *pstOffer, const SdpLine *pstAnswer,
                                       SdpNegotiateReport **ppstReport) {
    using namespace sdpline::negotiate;
    if (ppstReport == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstReport = nullptr;
    for (const Reason reason : {usable(pstOffer), usable(pstAnswer)}) {
        if (reason != Reason::None) {
            return resultOf(reason);
        }
    }
    Report report(true);
    AnswerCheck(*pstOffer, *pstAnswer, report).run();
    const bool good = report.decisionCount() == 0;
    return report.finish(good, ppstReport) ? 0 : resultOf(Reason::NoMemory);
}

// Checking a description that follows another one of the same side (RFC 3264 section 8).
#include "negotiate/describe.hpp"
#include "negotiate/draft.hpp"
#include "negotiate/formats.hpp"
#include "negotiate/origin.hpp"

namespace sdpline::negotiate {

namespace {

class NextCheck {
public:
    NextCheck(const SdpLine &previous, const SdpLine &next, Report &report)
        : previous_(previous), next_(next), report_(report) {}

    void run() {
        origin();
        const MediaSpan before = mediaOf(previous_);
        const MediaSpan after = mediaOf(next_);
        for (uint32_t i = 0; i < before.size(); ++i) {
            if (i >= after.size()) {
                report_.add(Reason::StreamRemoved, i);
            } else if (before[i]->stMediaField.ulPort != 0 && after[i]->stMediaField.ulPort != 0) {
                payloads(i, *before[i], *after[i]);
            }
        }
        for (uint32_t i = 0; i < after.size(); ++i) {
            if (after[i]->stMediaField.ulPort > kHighestPort) {
                report_.add(Reason::NextPortTooHigh, i, Text() << after[i]->stMediaField.ulPort);
            }
        }
    }

private:
    void origin() {
        const SDPOrigin &before = previous_.stOrigin;
        const SDPOrigin &after = next_.stOrigin;
        if (!sameOrigin(before, after)) {
            report_.add(Reason::OriginChanged, kSession);
            return;
        }
        const std::string_view from = viewOf(before.strSessionVersion);
        const std::string_view to = viewOf(after.strSessionVersion);
        Text detail;
        detail << "from " << from << " to " << to;
        if (from != to) {
            if (!isNext(to, from)) {
                report_.add(Reason::VersionJumped, kSession, detail);
            }
            return;
        }
        const std::string_view one = afterOrigin(textOf(previous_, report_.arena));
        if (one != afterOrigin(textOf(next_, report_.arena))) {
            report_.add(Reason::VersionNotRaised, kSession, from);
        }
    }

    // Compares the payload numbers of an m= line. With another media type it is another stream.
    void payloads(uint32_t index, const SDPMediaDesc &before, const SDPMediaDesc &after) {
        if (!sameMedia(before, after)) {
            return;
        }
        gather(before, before_);
        gather(after, after_);
        for (const Format &format : after_) {
            const auto place = before_.indexOf(format.number);
            const bool dynamic =
                format.number >= kFirstDynamicPayload && format.number != SDP_NEGOTIATE_NONE;
            if (!dynamic || !place || !format.defined || !before_.items[*place].defined ||
                sameCodec(format, before_.items[*place])) {
                continue;
            }
            Text detail;
            detail << format.number << " from ";
            writeName(before_.items[*place], detail);
            detail << " to ";
            writeName(format, detail);
            report_.add(Reason::PayloadRemapped, index, detail, format.number);
        }
    }

    const SdpLine &previous_;
    const SdpLine &next_;
    Report &report_;
    FormatList before_;
    FormatList after_;
};

} // namespace

} // namespace sdpline::negotiate

extern "C" SDPResult SdpNegotiateCheckNext(const SdpLine *pstPrevious, const SdpLine *pstNext,
                                           SdpNegotiateReport **ppstReport) {
    using namespace sdpline::negotiate;
    if (ppstReport == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstReport = nullptr;
    for (const Reason reason : {usable(pstPrevious), usable(pstNext)}) {
        if (reason != Reason::None) {
            return resultOf(reason);
        }
    }
    Report report(true);
    NextCheck(*pstPrevious, *pstNext, report).run();
    const bool good = report.decisionCount() == 0;
    return report.finish(good, ppstReport) ? 0 : resultOf(Reason::NoMemory);
}

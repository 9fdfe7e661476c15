// Recording decisions with their sentences.
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

namespace {

void writeSentence(Text &text, Reason reason, uint32_t stream, std::string_view detail) {
    const bool accepted = reason == Reason::Accepted;
    if (stream != kSession) {
        text << "stream " << stream + 1;
        if (accepted) {
            text << " ";
        } else if (SdpNegotiateGetReason(resultOf(reason))->enKind == SDP_NEGOTIATE_REJECTION) {
            text << " rejected: ";
        } else {
            text << ": ";
        }
    }
    text << sentenceOf(reason);
    if (detail.empty()) {
        return;
    }
    if (accepted) {
        text << ": " << detail;
    } else {
        text << " (" << detail << ")";
    }
}

} // namespace

void Report::add(Reason reason, uint32_t stream, std::string_view detail, uint32_t payload) {
    if (!wanted_) {
        return;
    }
    auto *const decision =
        static_cast<SdpNegotiateDecision *>(arena.take(sizeof(SdpNegotiateDecision)));
    if (decision == nullptr) {
        return;
    }
    Text text;
    writeSentence(text, reason, stream, detail);
    *decision = {resultOf(reason), stream, payload, lent(arena.copy(text.view()))};
    decisions_.add(decision);
}

void Report::forget(uint32_t stream) {
    uint32_t kept = 0;
    for (SdpNegotiateDecision *const decision : decisions_) {
        if (decision->ulStream != stream) {
            decisions_[kept++] = decision;
        }
    }
    decisions_.cut(kept);
}

SdpNegotiateStream *Report::addStream() {
    auto *const stream = arena.make<SdpNegotiateStream>();
    if (stream != nullptr) {
        clear(*stream);
        streams_.add(stream);
    }
    return stream;
}

void Report::clear(SdpNegotiateStream &stream) {
    stream = {};
    stream.ulLocal = SDP_NEGOTIATE_NONE;
    stream.enDirection = SDP_ATTR_INACTIVE;
    stream.ulSendPTime = stream.ulReceivePTime = SDP_NEGOTIATE_NONE;
    stream.ulSendMaxPTime = stream.ulReceiveMaxPTime = SDP_NEGOTIATE_NONE;
}

bool Report::finish(bool accepted, SdpNegotiateReport **result) {
    auto *const report = arena.make<SdpNegotiateReport>();
    if (arena.failed()) {
        return false;
    }
    *report = {decisions_.size(), arrayOf(decisions_), streams_.size(),
               arrayOf(streams_), accepted ? 1u : 0u,  nullptr};
    if (result != nullptr) {
        report->pstMemCp = arena.release();
        *result = report;
    }
    return true;
}

} // namespace sdpline::negotiate

extern "C" void SdpNegotiateReleaseReport(SdpNegotiateReport **ppstReport) {
    if (ppstReport == nullptr || *ppstReport == nullptr) {
        return;
    }
    SDPMemCp *block = (*ppstReport)->pstMemCp; // the report lies in it
    *ppstReport = nullptr;
    SipMmReleaseBufMem(&block);
}

// Recording decisions with their sentences.
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

namespace {

// Text is appended without a check: there must be enough memory for it.
class Writer {
public:
    explicit Writer(char *at) : at_(at) {}

    template <size_t Size>
    Writer &operator<<(const char (&text)[Size]) {
        std::memcpy(at_, text, Size - 1);
        at_ += Size - 1;
        return *this;
    }
    Writer &operator<<(std::string_view text) {
        std::char_traits<char>::copy(at_, text.data(), text.size());
        at_ += text.size();
        return *this;
    }
    Writer &operator<<(uint32_t number) {
        if (number >= 10) {
            return *this << (Text() << number).view();
        }
        *at_++ = static_cast<char>('0' + number);
        return *this;
    }

    const char *end() const { return at_; }

private:
    char *at_;
};

// The longest text around a sentence and its detail.
constexpr std::string_view kAround = "stream 4294967295 rejected:  ()";

template <class Out>
void writeSentence(Out &text, Reason reason, uint32_t stream, std::string_view detail) {
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

// The sentence in the arena; one that is longer than a Text is cut.
std::string_view sentence(Arena &arena, Reason reason, uint32_t stream, std::string_view detail) {
    const size_t most = kAround.size() + sentenceOf(reason).size() + detail.size();
    if (most > SDP_MAX_VALUE) {
        Text text;
        writeSentence(text, reason, stream, detail);
        return arena.copy(text.view());
    }
    char *const begin = arena.reserve(most);
    if (begin == nullptr) {
        return {};
    }
    Writer writer(begin);
    writeSentence(writer, reason, stream, detail);
    const auto size = static_cast<size_t>(writer.end() - begin);
    arena.keep(size);
    return {begin, size};
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
    *decision = {resultOf(reason), stream, payload, lent(sentence(arena, reason, stream, detail))};
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

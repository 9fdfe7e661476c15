// The report of a call, while it is made.
#pragma once

#include <cstdint>

#include "negotiate/memory.hpp"
#include "negotiate/reasons.hpp"

namespace sdpline::negotiate {

constexpr uint32_t kSession = SDP_NEGOTIATE_NONE;
constexpr uint32_t kNoPayload = SDP_NEGOTIATE_NONE;

class Report {
public:
    // Sentences are made only where somebody wants them.
    explicit Report(bool wanted) : decisions_(arena), streams_(arena), wanted_(wanted) {}

    Arena arena;

    void add(Reason reason, uint32_t stream, std::string_view detail = {},
             uint32_t payload = kNoPayload);
    void add(Reason reason, uint32_t stream, const Text &detail, uint32_t payload = kNoPayload) {
        add(reason, stream, detail.view(), payload);
    }

    // Takes back what was said of a stream.
    void forget(uint32_t stream);

    // A stream of the report, all zero; null when memory is exhausted.
    SdpNegotiateStream *addStream();
    SdpNegotiateStream *streamAt(uint32_t index) {
        return index < streams_.size() ? streams_[index] : nullptr;
    }
    // A stream about which nothing is said.
    static void clear(SdpNegotiateStream &stream);

    bool wanted() const { return wanted_; }
    uint32_t decisionCount() const { return decisions_.size(); }

    // Gives the report away; false when memory was exhausted at any time.
    bool finish(bool accepted, SdpNegotiateReport **result);

private:
    template <class Record>
    static Record **arrayOf(Growing<Record *> &list) {
        return list.size() != 0 ? list.begin() : nullptr;
    }

    Growing<SdpNegotiateDecision *> decisions_;
    Growing<SdpNegotiateStream *> streams_;
    bool wanted_;
};

} // namespace sdpline::negotiate

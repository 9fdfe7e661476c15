// The report of a call under construction.
#pragma once

#include <cstdint>

#include "negotiate/memory.hpp"
#include "negotiate/reasons.hpp"

namespace sdpline::negotiate {

constexpr uint32_t kSession = SDP_NEGOTIATE_NONE;
constexpr uint32_t kNoPayload = SDP_NEGOTIATE_NONE;

class Report {
public:
    // Without `wanted`, no decisions are recorded.
    explicit Report(bool wanted) : decisions_(arena), streams_(arena), wanted_(wanted) {}

    Arena arena;

    void add(Reason reason, uint32_t stream, std::string_view detail = {},
             uint32_t payload = kNoPayload);
    void add(Reason reason, uint32_t stream, const Text &detail, uint32_t payload = kNoPayload) {
        add(reason, stream, detail.view(), payload);
    }

    // Removes the decisions about a stream.
    void forget(uint32_t stream);

    // Adds a cleared stream to the report; null when memory is exhausted.
    SdpNegotiateStream *addStream();
    SdpNegotiateStream *streamAt(uint32_t index) {
        return index < streams_.size() ? streams_[index] : nullptr;
    }
    // Sets a stream to its state without any decision.
    static void clear(SdpNegotiateStream &stream);

    bool wanted() const { return wanted_; }
    uint32_t decisionCount() const { return decisions_.size(); }

    // Returns the report in *result, which may be null; false if memory was exhausted at any time.
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

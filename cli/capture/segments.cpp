#include "capture/segments.hpp"

#include <algorithm>

namespace cli {

void Segments::begin(uint32_t sequence) {
    waiting_.clear();
    waitingBytes_ = 0;
    begun_ = true;
    first_ = sequence;
    // Places are sequence numbers extended to 64 bits. The first one is far enough above 0 for
    // segments from before it.
    next_ = (uint64_t(1) << 32) + sequence;
}

// The place with this sequence number that is nearest to the expected place.
uint64_t Segments::placeOf(uint32_t sequence) const {
    const auto distance = static_cast<int32_t>(sequence - static_cast<uint32_t>(next_));
    return next_ + static_cast<uint64_t>(static_cast<int64_t>(distance));
}

void Segments::add(uint32_t sequence, std::string_view bytes, std::string &taken) {
    if (!begun_) {
        begin(sequence);
    }
    const uint64_t place = placeOf(sequence);
    if (bytes.empty() || place + bytes.size() <= next_) { // an RST may be numbered after a FIN
        return;
    }
    if (place > next_) {
        std::string &waiting = waiting_[place];
        if (waiting.size() < bytes.size()) {
            waitingBytes_ += bytes.size() - waiting.size();
            waiting.append(bytes.substr(waiting.size()));
        }
        return;
    }
    taken.append(bytes.substr(next_ - place));
    next_ = place + bytes.size();
    takeWaiting(taken);
}

void Segments::takeWaiting(std::string &taken) {
    while (!waiting_.empty() && waiting_.begin()->first <= next_) {
        const auto &[place, bytes] = *waiting_.begin();
        if (place + bytes.size() > next_) {
            taken.append(bytes, next_ - place);
            next_ = place + bytes.size();
        }
        waitingBytes_ -= bytes.size();
        waiting_.erase(waiting_.begin());
    }
}

void Segments::skipGap(std::string &taken) {
    if (!waiting_.empty()) {
        next_ = std::max(next_, waiting_.begin()->first);
        takeWaiting(taken);
    }
}

void Segments::lose(uint32_t upTo) {
    if (begun_) {
        next_ = std::max(next_, placeOf(upTo));
    }
}

} // namespace cli

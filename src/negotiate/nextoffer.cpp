// Making the next offer (RFC 3264 section 8): the wanted streams in the m= lines of the previous
// description.
#include "negotiate/nextoffer.hpp"

#include "negotiate/draft.hpp"
#include "negotiate/grouping.hpp"
#include "negotiate/origin.hpp"
#include "negotiate/precondition.hpp"
#include "negotiate/renumber.hpp"

namespace sdpline::negotiate {

namespace {

constexpr uint32_t kNoStream = SDP_NEGOTIATE_NONE;

class NextOffer {
public:
    NextOffer(const SdpLine *inForce, const SdpLine &wanted, Report &report, BodyDraft &draft)
        : arena_(report.arena), wanted_(mediaOf(wanted)),
          previous_(inForce != nullptr ? mediaOf(*inForce) : MediaSpan()),
          hasConnection_(wanted.pstConnection != nullptr), draft_(draft), slots_(arena_),
          placed_(arena_) {
        draftSession(wanted, draft);
    }

    void run() {
        for (uint32_t i = 0; i < previous_.size(); ++i) {
            slots_.add(kNoStream);
        }
        for (uint32_t i = 0; i < wanted_.size(); ++i) {
            const uint32_t port = wanted_[i]->stMediaField.ulPort;
            placed_.add(port == 0 || port > kHighestPort);
        }
        if (arena_.failed()) {
            return;
        }
        place();
        for (uint32_t i = 0; i < slots_.size(); ++i) {
            draft_.media.add(slot(i));
        }
    }

private:
    // Finds the m= line of each wanted stream. Each rule is tried for all streams before the next
    // one.
    void place() {
        placeBy([this](uint32_t slot, uint32_t stream) {
            const std::string_view mid = midOf(*wanted_[stream]);
            return isOpen(slot) && !mid.empty() && mid == midOf(*previous_[slot]);
        });
        placeBy([this](uint32_t slot, uint32_t stream) {
            return slot == stream && isOpen(slot) && sameType(slot, stream);
        });
        placeBy([this](uint32_t slot, uint32_t stream) {
            return isOpen(slot) && sameType(slot, stream);
        });
        placeBy([this](uint32_t slot, uint32_t stream) {
            return !isOpen(slot) && sameType(slot, stream);
        });
        // A call may change between speech and fax in one m= line (RFC 3264 section 8.3.3).
        placeBy([this](uint32_t slot, uint32_t stream) {
            return isOpen(slot) && isFaxChange(*previous_[slot], *wanted_[stream]);
        });
        placeBy([this](uint32_t slot, uint32_t) { return !isOpen(slot); });
        for (uint32_t i = 0; i < wanted_.size(); ++i) {
            if (!placed_[i]) {
                slots_.add(i);
            }
        }
    }

    template <class Fits>
    void placeBy(Fits fits) {
        for (uint32_t stream = 0; stream < wanted_.size(); ++stream) {
            for (uint32_t slot = 0; !placed_[stream] && slot < previous_.size(); ++slot) {
                if (slots_[slot] == kNoStream && fits(slot, stream)) {
                    slots_[slot] = stream;
                    placed_[stream] = true;
                }
            }
        }
    }

    bool isOpen(uint32_t slot) const { return previous_[slot]->stMediaField.ulPort != 0; }
    bool sameType(uint32_t slot, uint32_t stream) const {
        return sameMedia(*previous_[slot], *wanted_[stream]);
    }
    static bool isFaxChange(const SDPMediaDesc &before, const SDPMediaDesc &after) {
        const std::string_view one = mediaWord(before);
        const std::string_view two = mediaWord(after);
        return (sameWord(one, "audio") && sameWord(two, "image")) ||
               (sameWord(one, "image") && sameWord(two, "audio"));
    }

    MediaDraft slot(uint32_t index) {
        const uint32_t stream = slots_[index];
        if (stream == kNoStream) {
            return closed(*previous_[index]);
        }
        MediaDraft draft = draftOf(*wanted_[stream], arena_);
        if (index < previous_.size() && isOpen(index) && sameType(index, stream)) {
            carryCurrent(*previous_[index], *wanted_[stream], draft.attributes);
            keepNumbers(*previous_[index], *wanted_[stream], arena_, draft);
        }
        return draft;
    }

    MediaDraft closed(const SDPMediaDesc &before) {
        MediaDraft draft(arena_);
        draft.line = before.stMediaField;
        draft.line.ulPort = 0;
        draft.line.ulNoOfPorts = 1;
        draft.connection =
            hasConnection_ ? nullptr : static_cast<const SDPConnection *>(before.pstConnection);
        return draft;
    }

    Arena &arena_;
    MediaSpan wanted_;
    MediaSpan previous_;
    bool hasConnection_;
    BodyDraft &draft_;
    Growing<uint32_t> slots_; // the wanted stream of each line
    Growing<bool> placed_;    // of each wanted stream; those without a port need no line
};

} // namespace

Reason makeNextOffer(const SdpLine *inForce, const SdpLine &last, const SdpLine &wanted,
                     SdpLine **offer) {
    Report report(false);
    BodyDraft draft(report.arena);
    NextOffer(inForce, wanted, report, draft).run();
    draft.origin = last.stOrigin;
    return finish(draft, &last, report, offer);
}

} // namespace sdpline::negotiate

extern "C" SDPResult SdpNegotiateNextOffer(const SdpLine *pstPrevious, const SdpLine *pstWanted,
                                           SdpLine **ppstOffer) {
    using namespace sdpline::negotiate;
    if (ppstOffer == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstOffer = nullptr;
    for (const Reason reason : {usable(pstPrevious), usable(pstWanted)}) {
        if (reason != Reason::None) {
            return resultOf(reason);
        }
    }
    return resultOf(makeNextOffer(pstPrevious, *pstPrevious, *pstWanted, ppstOffer));
}

// a=mid and a=group (RFC 5888, RFC 8843).
#pragma once

#include <optional>

#include "negotiate/draft.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// The a=mid of a stream; empty for none.
std::string_view midOf(const SDPMediaDesc &media);

// Whether an offered stream of port 0 is bundle-only, and the local body has bundles.
bool isBundleOnly(const SdpLine &offer, const SDPMediaDesc &offered, const SdpLine &local);

// Adds mids and groups to the drafts of an answer. The streams of a bundle get one address. For a
// bundle-only stream whose bundle has no address, `rejected` is called.
class Grouping {
public:
    Grouping(const SdpLine &offer, const SdpLine &local, BodyDraft &draft, Report &report)
        : offer_(offer), local_(local), draft_(draft), report_(report) {}

    template <class Rejected>
    void run(Rejected rejected) {
        for (uint32_t i = 0; i < draft_.media.size(); ++i) {
            if (lacksBundle(i)) {
                rejected(i);
            }
        }
        addMids();
        addGroups();
    }

private:
    bool lacksBundle(uint32_t stream) const;
    void addMids();
    void addGroups();
    std::optional<uint32_t> acceptedWith(std::string_view mid) const;
    void addGroup(std::string_view offered);
    void bundle(const Growing<uint32_t> &streams);

    const SdpLine &offer_;
    const SdpLine &local_;
    BodyDraft &draft_;
    Report &report_;
};

void checkGroups(const SdpLine &offer, const SdpLine &answer, Report &report);

} // namespace sdpline::negotiate

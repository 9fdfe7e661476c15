// Making a description of capabilities (RFC 3264 section 9).
#include "negotiate/attributes.hpp"
#include "negotiate/draft.hpp"
#include "negotiate/origin.hpp"

namespace sdpline::negotiate {

namespace {

void describe(const SdpLine &local, Arena &arena, BodyDraft &draft) {
    draft.origin = local.stOrigin;
    draft.name = local.strSessionName;
    draft.connection = local.pstConnection;
    for (const SDPMediaDesc *const media : mediaOf(local)) {
        if (media->stMediaField.ulPort == 0) {
            continue; // no stream that can be taken
        }
        MediaDraft one(arena);
        one.line = media->stMediaField;
        one.line.ulPort = 0;
        one.line.ulNoOfPorts = 1;
        one.connection = media->pstConnection;
        for (const SDPAttr *const attribute : attributesOf(media->pstAttrList)) {
            if (isCapability(*attribute)) {
                one.attributes.add(*attribute);
            }
        }
        draft.media.add(one);
    }
}

} // namespace

} // namespace sdpline::negotiate

extern "C" SDPResult SdpNegotiateCapabilities(const SdpLine *pstLocal, SdpLine **ppstBody) {
    using namespace sdpline::negotiate;
    if (ppstBody == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstBody = nullptr;
    if (const Reason reason = usable(pstLocal); reason != Reason::None) {
        return resultOf(reason);
    }
    Report report(false);
    BodyDraft draft(report.arena);
    describe(*pstLocal, report.arena, draft);
    return resultOf(finish(draft, nullptr, report, ppstBody));
}

/*
 * clone.hpp: new bodies, empty ones and copies, each in a memory block of its own.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_CLONE_HPP
#define SDPLINE_CPP_DETAIL_CLONE_HPP

#include "sdpline/cpp/detail/decode.hpp"
#include "sdpline/cpp/detail/memory.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* All zero but for its block, also from a memory service that does not clear what it gives. */
inline Result<BodyHandle> newBody() {
    SdpLine *line = nullptr;
    if (const SDPResult code = SdpLibCreateSdp(&line)) {
        return libraryError(code);
    }
    SDPMemCp *const block = line->pstMemCp;
    *line = {};
    line->pstMemCp = block;
    return BodyHandle(line);
}

/* A body that was not completed: what there is goes with its block. */
inline Result<BodyHandle> unlessFailed(const Copier &copier, BodyHandle body) {
    if (!copier.ok()) {
        return copier.error();
    }
    return body;
}

inline Result<BodyHandle> cloneBody(const SdpLine &from) {
    auto made = newBody();
    if (!made) {
        return made;
    }
    SdpLine &to = **made;
    Copier copier(Memory(to.pstMemCp));
    to.ulProtoVersion = from.ulProtoVersion;
    copier.fill(from.stOrigin, to.stOrigin);
    copier.fill(from.strSessionName, to.strSessionName);
    to.pstrSessionInfo = copier.cloneGiven(from.pstrSessionInfo);
    to.pstrUri = copier.cloneGiven(from.pstrUri);
    to.pstEmailList = copier.cloneGiven(from.pstEmailList);
    to.pstPhoneList = copier.cloneGiven(from.pstPhoneList);
    to.pstConnection = copier.cloneGiven(from.pstConnection);
    to.pstBandwidthList = copier.cloneGiven(from.pstBandwidthList);
    copier.fill(from.stTimeSet, to.stTimeSet);
    to.pstrTimeZone = copier.cloneGiven(from.pstrTimeZone);
    to.pstKey = copier.cloneGiven(from.pstKey);
    to.pstAttrList = copier.cloneGiven(from.pstAttrList);
    copier.fill(from.stMediaSet, to.stMediaSet);
    return unlessFailed(copier, *std::move(made));
}

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif

/*
 * clone.hpp: new bodies, empty ones and copies, each in a new memory block.
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

/* A body that is all zero except its memory control, even if the memory service does not zero its
 * memory. */
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

[[gnu::cold]] inline Error cloneError(SDPResult code) {
    const Error error = libraryError(code);
    return error.check == "CloneBodyPayLoads" ? Copier::tooManyPayloads()
           : error.check == "CloneBodyAlloc"  ? noMemory()
                                              : error;
}

inline Result<BodyHandle> cloneBody(const SdpLine &from) {
    SdpLine *line = nullptr;
    if (const SDPResult code = SdpLibCloneSdp(&from, &line)) {
        return cloneError(code);
    }
    return BodyHandle(line);
}

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif

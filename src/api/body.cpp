// The entry points for whole bodies, and the ownership of memory: each body has one block, from
// which the parser's hooks allocate during the decode.
#include "api/blocks.hpp"
#include "checks/checks.hpp"
#include "encoder/writers.hpp"
#include "parser/driver.hpp"
#include "services/allocation.hpp"
#include "services/settings.hpp"

using namespace sdpline;

extern "C" {

SDPLINE_PER_THREAD SdpFnAlloc g_gSdpFnAlloc = nullptr;
SDPLINE_PER_THREAD SdpFnFree g_gSdpFnFree = nullptr;
SDPLINE_PER_THREAD SDPMemCp *g_mSdpDecodeMemCp = nullptr;

SDPResult SdpLibDecodeSdp(const SipString *text, SdpLine **body) {
    if (text == nullptr || body == nullptr) {
        return fail(Check::DecodeArgument);
    }
    *body = nullptr;
    SDPMemCp *memCp = nullptr;
    if (SipMmCreateBufMem(kDecodeBlock.first, kDecodeBlock.next, &memCp) != 0) {
        return fail(Check::DecodeBlock);
    }
    beginDecode(memCp);
    SdpLine *line = nullptr;
    const SDPResult result = parseBody(text, &line);
    endDecode(result == 0);
    if (result != 0) {
        SipMmReleaseBufMem(&memCp);
        return logAndForward(Check::DecodeRefused, result);
    }
    line->pstMemCp = memCp;
    *body = line;
    return 0;
}

SDPResult SdpLibDecodeSdpWithOptions(const SipString *text, const SDPDecodeOptions *options,
                                     SdpLine **body) {
    if (options != nullptr &&
        (options->ulMaxBodySize == 0 || options->ulMaxBodySize > SDP_MAX_LONG_BODY)) {
        return fail(Check::DecodeOptions);
    }
    decodeOptions = options;
    const SDPResult result = SdpLibDecodeSdp(text, body);
    decodeOptions = nullptr;
    return result;
}

SDPResult SdpLibDecodeSipBodyAsSdp(SipStringBuffer *buffer, SdpLine **line) {
    if (buffer == nullptr || line == nullptr) {
        return fail(Check::DecodeBodyArgument);
    }
    *line = nullptr;
    SipRefString *body = nullptr;
    if (const uint32_t result = SipSbConvertToRefString(buffer, &body)) {
        return fail(Check::DecodeBodyText, result);
    }
    const SipString text = {SipSmGetLenFromRefString(body),
                            const_cast<char *>(SipSmGetDataFromRefString(body))};
    const SDPResult result = SdpLibDecodeSdp(&text, line);
    SipSmReleaseRefString(body);
    return result;
}

SDPResult SdpLibCreateSdp(SdpLine **body) {
    if (body == nullptr) {
        return fail(Check::CreateArgument);
    }
    *body = nullptr;
    SDPMemCp *memCp = nullptr;
    if (SipMmCreateBufMem(kCreateBlock.first, kCreateBlock.next, &memCp) != 0) {
        return fail(Check::CreateBlock);
    }
    auto *const line = allocateFrom<SdpLine>(*memCp);
    if (line == nullptr) {
        SipMmReleaseBufMem(&memCp);
        return fail(Check::CreateAlloc);
    }
    line->pstMemCp = memCp;
    *body = line;
    return 0;
}

SDPResult SdpLibEncodeSdp(SdpLine *body, SipStringBuffer **encoded) {
    if (body == nullptr || encoded == nullptr) {
        return fail(Check::EncodeArgument);
    }
    *encoded = nullptr;
    SipStringBuffer *text = nullptr;
    if (const uint32_t result =
            SipSbCreateStringBufferNew(gSipSystemMemCp, kBodyText.first, kBodyText.next, &text)) {
        return logAndForward(Check::EncodeBuffer, result);
    }
    if (const SDPResult result = encodeBody(body, text)) {
        SipSbReleaseStringBuffer(text);
        return logAndForward(Check::EncodeFailed, result);
    }
    *encoded = text;
    return 0;
}

SDPResult SdpLibReleaseSdp(SdpLine **line) {
    if (line != nullptr && *line != nullptr && (*line)->pstMemCp != nullptr) {
        SDPMemCp *memCp = (*line)->pstMemCp; // the body goes with its block
        SipMmReleaseBufMem(&memCp);
        *line = nullptr;
    }
    return 0;
}

void *SdpLibAllocSdpMem(uint32_t size) {
    SDPMemCp *const memCp = g_mSdpDecodeMemCp;
    return memCp != nullptr ? memCp->pfnAlloc(memCp, size) : nullptr;
}

void SdpLibFreeSdpMem(void *memory) {
    SDPMemCp *const memCp = g_mSdpDecodeMemCp;
    if (memCp != nullptr) {
        memCp->pfnFree(memory);
    }
}

} // extern "C"

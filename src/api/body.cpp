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

SDPResult SdpLibDecodeSdp(const SipString *pstSdpText, SdpLine **ppstSdpLine) {
    if (pstSdpText == nullptr || ppstSdpLine == nullptr) {
        return fail(Check::DecodeArgument);
    }
    *ppstSdpLine = nullptr;
    SDPMemCp *memCp = nullptr;
    if (SipMmCreateBufMem(kDecodeBlock.first, kDecodeBlock.next, &memCp) != 0) {
        return fail(Check::DecodeBlock);
    }
    beginDecode(memCp);
    SdpLine *line = nullptr;
    const SDPResult result = parseBody(pstSdpText, &line);
    endDecode(result == 0);
    if (result != 0) {
        SipMmReleaseBufMem(&memCp);
        return logAndForward(Check::DecodeRefused, result);
    }
    line->pstMemCp = memCp;
    *ppstSdpLine = line;
    return 0;
}

SDPResult SdpLibDecodeSdpWithOptions(const SipString *pstSdpText,
                                     const SDPDecodeOptions *pstOptions, SdpLine **ppstSdpLine) {
    if (pstOptions != nullptr &&
        (pstOptions->ulMaxBodySize == 0 || pstOptions->ulMaxBodySize > SDP_MAX_LONG_BODY)) {
        return fail(Check::DecodeOptions);
    }
    decodeOptions = pstOptions;
    const SDPResult result = SdpLibDecodeSdp(pstSdpText, ppstSdpLine);
    decodeOptions = nullptr;
    return result;
}

SDPResult SdpLibDecodeSipBodyAsSdp(SipStringBuffer *pstBody, SdpLine **ppstSdpLine) {
    if (pstBody == nullptr || ppstSdpLine == nullptr) {
        return fail(Check::DecodeBodyArgument);
    }
    *ppstSdpLine = nullptr;
    SipRefString *body = nullptr;
    if (const uint32_t result = SipSbConvertToRefString(pstBody, &body)) {
        return fail(Check::DecodeBodyText, result);
    }
    const SipString text = {SipSmGetLenFromRefString(body),
                            const_cast<char *>(SipSmGetDataFromRefString(body))};
    const SDPResult result = SdpLibDecodeSdp(&text, ppstSdpLine);
    SipSmReleaseRefString(body);
    return result;
}

SDPResult SdpLibCreateSdp(SdpLine **ppstSdpLine) {
    if (ppstSdpLine == nullptr) {
        return fail(Check::CreateArgument);
    }
    *ppstSdpLine = nullptr;
    SDPMemCp *memCp = nullptr;
    if (SipMmCreateBufMem(kCreateBlock.first, kCreateBlock.next, &memCp) != 0) {
        return fail(Check::CreateBlock);
    }
    auto *const line = static_cast<SdpLine *>(memCp->pfnAlloc(memCp, sizeof(SdpLine)));
    if (line == nullptr) {
        SipMmReleaseBufMem(&memCp);
        return fail(Check::CreateAlloc);
    }
    line->pstMemCp = memCp;
    *ppstSdpLine = line;
    return 0;
}

SDPResult SdpLibEncodeSdp(SdpLine *pstSdpLine, SipStringBuffer **ppstText) {
    if (pstSdpLine == nullptr || ppstText == nullptr) {
        return fail(Check::EncodeArgument);
    }
    *ppstText = nullptr;
    SipStringBuffer *text = nullptr;
    if (const uint32_t result =
            SipSbCreateStringBufferNew(gSipSystemMemCp, kBodyText.first, kBodyText.next, &text)) {
        return logAndForward(Check::EncodeBuffer, result);
    }
    if (const SDPResult result = encodeBody(pstSdpLine, text)) {
        SipSbReleaseStringBuffer(text);
        return logAndForward(Check::EncodeFailed, result);
    }
    *ppstText = text;
    return 0;
}

SDPResult SdpLibReleaseSdp(SdpLine **ppstSdpLine) {
    if (ppstSdpLine != nullptr && *ppstSdpLine != nullptr && (*ppstSdpLine)->pstMemCp != nullptr) {
        SDPMemCp *memCp = (*ppstSdpLine)->pstMemCp; // the body goes with its block
        SipMmReleaseBufMem(&memCp);
        *ppstSdpLine = nullptr;
    }
    return 0;
}

void *SdpLibAllocSdpMem(uint32_t ulSize) {
    SDPMemCp *const memCp = g_mSdpDecodeMemCp;
    return memCp != nullptr ? memCp->pfnAlloc(memCp, ulSize) : nullptr;
}

void SdpLibFreeSdpMem(void *pMem) {
    SDPMemCp *const memCp = g_mSdpDecodeMemCp;
    if (memCp != nullptr) {
        memCp->pfnFree(pMem);
    }
}

} // extern "C"

// Single lines as text, and bodies in the caller's own bytes. The serialised form of a body is its
// SDP text and nothing else.
#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "sdpline/sdpline.h"
#include "services/allocation.hpp"

using namespace sdpline;

namespace {

// Attributes are written leniently: the encoder answers success even when they did not fit. A
// string buffer stays failed after its first failure, so one empty append tells.
bool writesCompletely(SdpLine *pstSdpLine, SipStringBuffer *pstBuf) {
    return SdpLibEncodeSdpInt(pstSdpLine, pstBuf) == 0 && SipSbCopyConstString(pstBuf, "", 0) == 0;
}

} // namespace

SDPResult SdpLibEncodeSdpLineValidate(uint32_t *pulWithPrefix, uint32_t enLineType, void *pValue,
                                      SipRefString **ppstText) {
    if (pulWithPrefix == nullptr || pValue == nullptr || ppstText == nullptr ||
        enLineType >= SDP_LINE_COUNT) {
        return fail(Check::OneLineValidate);
    }
    return 0;
}

SDPResult SdpLibEncodeSdpLine(uint32_t *pulWithPrefix, uint32_t enLineType, void *pValue,
                              SipRefString **ppstText) {
    if (SdpLibEncodeSdpLineValidate(pulWithPrefix, enLineType, pValue, ppstText) != 0) {
        return fail(Check::OneLineArgument);
    }
    *ppstText = nullptr;
    SipStringBuffer *pstBuf = nullptr;
    const uint32_t made = SipSbCreateStringBufferNew(gSipSystemMemCp, 64, 64, &pstBuf);
    if (made != 0) {
        return fail(Check::OneLineBuffer, made);
    }
    const SDPResult written =
        SdpLibEncodeLine(static_cast<int32_t>(enLineType), pulWithPrefix, pValue, pstBuf);
    if (written != 0) {
        SipSbReleaseStringBuffer(pstBuf);
        return logAndForward(Check::OneLineFailed, written);
    }
    SipRefString *pstText = nullptr;
    const uint32_t converted = SipSbConvertToRefString(pstBuf, &pstText);
    if (converted == 0) {
        *ppstText = pstText;
    }
    SipSbReleaseStringBuffer(pstBuf);
    return converted;
}

SDPResult SdpLibSerializeSdpValidate(SdpLine *pstSdpLine, uint8_t *pucBuf, uint32_t ulBufLen,
                                     uint32_t *pulWrittenLen) {
    if (pstSdpLine == nullptr || pucBuf == nullptr || ulBufLen == 0 || pulWrittenLen == nullptr) {
        return fail(Check::SerializeValidate);
    }
    return 0;
}

SDPResult SdpLibSerializeSdp(SdpLine *pstSdpLine, uint8_t *pucBuf, uint32_t ulBufLen,
                             uint32_t *pulWrittenLen) {
    if (SdpLibSerializeSdpValidate(pstSdpLine, pucBuf, ulBufLen, pulWrittenLen) != 0) {
        return fail(Check::SerializeArgument);
    }
    *pulWrittenLen = 0;
    SipStringBuffer *pstBuf = nullptr;
    if (SipSbCreateFixedStringBuffer(gSipSystemMemCp, pucBuf, ulBufLen, &pstBuf) != 0) {
        return fail(Check::SerializeBuffer);
    }
    if (!writesCompletely(pstSdpLine, pstBuf)) {
        SipSbReleaseFixedStringBuffer(pstBuf, nullptr, nullptr);
        return fail(Check::SerializeFailed);
    }
    uint8_t *pucData = nullptr;
    SipSbReleaseFixedStringBuffer(pstBuf, &pucData, pulWrittenLen);
    return 0;
}

SDPResult SdpLibDeSerializeSdpValidate(uint8_t *pucBuf, uint32_t ulLen, SdpLine **ppstSdpLine) {
    if (pucBuf == nullptr || ulLen == 0 || ppstSdpLine == nullptr) {
        return fail(Check::DeSerializeValidate);
    }
    return 0;
}

SDPResult SdpLibDeSerializeSdp(uint8_t *pucBuf, uint32_t ulLen, SdpLine **ppstSdpLine) {
    if (SdpLibDeSerializeSdpValidate(pucBuf, ulLen, ppstSdpLine) != 0) {
        return fail(Check::DeSerializeArgument);
    }
    *ppstSdpLine = nullptr;
    const SipString stText = {ulLen, reinterpret_cast<char *>(pucBuf)};
    SDPMemCp *pstMemCp = nullptr;
    const uint32_t made = SipMmCreateBufMem(512, 1032, &pstMemCp);
    if (made != 0) {
        return logAndForward(Check::DeSerializeBlock, made);
    }
    beginDecode(pstMemCp);
    const SDPResult parsed = SdpLibParseSdp(&stText, ppstSdpLine);
    const bool bHasBody = *ppstSdpLine != nullptr;
    endDecode(bHasBody);
    if (!bHasBody) {
        SipMmReleaseBufMem(&pstMemCp);
        return logAndForward(Check::DeSerializeRefused, parsed);
    }
    (*ppstSdpLine)->pstMemCp = pstMemCp;
    return parsed;
}

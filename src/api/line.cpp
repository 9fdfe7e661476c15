// The entry points for single lines, and for bodies in the caller's buffers. The serialised form of
// a body is its SDP text.
#include "api/blocks.hpp"
#include "checks/checks.hpp"
#include "encoder/writers.hpp"
#include "parser/driver.hpp"
#include "sdpline/sdpline.h"
#include "services/allocation.hpp"

using namespace sdpline;

namespace {

// Whether the whole body was written. The encoder succeeds even where attributes did not fit, but a
// string buffer stays failed after its first failure, so an empty append shows it.
bool writesCompletely(SdpLine *line, SipStringBuffer *buffer) {
    return encodeBody(line, buffer) == 0 && SipSbCopyConstString(buffer, "", 0) == 0;
}

} // namespace

SDPResult SdpLibEncodeSdpLineValidate(uint32_t *withPrefix, uint32_t type, void *field,
                                      SipRefString **text) {
    if (withPrefix == nullptr || field == nullptr || text == nullptr || type >= SDP_LINE_COUNT) {
        return fail(Check::OneLineValidate);
    }
    return 0;
}

SDPResult SdpLibEncodeSdpLine(uint32_t *withPrefix, uint32_t type, void *field,
                              SipRefString **text) {
    if (SdpLibEncodeSdpLineValidate(withPrefix, type, field, text) != 0) {
        return fail(Check::OneLineArgument);
    }
    *text = nullptr;
    SipStringBuffer *buffer = nullptr;
    if (const uint32_t result =
            SipSbCreateStringBufferNew(gSipSystemMemCp, kLineText.first, kLineText.next, &buffer)) {
        return fail(Check::OneLineBuffer, result);
    }
    if (const SDPResult result =
            encodeLine(static_cast<int32_t>(type), withPrefix, field, buffer)) {
        SipSbReleaseStringBuffer(buffer);
        return logAndForward(Check::OneLineFailed, result);
    }
    SipRefString *converted = nullptr;
    const uint32_t result = SipSbConvertToRefString(buffer, &converted);
    if (result == 0) {
        *text = converted;
    }
    SipSbReleaseStringBuffer(buffer);
    return result;
}

SDPResult SdpLibSerializeSdpValidate(SdpLine *line, uint8_t *bytes, uint32_t size,
                                     uint32_t *written) {
    if (line == nullptr || bytes == nullptr || size == 0 || written == nullptr) {
        return fail(Check::SerializeValidate);
    }
    return 0;
}

SDPResult SdpLibSerializeSdp(SdpLine *line, uint8_t *bytes, uint32_t size, uint32_t *written) {
    if (SdpLibSerializeSdpValidate(line, bytes, size, written) != 0) {
        return fail(Check::SerializeArgument);
    }
    *written = 0;
    SipStringBuffer *buffer = nullptr;
    if (SipSbCreateFixedStringBuffer(gSipSystemMemCp, bytes, size, &buffer) != 0) {
        return fail(Check::SerializeBuffer);
    }
    if (!writesCompletely(line, buffer)) {
        SipSbReleaseFixedStringBuffer(buffer, nullptr, nullptr);
        return fail(Check::SerializeFailed);
    }
    uint8_t *data = nullptr;
    SipSbReleaseFixedStringBuffer(buffer, &data, written);
    return 0;
}

SDPResult SdpLibDeSerializeSdpValidate(uint8_t *bytes, uint32_t size, SdpLine **line) {
    if (bytes == nullptr || size == 0 || line == nullptr) {
        return fail(Check::DeSerializeValidate);
    }
    return 0;
}

SDPResult SdpLibDeSerializeSdp(uint8_t *bytes, uint32_t size, SdpLine **line) {
    if (SdpLibDeSerializeSdpValidate(bytes, size, line) != 0) {
        return fail(Check::DeSerializeArgument);
    }
    *line = nullptr;
    const SipString text = {size, reinterpret_cast<char *>(bytes)};
    SDPMemCp *memCp = nullptr;
    if (const uint32_t result = SipMmCreateBufMem(kDecodeBlock.first, kDecodeBlock.next, &memCp)) {
        return logAndForward(Check::DeSerializeBlock, result);
    }
    beginDecode(memCp);
    const SDPResult parsed = parseBody(&text, line);
    const bool hasBody = *line != nullptr;
    endDecode(hasBody);
    if (!hasBody) {
        SipMmReleaseBufMem(&memCp);
        return logAndForward(Check::DeSerializeRefused, parsed);
    }
    (*line)->pstMemCp = memCp;
    return parsed;
}

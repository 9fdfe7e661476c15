// Writing the lines that consist of one number or one text: v=, s=, i=, u=, e=, p=, b=, z=, k=.
#include "encoder/writers.hpp"

namespace sdpline {

// v= 1*DIGIT CRLF
SDPResult writeVersion(auto &out, const uint32_t *flag, uint32_t version) {
    if (const uint32_t result = appendPrefix(out, flag, 'v')) {
        return logAndForward(out, Check::EncodeVersionPrefix, result);
    }
    if (const uint32_t result = out.number(version)) {
        return logAndForward(out, Check::EncodeVersionNumber, result);
    }
    return out.lineEnd();
}

// key "=" byte-string CRLF
SDPResult writeTextLine(auto &out, const uint32_t *flag, char key, const SipString *value) {
    return Appender(out).prefix(flag, key).text(value).lineEnd().result();
}

SDPResult writeTextLines(auto &out, const uint32_t *flag, char key, uint32_t count,
                         SipString *const *items) {
    for (uint32_t i = 0; i < count; ++i) {
        if (const SDPResult result = writeTextLine(out, flag, key, items[i])) {
            return result;
        }
    }
    return 0;
}

SDPLINE_LINE_WRITER(writeVersion, const uint32_t *, uint32_t);
SDPLINE_LINE_WRITER(writeTextLine, const uint32_t *, char, const SipString *);
SDPLINE_LINE_WRITER(writeTextLines, const uint32_t *, char, uint32_t, SipString *const *);

} // namespace sdpline

// How the media descriptions are written: m= and the lines that belong to it.
#include "encoder/encoder.hpp"

namespace sdpline {

// i= c= b= k= a=, those that the description has
static SDPResult writeMediaLines(Output &out, const uint32_t *flag, const SDPMediaDesc &desc) {
    Appender lines(out);
    if (const SipString *const info = desc.pstrMediaInfo) {
        lines.then([&] { return writeTextLine(out, flag, 'i', info); });
    }
    if (const SDPConnection *const connection = desc.pstConnection) {
        lines.then([&] { return writeConnection(out, flag, *connection); });
    }
    if (const SDPStringList *const list = desc.pstBandwidthList) {
        lines.then(
            [&] { return writeTextLines(out, flag, 'b', list->ulNoOfStrings, list->ppstStrings); });
    }
    if (const SDPKey *const key = desc.pstKey) {
        lines.then([&] { return writeTextLine(out, flag, 'k', &key->strKey); });
    }
    if (const SDPAttrList *const list = desc.pstAttrList) {
        lines.then([&] { return outOfLine<writeAttributes>(out, flag, list); });
    }
    return lines.result();
}

// *( m= [ i= ] [ c= ] *( b= ) [ k= ] *( a= ) ), where an m= line that fails does not stop the rest
SDPResult writeMediaSet(Output &out, const uint32_t *flag, const SDPMediaSet &set) {
    for (uint32_t i = 0; i < set.ulNoOfMediaDescs; ++i) {
        const SDPMediaDesc &desc = *set.ppstMediaDescs[i];
        writeMediaField(out, flag, desc.stMediaField);
        if (const SDPResult result = writeMediaLines(out, flag, desc)) {
            return result;
        }
    }
    return 0;
}

} // namespace sdpline

// Writing the media descriptions: each m= line and the lines that belong to it.
#include "encoder/writers.hpp"

namespace sdpline {

// i= c= b= k= a=, each if the description has it
static SDPResult writeMediaLines(auto &out, const uint32_t *flag, const SDPMediaDesc &desc) {
    Appender lines(out);
    if (const SipString *const info = desc.pstrMediaInfo) {
        lines.then([&] {
            return out.line([=](auto &line) { return writeTextLine(line, flag, 'i', info); });
        });
    }
    if (const SDPConnection *const connection = desc.pstConnection) {
        lines.then([&] {
            return out.line([=](auto &line) { return writeConnection(line, flag, *connection); });
        });
    }
    if (const SDPStringList *const list = desc.pstBandwidthList) {
        lines.then([&] {
            return out.line([=](auto &line) {
                return writeTextLines(line, flag, 'b', list->ulNoOfStrings, list->ppstStrings);
            });
        });
    }
    if (const SDPKey *const key = desc.pstKey) {
        lines.then([&] {
            return out.line(
                [=](auto &line) { return writeTextLine(line, flag, 'k', &key->strKey); });
        });
    }
    if (const SDPAttrList *const list = desc.pstAttrList) {
        lines.then([&] { return writeAttributes(out, flag, list); });
    }
    return lines.result();
}

// *( m= [ i= ] [ c= ] *( b= ) [ k= ] *( a= ) ). An m= line that fails does not stop the others.
SDPResult writeMediaSet(auto &out, const uint32_t *flag, const SDPMediaSet &set) {
    for (uint32_t i = 0; i < set.ulNoOfMediaDescs; ++i) {
        const SDPMediaDesc &desc = *set.ppstMediaDescs[i];
        out.line([=, &desc](auto &line) { return writeMediaField(line, flag, desc.stMediaField); });
        if (const SDPResult result = writeMediaLines(out, flag, desc)) {
            return result;
        }
    }
    return 0;
}

SDPLINE_LINES_WRITER(writeMediaSet, const uint32_t *, const SDPMediaSet &);

} // namespace sdpline

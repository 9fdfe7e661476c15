// The v= line.
#include "parser/parser.hpp"

namespace sdpline {

// v= 1*DIGIT LF
bool parseVersion(Parser &parser, uint32_t &version) {
    return onLine(parser, [&](Parser &p) SDPLINE_INLINE_LAMBDA {
        p.take(SDP_TOK_VERSION, Context::Alnum);
        return p.number(version, {Check::VersionDigits, Check::VersionText}) &&
               p.endLine(Check::VersionEnd);
    });
}

} // namespace sdpline

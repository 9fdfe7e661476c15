// The v= line.
#include "parser/parser.hpp"

namespace sdpline {

// v= 1*DIGIT LF
bool parseVersion(Parser auto &parser, uint32_t &version) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        p.take(SDP_TOK_VERSION, Context::Alnum);
        return p.number(version, {Check::VersionDigits, Check::VersionText}) &&
               p.endLine(Check::VersionEnd);
    });
}

template bool parseVersion(BodyParser &, uint32_t &);
template bool parseVersion(StateParser &, uint32_t &);

} // namespace sdpline

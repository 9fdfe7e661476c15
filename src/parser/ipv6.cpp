// The checks of IPv6 address text, for the c= line and the two exported operations.
#include "text/ipv6.hpp"
#include "parser/connection.hpp"

namespace sdpline {

SDPResult cutIpv6Text(const char *text, uint32_t length, char (*tokens)[4], char *pattern,
                      uint32_t capacity, uint32_t *count) {
    if (text == nullptr || length == 0 || tokens == nullptr || pattern == nullptr ||
        count == nullptr) {
        return fail(Check::Ipv6TokensArgument, length);
    }
    return cutIpv6(text, length, tokens, pattern, capacity, *count) ? 0 : fail(Check::Ipv6Colons);
}

SDPResult loadIpv6Text(const char *text, uint32_t length, uint8_t *address) {
    if (text == nullptr || length == 0 || address == nullptr) {
        return fail(Check::Ipv6Argument, length);
    }
    switch (loadIpv6(text, length, address)) {
    case Ipv6Fault::None: break;
    case Ipv6Fault::Colons: return logAndForward(Check::Ipv6Tokens, fail(Check::Ipv6Colons));
    case Ipv6Fault::HeadOctet: return fail(Check::Ipv6HeadOctet);
    case Ipv6Fault::TailOctet: return fail(Check::Ipv6TailOctet);
    }
    return 0;
}

} // namespace sdpline

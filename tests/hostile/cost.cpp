// Decodes the typical offer and every hostile body under callgrind, with one dump of its counts
// for each decode; the dumps name the bodies. Compared by cost.sh.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "sdpline/sdpline.h"
#include "support/hostile.hpp"

namespace {

void measure(const std::string &name, const std::string &body, bool accepted) {
    const SipString text = {static_cast<uint32_t>(body.size()), const_cast<char *>(body.data())};
    SdpLine *line = nullptr;
    CALLGRIND_ZERO_STATS;
    const SDPResult result = SdpLibDecodeSdp(&text, &line);
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    SdpLibReleaseSdp(&line);
    if ((result == 0) != accepted) {
        std::fprintf(stderr, "%s: result %#x\n", name.c_str(), result);
        std::exit(1);
    }
}

// The same with a last line of an unknown type: the decoder reads all of it before it refuses it.
std::string refused(std::string body) {
    body.resize(SDP_MAX_BODY - 3);
    body.resize(body.rfind('\n') + 1);
    return body + "q=x";
}

void measureAll(const std::vector<support::HostileBody> &bodies) {
    for (const support::HostileBody &body : bodies) {
        measure(body.name, body.text, true);
        measure(body.name + ", refused", refused(body.text), false);
    }
}

} // namespace

int main() {
    const std::string typical = support::typicalOffer();
    if (typical.size() != SDP_MAX_BODY || RUNNING_ON_VALGRIND == 0) {
        std::fprintf(stderr, "to be run by valgrind, on an offer of %u bytes\n", SDP_MAX_BODY);
        return 1;
    }
    measure("first", typical, true); // the dynamic linker's work is part of it
    measure("typical", typical, true);
    measureAll(support::hostileBodies());
    measureAll(support::hostileMixtures());
    return 0;
}

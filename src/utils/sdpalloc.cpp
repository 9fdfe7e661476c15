#include "utils/sdpalloc.hpp"

namespace sdpline {

void *fillByService(void *memory, uint32_t size, const char *function, uint32_t line) {
    if (memset_s(memory, size, 0, size) != 0) {
        SIPAbnormalSecureFunc(function, line);
    }
    return memory;
}

} // namespace sdpline

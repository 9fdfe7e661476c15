// What of writing is not inlined into the encoders.
#include "services/output.hpp"

namespace sdpline::output {

char *putText(char *to, const char *text, uint32_t size) {
    if (size > sipcore::kShortText) [[unlikely]] {
        std::memcpy(to, text, size);
        return to + size;
    }
    return sipcore::putShortText(to, text, size);
}

char *putNumber(char *to, uint32_t value) {
    return sipcore::putNumber(to, value);
}

} // namespace sdpline::output

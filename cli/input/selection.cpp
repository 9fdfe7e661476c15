#include "input/selection.hpp"

namespace cli {

bool Selection::narrows() const {
    return !callId.empty() || !from.empty() || !method.empty() || frame != 0;
}

bool Selection::takes(const Origin &origin) const {
    if (!origin.isKnown()) {
        return true;
    }
    const bool isStatus =
        !origin.message.empty() && origin.message[0] >= '0' && origin.message[0] <= '9';
    const bool isResponse = isStatus && origin.cseq.ends_with(' ' + method);
    return (callId.empty() || origin.callId == callId) &&
           (from.empty() || origin.from.find(from) != std::string::npos) &&
           (method.empty() || origin.message == method || isResponse) &&
           (frame == 0 || origin.packet.frame == 0 || origin.packet.frame == frame);
}

} // namespace cli

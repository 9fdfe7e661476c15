// Serialises a body into buffers of any size: successfully into enough bytes, and with a failure,
// and only the beginning written, into fewer.
#include <algorithm>

#include "fuzz.hpp"

namespace {

using fuzz::require;

constexpr char kUntouched = '\xA5';

void requireFits(SdpLine &body, std::string_view text, uint32_t room) {
    fuzz::Exact bytes(std::string(room, kUntouched));
    uint32_t written = ~0u;
    const SDPResult result = SdpLibSerializeSdp(&body, bytes.data(), room, &written);
    if (room == 0) {
        require(result != 0 && fuzz::checkOf(result) == "SerializeArgument", "no room is refused");
        return;
    }
    require((result == 0) == (text.size() <= room), "a text is written when it fits");
    require(written == (result == 0 ? text.size() : 0), "the length is that of the whole text");
    const std::string_view all = bytes.view();
    const size_t common = static_cast<size_t>(
        std::mismatch(all.begin(), all.end(), text.begin(), text.end()).first - all.begin());
    require(result != 0 || common == text.size(), "the bytes are those of the text");
    require(all.find_first_not_of(kUntouched, common) == all.npos, "nothing else is written");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    fuzz::Configuration::of(input.byte()).apply();
    const uint32_t shares[] = {input.below(65536), input.below(65536)};
    const fuzz::NothingLeaks nothingLeaks;
    const fuzz::Body body = fuzz::decode(input.rest());
    if (body == nullptr) {
        return 0;
    }
    // The text in a growing buffer is compared with those in buffers of fixed size.
    const auto text = fuzz::encode(*body);
    require(text.has_value(), "what decodes encodes");
    const auto whole = static_cast<uint32_t>(text->size());
    for (const uint32_t room :
         {0u, whole - 1, whole, whole + 1, shares[0] % whole, shares[1] % (2 * whole)}) {
        requireFits(*body, *text, room);
    }
    return 0;
}

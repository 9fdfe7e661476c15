// Bodies and texts of the library, released when they go out of scope.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "sdpline/sdpline.h"

namespace cli {

struct ReleaseBody {
    void operator()(SdpLine *line) const { SdpLibReleaseSdp(&line); }
};
using Body = std::unique_ptr<SdpLine, ReleaseBody>;

// A decoded body, or why the text was refused.
struct Decoded {
    SDPResult result;
    SDPFailure failure; // where `result` is not 0
    Body body;
};

Decoded decodeBody(std::string_view text);

// The text that the library writes; without a value the reason is in `error`.
std::optional<std::string> encodeBody(SdpLine &line, std::string &error);

} // namespace cli

// Whole bodies, decoded and written back, for tests that run over many of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/body.hpp"
#include "support/bodylines.hpp"
#include "support/cases.hpp"

namespace support {

// Null when the text is refused.
Body decoded(std::string_view text);

// What SdpLibEncodeSdp writes; a failure fails the test.
std::string encoded(SdpLine &line);

// What SdpLibEncodeSdpLine writes, with the line's prefix; a failure fails the test.
std::string encodedLine(uint32_t lineType, const void *record);

// The body's text for messages: bytes that do not print as \xHH, line feeds as they are.
std::string readable(std::string_view text);

// Configuration that is set while it lives; the defaults come back with its end.
class Configured {
public:
    Configured(uint32_t t38Style, uint32_t rtpAvpf, uint32_t lineEnd);
    explicit Configured(const Case &current);
    ~Configured();
    Configured(const Configured &) = delete;
    Configured &operator=(const Configured &) = delete;
};

} // namespace support

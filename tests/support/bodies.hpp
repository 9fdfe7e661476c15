// Decodes whole bodies and writes them back, for tests that process many of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/body.hpp"
#include "support/bodylines.hpp"
#include "support/cases.hpp"

namespace support {

// Null if the text is refused.
Body decoded(std::string_view text);

// The text that SdpLibEncodeSdp writes; a failure fails the test.
std::string encoded(SdpLine &line);

// The text that SdpLibEncodeSdpLine writes, with the line's prefix; a failure fails the test.
std::string encodedLine(uint32_t lineType, const void *record);

// The text of the body for messages: bytes that are not printable as \xHH, line feeds unchanged.
std::string readable(std::string_view text);

// Sets the configuration while the object exists; its destructor restores the defaults.
class Configured {
public:
    Configured(uint32_t t38Style, uint32_t rtpAvpf, uint32_t lineEnd);
    explicit Configured(const Case &current);
    ~Configured();
    Configured(const Configured &) = delete;
    Configured &operator=(const Configured &) = delete;
};

} // namespace support

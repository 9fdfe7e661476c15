// Bytes at the end of the readable memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sdpline/sipcore.h"

namespace support {

// A copy of the bytes; the last one is directly before a protected page, so a read or write after
// it ends the program.
class Guarded {
public:
    explicit Guarded(std::string_view bytes);
    explicit Guarded(size_t size); // zero bytes to be written to
    ~Guarded();
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;

    uint8_t *data() { return data_; }
    size_t size() const { return size_; }
    SipString text() const {
        return {static_cast<uint32_t>(size_), reinterpret_cast<char *>(data_)};
    }

private:
    size_t size_;
    size_t mapped_;
    uint8_t *pages_;
    uint8_t *data_;
};

} // namespace support

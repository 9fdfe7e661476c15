// What the fuzz targets share.
//
// A target is one property in one file. Its input is a text followed by numbers, which are taken
// from the end, so that a body stays a body when the fuzzer changes the numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "support/body.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fuzz {

// Ends the program where the property does not hold; `what` is the property.
void require(bool holds, const char *what, std::string_view detail = {});

class Input {
public:
    Input(const uint8_t *data, size_t size) : rest_(reinterpret_cast<const char *>(data), size) {}

    uint8_t byte(); // 0 when nothing is left
    uint32_t number();
    // 0 to limit - 1
    uint32_t below(uint32_t limit);
    bool oneIn(uint32_t limit) { return below(limit) == limit - 1; }

    // The bytes that were not taken as numbers.
    std::string_view rest() const { return rest_; }
    // Takes that many bytes from the start.
    std::string_view front(size_t size);

private:
    std::string_view rest_;
};

// Bytes in a heap block of exactly their size, so that accesses beyond it are detected.
class Exact {
public:
    explicit Exact(std::string_view bytes);

    uint8_t *data() { return bytes_.get(); }
    uint32_t size() const { return static_cast<uint32_t>(size_); }
    SipString text() { return {size(), reinterpret_cast<char *>(data())}; }
    std::string_view view() const { return {reinterpret_cast<const char *>(bytes_.get()), size_}; }

private:
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_;
};

// The configuration of the library, from one byte of the input. Every log entry is formatted.
struct Configuration {
    uint32_t t38Style;
    uint32_t rtpAvpf;
    uint32_t lineEnd;
    uint32_t rtpFamily;
    uint32_t longBodies;

    static Configuration of(uint8_t byte);
    uint8_t byte() const;
    void apply() const;
};

// Requires that libsipcore has as many allocations at the end as at the start.
class NothingLeaks {
public:
    NothingLeaks();
    ~NothingLeaks();
    NothingLeaks(const NothingLeaks &) = delete;
    NothingLeaks &operator=(const NothingLeaks &) = delete;

private:
    SipMmStatistics before_;
};

using support::Body;

// A body, or null with the reason of the refusal.
Body decode(std::string_view text, SDPResult *refused = nullptr);

// The text of the body, or nothing with the reason.
std::optional<std::string> encode(SdpLine &line, SDPResult *refused = nullptr);

// The content of the string buffer, which is released.
std::string take(SipRefString *text);

// The name of the check that composed the result.
std::string_view checkOf(SDPResult result);

} // namespace fuzz

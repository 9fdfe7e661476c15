// What the fuzz targets share.
//
// A target is one property in one file. It reads its input as a text that numbers follow: the
// numbers are taken from the end, so that a body stays a body whatever is done to the choices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "support/body.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fuzz {

// Ends the program when the property does not hold; `what` says what should have been so.
void require(bool holds, const char *what, std::string_view detail = {});

class Input {
public:
    Input(const uint8_t *data, size_t size) : rest_(reinterpret_cast<const char *>(data), size) {}

    uint8_t byte(); // 0 when nothing is left
    uint32_t number();
    // 0 to limit - 1
    uint32_t below(uint32_t limit);
    bool oneIn(uint32_t limit) { return below(limit) == limit - 1; }

    // What no number was taken from.
    std::string_view rest() const { return rest_; }
    // That many bytes of its start, taken away.
    std::string_view front(size_t size);

private:
    std::string_view rest_;
};

// Bytes in a heap block of exactly their size: reading or writing beyond it is seen.
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

// How the library is set up, in one byte of the input. Every entry that is logged is formatted.
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

// Requires that libsipcore holds in the end what it held at first.
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

// The body's text, or none with the reason.
std::optional<std::string> encode(SdpLine &line, SDPResult *refused = nullptr);

// What the text holds, given back.
std::string take(SipRefString *text);

// The name of the check that composed the result.
std::string_view checkOf(SDPResult result);

} // namespace fuzz

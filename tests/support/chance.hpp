// Random values of a seeded engine. A seed gives the same values everywhere, since the
// distributions of the standard library, whose results differ between implementations, are not
// used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace support {

class Chance {
public:
    explicit Chance(std::mt19937 &engine) : engine_(engine) {}

    uint32_t number() { return static_cast<uint32_t>(engine_()); }
    // 0 to limit - 1
    uint32_t below(size_t limit) { return static_cast<uint32_t>(number() % limit); }
    bool oneIn(uint32_t limit) { return below(limit) == 0; }

    template <class T, size_t N>
    const T &pick(const T (&list)[N]) {
        return list[below(N)];
    }

private:
    std::mt19937 &engine_;
};

} // namespace support

// Damages bodies.
#pragma once

#include <random>
#include <string>

namespace support {

// The body with one to four random damages: bytes changed, removed, doubled or inserted, lines
// moved, removed or with another letter, numbers and words beyond every limit, or an early end. The
// library may still accept it.
std::string damage(std::string body, std::mt19937 &engine);

} // namespace support

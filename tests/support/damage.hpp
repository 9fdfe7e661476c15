// Bodies that something happened to.
#pragma once

#include <random>
#include <string>

namespace support {

// The body with one to four injuries: bytes changed, lost, doubled or put in between, lines moved,
// dropped or given another letter, numbers and words grown beyond every limit, an end too early.
// The library may still accept it.
std::string damage(std::string body, std::mt19937 &engine);

} // namespace support

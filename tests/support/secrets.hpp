// Bodies full of what identifies people and machines, with a list of what was put there.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace support {

struct SecretBody {
    std::string text;                 // accepted; its lines end in CR LF
    std::vector<std::string> secrets; // addresses, hosts, users, phone numbers, keys and so on
};

// Every secret is at least four characters long and occurs nowhere else but by intention.
SecretBody generateSecrets(std::mt19937 &engine);

} // namespace support

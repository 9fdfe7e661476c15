// Bodies with data that identifies people and machines, and a list of these data.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace support {

struct SecretBody {
    std::string text;                 // accepted; its lines end in CR LF
    std::vector<std::string> secrets; // addresses, hosts, users, phone numbers, keys and so on
};

// Every secret has at least four characters and occurs elsewhere only on purpose.
SecretBody generateSecrets(std::mt19937 &engine);

} // namespace support

// Parts of what every decode does, each alone: what its time is to be seen against.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// The sum of a table's entries for every byte.
uint32_t passTable(const std::string &text, const uint8_t (&table)[256]);

// The sizes of the memory that a decode of the text asks for, in their order, and a block from
// which it is cut and given back.
std::vector<uint32_t> requestsOf(const std::string &text);
bool cutAll(const std::vector<uint32_t> &sizes);

} // namespace bench

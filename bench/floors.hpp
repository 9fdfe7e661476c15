// Parts of every decode, each measured alone: lower bounds for the time of a decode.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// The sum of a table's entries for every byte.
uint32_t passTable(const std::string &text, const uint8_t (&table)[256]);

// The sizes of the allocations of a decode in their order, and a block from which they are made.
std::vector<uint32_t> requestsOf(const std::string &text);
bool cutAll(const std::vector<uint32_t> &sizes);

} // namespace bench

// What a decode cannot do without, each alone: what is left above their sum is what typed records cost.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// The sum of a table's entries for every byte.
uint32_t passTable(const std::string &text, const uint8_t (&table)[256]);

// The normal form of the text, as the parser makes it.
std::string normalForm(const std::string &text);

// How many runs of letters, digits and single other bytes the text has: the tokens of a lexer, told
// apart by a table of 256 entries, with nothing done about them.
uint32_t countRuns(const std::string &text);

// The sizes of the memory that a decode of the text asks for, in their order, and a block from which
// it is cut and given back.
std::vector<uint32_t> requestsOf(const std::string &text);
bool cutAll(const std::vector<uint32_t> &sizes);

} // namespace bench

#pragma once

#include <string>

namespace cpptest {

// Decodes, edits, clones and encodes; the text, or why not.
std::string answerWithoutExceptions(const std::string &offer);

} // namespace cpptest

#pragma once

#include <string>

namespace facetest {

// Decodes, edits, clones and encodes; the text, or why not.
std::string answerWithoutExceptions(const std::string &offer);

} // namespace facetest

/*
 * Writes the text of a body that is given as JSON, and decodes it again: a document whose text does
 * not decode to the same JSON is refused.
 *
 * Such a text is one that the decoder refuses (an empty name, a blank in a word, a line that is too
 * long) or reads differently (a second t= line is not written; an "other" word has a code).
 */
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace cli {

// Uses the configured line end and T.38 style; a body with T.38 flags that style 0 does not
// distinguish is written in style 2. Where nothing is returned, the reason is in `error`:
// "/media/0/port: ..." or "line 3, "s=": ...".
std::optional<std::string> textOfJson(const nlohmann::json &document, std::string &error);

} // namespace cli

/*
 * The text of a body given as JSON, proved by reading it back: what is written decodes to the same
 * JSON, or is refused.
 *
 * So nothing is written that a decoder refuses (an empty name, a blank in a word, too long a line)
 * or reads as something else (the second of two t= lines, which are not written; an "other" word
 * that has a code).
 */
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace cli {

// With the line end and the T.38 style that are configured; a body with T.38 flags that style 0
// does not distinguish is written in style 2. Without a text the reason is in `error`:
// "/media/0/port: ..." or "line 3, "s=": ...".
std::optional<std::string> textOfJson(const nlohmann::json &document, std::string &error);

} // namespace cli

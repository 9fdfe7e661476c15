/*
 * Writes bodies as JSON with every field of every record, and reads them back.
 *
 *     {"version": 0,
 *      "origin": {"userName": "-", ..., "netType": {"code": 1, "word": "IN"}, ...},
 *      "media": [{"type": {"code": 7, "other": "text"}, "port": 5004, ...}]}
 *
 * A text is a string; where its bytes are not UTF-8 it is {"hex": "66ff"}. A code is its number
 * with its word, or with the text of the line where the code is that of "other". What the record
 * does not have is left out.
 *
 * Reading also accepts a number or a word in place of a code object, where a word without a code is
 * an "other" text, and null or an empty list for a missing field. It refuses unknown fields,
 * numbers and codes out of range, texts with line feeds or NULs, and lists that the encoder could
 * not write.
 */
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "sdpline/sdpline.hpp"

namespace cli {

// Does not change the body.
nlohmann::ordered_json jsonOf(SdpLine &line);

// A new body from the document; nothing where the document is not a body, with the reason in
// `error`:
// "/media/0/port: expected a number from 0 to 4294967295, found null".
std::optional<sdpline::Body> bodyOf(const nlohmann::json &document, std::string &error);

} // namespace cli

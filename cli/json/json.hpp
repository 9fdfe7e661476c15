/*
 * Bodies as JSON, without loss: every field of every record, and back.
 *
 *     {"version": 0,
 *      "origin": {"userName": "-", ..., "netType": {"code": 1, "word": "IN"}, ...},
 *      "media": [{"type": {"code": 7, "other": "text"}, "port": 5004, ...}]}
 *
 * A text is a string; where its bytes are not UTF-8 it is {"hex": "66ff"}. A code is its number
 * with its word, or with the text that was written where the code says "other". What is absent in
 * the record is absent here.
 *
 * Reading also takes a bare number or a word for a code, "other" texts among the words, and null or
 * an empty list for what is absent. It refuses fields it does not know, numbers and codes out of
 * range, texts with line feeds or NUL, and lists that the encoder could not write.
 */
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "sdpline/sdpline.hpp"

namespace cli {

// The body is only read.
nlohmann::ordered_json jsonOf(SdpLine &line);

// A new body from the document; nothing when the document is none, and `error` says why:
// "/media/0/port: expected a number from 0 to 4294967295, found null".
std::optional<sdpline::Body> bodyOf(const nlohmann::json &document, std::string &error);

} // namespace cli

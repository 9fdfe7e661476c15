// The operations of sdpline that are measured. Each returns whether it succeeded.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bodies.hpp"
#include "sdpline/sdpline.h"
#include "sdpline/sdpline.hpp"

namespace bench {

bool decodeAndRelease(const std::string &text);
bool decodeEncodeAndRelease(const std::string &text);

bool encodeAndRelease(SdpLine *line);
// A copy, and its release: of the whole body, and line by line by the C interface.
bool clone(const sdpline::Body &body);
bool cloneByC(const sdpline::Body &body);
bool serialise(SdpLine *line, std::vector<uint8_t> &buffer);

// The answer to a call: decodes an offer, makes an answer with the supported payload numbers, the
// other lines copied and the direction reversed, encodes it and releases both.
bool answerByCpp(const std::string &text);
bool answerByC(const std::string &text);

// Tidies the text by the default rules, and releases the report with its body.
bool tidyAndRelease(const std::string &text);

// The answer to a decoded offer by a local body that can do all of it, with its report: by the C++
// API and by the C interface. Releases both.
bool negotiate(const sdpline::Body &offer, const sdpline::Body &local);
bool negotiateByC(const sdpline::Body &offer, const sdpline::Body &local);

// The decoded texts of a body; empty where one is refused.
std::vector<sdpline::Body> decoded(const Body &body);

// A buffer that is large enough for every measured body.
std::vector<uint8_t> roomForText();

} // namespace bench

// Describing streams and formats in a report.
#pragma once

#include "negotiate/pairing.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// One side of a stream: the body, its media description, and the types of that description's a=
// lines.
struct View {
    const SdpLine &body;
    const SDPMediaDesc &media;
    Kinds kinds;
};

// Sets the packet times and the held flags of both sides.
void describeSides(const View &peer, const View &ours, SdpNegotiateStream &stream);

// Allocates `count` formats; null when memory is exhausted.
SdpNegotiateFormat **makeFormats(Arena &arena, uint32_t count);

// Sets a format of the report, with a copy of its name.
void describeFormat(Arena &arena, const Format &codec, SdpNegotiateFormat &format);

// "L16/44100/2"
void writeName(const Format &format, Text &text);

// "PCMU 0, telephone-event 101"
void writeFormats(const SdpNegotiateStream &stream, Text &text);

// Writes why two lists have no common format: "offered H264 profile 64, ours 42". `side` is the
// word for the second list.
void writeMismatch(const FormatList &offered, const FormatList &ours, std::string_view side,
                   Text &text);

} // namespace sdpline::negotiate

// The streams of a report.
#pragma once

#include "negotiate/pairing.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// One side of a stream: the body, its media description, the types of the latter's a= lines.
struct View {
    const SdpLine &body;
    const SDPMediaDesc &media;
    Kinds kinds;
};

// Times and addresses: what each side says of itself.
void describeSides(const View &peer, const View &ours, SdpNegotiateStream &stream);

// Room for as many formats; null when memory is exhausted.
SdpNegotiateFormat **makeFormats(Arena &arena, uint32_t count);

// A format of the report, with its texts copied.
void describeFormat(Arena &arena, const Format &codec, SdpNegotiateFormat &format);

// "L16/44100/2"
void writeName(const Format &format, Text &text);

// "PCMU 0, telephone-event 101"
void writeFormats(const SdpNegotiateStream &stream, Text &text);

// Why two lists have no common format: "offered H264 profile 64, ours 42". `side` is what the
// second one is called.
void writeMismatch(const FormatList &offered, const FormatList &ours, std::string_view side,
                   Text &text);

} // namespace sdpline::negotiate

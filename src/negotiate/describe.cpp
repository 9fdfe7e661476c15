// Describing streams in a report, and formats in sentences.
#include "negotiate/describe.hpp"

namespace sdpline::negotiate {

namespace {

// The first a=ptime and the first a=maxptime of a stream.
struct Times {
    uint32_t usual = SDP_NEGOTIATE_NONE;
    uint32_t most = SDP_NEGOTIATE_NONE;

    explicit Times(const View &side) {
        if ((side.kinds & kTimeKinds) == 0) {
            return;
        }
        for (const SDPAttr *const line : attributesOf(side.media.pstAttrList)) {
            const uint32_t type = line->ulAttrType;
            if (type == SDP_ATTR_PTIME || type == SDP_ATTR_MAXPTIME) {
                uint32_t &time = type == SDP_ATTR_PTIME ? usual : most;
                time = time == SDP_NEGOTIATE_NONE ? line->unAttrValue.ulValue : time;
            }
        }
    }
};

bool isHeld(const View &side) {
    return isUnspecified(connectionOf(side.body, side.media));
}

} // namespace

void describeSides(const View &peer, const View &ours, SdpNegotiateStream &stream) {
    stream.bPeerHeld = isHeld(peer) ? 1 : 0;
    stream.bHeld = isHeld(ours) ? 1 : 0;
    const Times sent(peer);
    const Times received(ours);
    stream.ulSendPTime = sent.usual;
    stream.ulReceivePTime = received.usual;
    stream.ulSendMaxPTime = sent.most;
    stream.ulReceiveMaxPTime = received.most;
}

SdpNegotiateFormat **makeFormats(Arena &arena, uint32_t count) {
    auto **const formats = arena.make<SdpNegotiateFormat *>(count);
    for (uint32_t i = 0; formats != nullptr && i < count; ++i) {
        formats[i] = arena.make<SdpNegotiateFormat>();
        if (formats[i] == nullptr) {
            return nullptr;
        }
    }
    return formats;
}

void describeFormat(Arena &arena, const Format &codec, SdpNegotiateFormat &format) {
    format.strName = lent(arena.copy(codec.name));
    format.ulClockRate = codec.clock;
    format.ulChannels = codec.channels;
}

void writeFormats(const SdpNegotiateStream &stream, Text &text) {
    for (uint32_t i = 0; i < stream.ulNoOfFormats; ++i) {
        const SdpNegotiateFormat &format = *stream.ppstFormats[i];
        if (i != 0) {
            text << ", ";
        }
        text << viewOf(format.strName);
        if (format.ulReceive != SDP_NEGOTIATE_NONE) {
            text << " " << format.ulReceive;
        }
    }
}

void writeName(const Format &format, Text &text) {
    if (!format.defined) {
        text << "number " << format.number;
        return;
    }
    text << format.name;
    if (format.number == SDP_NEGOTIATE_NONE) {
        return;
    }
    text << "/" << format.clock;
    if (format.channels > 1) {
        text << "/" << format.channels;
    }
}

namespace {

constexpr uint32_t kMostNamed = 6; // formats of a list in a sentence

void writeNames(const FormatList &list, Text &text) {
    for (uint32_t i = 0; i < list.count && i < kMostNamed; ++i) {
        text << (i == 0 ? "" : " ");
        writeName(list.items[i], text);
    }
    text << (list.count > kMostNamed ? " ..." : list.count == 0 ? "none" : "");
}

// Writes the parameter by which two H264 formats differ.
void writeH264(const Format &offered, const Format &ours, std::string_view side, Text &text) {
    const auto profile = [](const Format &format) {
        return parameter(format.parameters, "profile-level-id").value_or("42000A");
    };
    const auto mode = [](const Format &format) {
        return parameter(format.parameters, "packetization-mode").value_or("0");
    };
    if (mode(offered) != mode(ours)) {
        text << "offered H264 packetization-mode " << mode(offered) << ", " << side << " "
             << mode(ours);
        return;
    }
    const bool sameByte = sameWord(firstBytes(profile(offered), 2), firstBytes(profile(ours), 2));
    const size_t digits = sameByte ? 4 : 2;
    text << "offered H264 profile " << firstBytes(profile(offered), digits) << ", " << side << " "
         << firstBytes(profile(ours), digits);
}

void writeParametersOf(const Format &format, Text &text) {
    text << (format.parameters.empty() ? std::string_view("no parameters") : format.parameters);
}

} // namespace

void writeMismatch(const FormatList &offered, const FormatList &ours, std::string_view side,
                   Text &text) {
    for (const Format &one : offered) {
        for (const Format &other : ours) {
            if (!sameCodec(one, other) || sameParameters(one, other)) {
                continue;
            }
            if (sameWord(one.name, "H264")) {
                writeH264(one, other, side, text);
                return;
            }
            text << "offered " << one.name << " ";
            writeParametersOf(one, text);
            text << ", " << side << " ";
            writeParametersOf(other, text);
            return;
        }
    }
    text << "offered ";
    writeNames(offered, text);
    text << ", " << side << " ";
    writeNames(ours, text);
}

} // namespace sdpline::negotiate

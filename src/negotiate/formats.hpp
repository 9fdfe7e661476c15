// The formats of m= lines: payload numbers with their codecs, and words such as "t38".
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "negotiate/memory.hpp"
#include "negotiate/records.hpp"

namespace sdpline::negotiate {

constexpr uint32_t kHighestPayload = 127;
constexpr uint32_t kFirstDynamicPayload = 96;

// The role of a format in a stream. All roles but Codec accompany a codec (RFC 4733, 2198, 4588,
// 3389, 5109).
enum class Role : uint8_t { Codec, Event, Red, Rtx, Auxiliary };

struct Format {
    uint32_t number; // SDP_NEGOTIATE_NONE for a word
    std::string_view name;
    uint32_t clock;
    uint32_t channels;
    std::string_view parameters;
    const SDPAttr *map; // null for a static codec and for a word
    const SDPAttr *fmtp;
    Role role;
    bool defined; // by a=rtpmap or RFC 3551, or a word
};

// The formats of one m= line in its order, each number once; numbers above 127 are left out. Items
// are not initialised before they are added: clearing a hundred of them would cost more than most
// answers.
struct FormatList {
    FormatList() : count(0), kinds(0) {}

    union {
        Format items[SDP_MAX_PAYLOADS];
    };
    uint32_t count;
    Kinds kinds; // of the a= lines of the stream

    const Format *begin() const { return items; }
    const Format *end() const { return items + count; }
    std::optional<uint32_t> indexOf(uint32_t number) const;
};

void gather(const SDPMediaDesc &media, FormatList &list);

inline bool isRtp(const SDPMediaDesc &media) {
    return protocolIs(media, SDP_PROTO_RTP_AVP,
                      [](std::string_view word) { return hasWord(word, "RTP/"); }) ||
           media.stMediaField.stProto.enProto == SDP_PROTO_RTP_SAVP ||
           media.stMediaField.stProto.enProto == SDP_PROTO_RTP_AVPF;
}

// Calls use(number) for each payload number of an m= line. For RTP over a protocol that the decoder
// stores as text, a single number is stored as a word.
template <class Use>
void eachNumber(const SDPMediaDesc &media, Use use) {
    const SDPMediaFmt &format = media.stMediaField.stMediaFmt;
    if (format.enFmtType == SDP_FMT_OTHER) {
        std::string_view word = viewOf(format.unMediaFmt.strOtherFmts);
        uint32_t number = 0;
        if (isRtp(media) && takeNumber(word, number) && word.empty()) {
            use(number);
        }
        return;
    }
    for (const uint32_t number : Media(&media).payloads()) {
        use(number);
    }
}

// sameCodec(): name, clock rate and channels are equal. sameParameters(): the parameters of such
// formats are compatible. RED and RTX, which refer to other formats, are compared when they are
// paired.
bool sameCodec(const Format &one, const Format &two);
bool sameParameters(const Format &one, const Format &two);

// The value of a name in "name=value;name=value"; nullopt if the name is missing.
std::optional<std::string_view> parameter(std::string_view parameters, std::string_view name);

// The set of codec modes of AMR, one bit each; nullopt for all modes.
std::optional<uint32_t> modeSetOf(std::string_view parameters);
bool isAmr(const Format &format);

} // namespace sdpline::negotiate

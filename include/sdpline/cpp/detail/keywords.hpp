/*
 * keywords.hpp: the keywords of SDP and their codes in the records, one table for each set. The
 * parser looks up texts; the encoder, the C++ API and the program look up codes.
 *
 * If a code has several spellings, the first row is the one that is written. Some words are written
 * with a blank at one end: such a table has the written form, and the bare words that the parser
 * compares are views of the same literals.
 */
#ifndef SDPLINE_DETAIL_KEYWORDS_HPP
#define SDPLINE_DETAIL_KEYWORDS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "sdpline/sdprecords.h"

namespace sdpline::tables {

struct KeywordRow {
    std::string_view text;
    uint32_t code;
};

// The first row with that text or code; null for none.
constexpr const KeywordRow *findByText(std::span<const KeywordRow> table, std::string_view text) {
    for (const KeywordRow &word : table) {
        if (word.text == text) {
            return &word;
        }
    }
    return nullptr;
}

constexpr const KeywordRow *findByCode(std::span<const KeywordRow> table, uint32_t code) {
    for (const KeywordRow &word : table) {
        if (word.code == code) {
            return &word;
        }
    }
    return nullptr;
}

// The same words without the blank at their start or end.
template <size_t N>
constexpr std::array<KeywordRow, N> bareWords(const std::array<KeywordRow, N> &written) {
    std::array<KeywordRow, N> bare = written;
    for (KeywordRow &word : bare) {
        if (word.text.ends_with(' ')) {
            word.text.remove_suffix(1);
        }
        if (word.text.starts_with(' ')) {
            word.text.remove_prefix(1);
        }
    }
    return bare;
}

// Whether the codes of the table are exactly those from first to last. The rows are counted,
// because with sanitizers g++ 12 does not accept the comparison of a row's address with null as a
// constant.
constexpr bool coversCodes(std::span<const KeywordRow> table, uint32_t first, uint32_t last) {
    const auto rowsOf = [table](uint32_t lowest, uint32_t highest) {
        size_t rows = 0;
        for (const KeywordRow &row : table) {
            rows += row.code >= lowest && row.code <= highest ? 1 : 0;
        }
        return rows;
    };
    for (uint32_t code = first; code <= last; ++code) {
        if (rowsOf(code, code) == 0) {
            return false;
        }
    }
    return rowsOf(first, last) == table.size();
}

// ---- o= and c=

inline constexpr auto kNetTypeWords = std::to_array<KeywordRow>({{"IN", SDP_NETTYPE_IN}});

inline constexpr auto kAddrTypeWords = std::to_array<KeywordRow>({
    {"IP4", SDP_ADDRTYPE_IP4},
    {"IP6", SDP_ADDRTYPE_IP6},
});

// ---- r=

inline constexpr auto kTimeUnitWords = std::to_array<KeywordRow>({
    {"d", SDP_TIME_DAYS},
    {"h", SDP_TIME_HOURS},
    {"m", SDP_TIME_MINUTES},
    {"s", SDP_TIME_SECONDS},
});
static_assert(coversCodes(kTimeUnitWords, SDP_TIME_DAYS, SDP_TIME_SECONDS));

// ---- m=

inline constexpr auto kMediaWritten = std::to_array<KeywordRow>({
    {"audio ", SDP_MEDIA_AUDIO},
    {"video ", SDP_MEDIA_VIDEO},
    {"application ", SDP_MEDIA_APPLICATION},
    {"data ", SDP_MEDIA_DATA},
    {"control ", SDP_MEDIA_CONTROL},
    {"image ", SDP_MEDIA_IMAGE},
});
inline constexpr auto kMediaWords = bareWords(kMediaWritten);
static_assert(coversCodes(kMediaWords, SDP_MEDIA_AUDIO, SDP_MEDIA_OTHER - 1));

// "RTP/AVPF" is read as SDP_PROTO_RTP_AVPF only if SdpSetSupMedProtoRtpAvpf is on.
inline constexpr auto kProtoWords = std::to_array<KeywordRow>({
    {"RTP/AVP", SDP_PROTO_RTP_AVP},
    {"udp", SDP_PROTO_UDP},
    {"UDP", SDP_PROTO_UDP},
    {"TCP", SDP_PROTO_TCP},
    {"tcp", SDP_PROTO_TCP},
    {"udptl", SDP_PROTO_UDPTL},
    {"RTP/SAVP", SDP_PROTO_RTP_SAVP},
    {"RTP/AVPF", SDP_PROTO_RTP_AVPF},
});
static_assert(coversCodes(kProtoWords, SDP_PROTO_RTP_AVP, SDP_PROTO_OTHER - 1));

// RTP profiles: a protocol word that ends in one of them may be read as RTP over another transport,
// such as "UDP/TLS/RTP/SAVPF" (RFC 5764 section 8) or "TCP/RTP/AVP" (RFC 4571).
inline constexpr std::string_view kRtpProfiles[] = {"RTP/AVP", "RTP/AVPF", "RTP/SAVP", "RTP/SAVPF"};

constexpr bool endsInRtpProfile(std::string_view word) {
    for (const std::string_view profile : kRtpProfiles) {
        if (word.ends_with(profile)) {
            return true;
        }
    }
    return false;
}

// The formats that have a code.
inline constexpr auto kFmtWords = std::to_array<KeywordRow>({
    {"t38", SDP_FMT_T38},
    {"t120", SDP_FMT_T120},
});

// ---- a=

inline constexpr auto kT38RateWords = std::to_array<KeywordRow>({
    {"localTCF", SDP_T38_RATE_LOCAL_TCF},
    {"transferredTCF", SDP_T38_RATE_TRANSFERRED_TCF},
});

inline constexpr auto kT38UdpEcWords = std::to_array<KeywordRow>({
    {"t38UDPFEC", SDP_T38_EC_FEC},
    {"t38UDPRedundancy", SDP_T38_EC_REDUNDANCY},
});

// In a=ecan the switch has a blank before it, in a=silenceSupp it has none.
inline constexpr auto kEcanSwitchWritten = std::to_array<KeywordRow>({{" on", 1}, {" off", 0}});
inline constexpr auto kSwitchWords = bareWords(kEcanSwitchWritten);

inline constexpr auto kEcanDirWords = std::to_array<KeywordRow>({
    {"fb", SDP_ECAN_FB},
    {"f", SDP_ECAN_F},
    {"b", SDP_ECAN_B},
});

inline constexpr auto kIpBcpWritten = std::to_array<KeywordRow>({
    {" Request", SDP_IPBCP_REQUEST},
    {" Accepted", SDP_IPBCP_ACCEPTED},
    {" Confused", SDP_IPBCP_CONFUSED},
    {" Rejected", SDP_IPBCP_REJECTED},
});
inline constexpr auto kIpBcpWords = bareWords(kIpBcpWritten);

inline constexpr auto kSetupWords = std::to_array<KeywordRow>({
    {"passive", SDP_T120_PASSIVE},
    {"active", SDP_T120_ACTIVE},
    {"actpass", SDP_T120_ACTPASS},
});

// ---- a=curr, a=des, a=conf

inline constexpr auto kPreconditionWords =
    std::to_array<KeywordRow>({{"qos", SDP_PRECONDITION_QOS}});

inline constexpr auto kStatusWords = std::to_array<KeywordRow>({
    {"e2e", SDP_STATUS_E2E},
    {"local", SDP_STATUS_LOCAL},
    {"remote", SDP_STATUS_REMOTE},
});
static_assert(coversCodes(kStatusWords, SDP_STATUS_E2E, SDP_STATUS_REMOTE));

inline constexpr auto kStrengthWords = std::to_array<KeywordRow>({
    {"mandatory", SDP_STRENGTH_MANDATORY},
    {"optional", SDP_STRENGTH_OPTIONAL},
    {"none", SDP_STRENGTH_NONE},
    {"failure", SDP_STRENGTH_FAILURE},
    {"unknown", SDP_STRENGTH_UNKNOWN},
});
static_assert(coversCodes(kStrengthWords, SDP_STRENGTH_MANDATORY, SDP_STRENGTH_UNKNOWN));

inline constexpr auto kDirWords = std::to_array<KeywordRow>({
    {"none", SDP_DIR_NONE},
    {"send", SDP_DIR_SEND},
    {"recv", SDP_DIR_RECV},
    {"sendrecv", SDP_DIR_SENDRECV},
});
static_assert(coversCodes(kDirWords, SDP_DIR_NONE, SDP_DIR_SENDRECV));

} // namespace sdpline::tables

#endif

// sofia-sip. It keeps the formats of RTP as rtpmaps, which a=rtpmap and a=fmtp become a part of,
// those of other protocols as words.
#include <sofia-sip/sdp.h>

#include <memory>

#include "support/peers/peers.hpp"

namespace peers {

namespace {

std::string textOf(const char *text) {
    return text != nullptr ? text : "";
}

Stream streamOf(const sdp_session_t &session, const sdp_media_t &media) {
    static constexpr const char *kDirections[] = {"inactive", "sendonly", "recvonly", "sendrecv"};
    Stream stream;
    stream.media = textOf(media.m_type_name);
    stream.port = static_cast<uint32_t>(media.m_port);
    stream.protocol = textOf(media.m_proto_name);
    for (const sdp_list_t *one = media.m_format; one != nullptr; one = one->l_next) {
        stream.formats.push_back(textOf(one->l_text));
    }
    for (const sdp_rtpmap_t *one = media.m_rtpmaps; one != nullptr; one = one->rm_next) {
        stream.formats.push_back(std::to_string(unsigned{one->rm_pt}));
        stream.attributes += (one->rm_predef ? 0 : 1) + (one->rm_fmtp != nullptr ? 1 : 0);
    }
    for (const sdp_attribute_t *one = media.m_attributes; one != nullptr; one = one->a_next) {
        ++stream.attributes;
    }
    stream.direction = kDirections[media.m_mode];
    const sdp_connection_t *const connection =
        media.m_connections != nullptr ? media.m_connections : session.sdp_connection;
    stream.address = connection != nullptr ? textOf(connection->c_address) : "";
    return stream;
}

} // namespace

std::optional<Streams> read_sofia(const std::string &text) {
    const std::unique_ptr<sdp_parser_t, void (*)(sdp_parser_t *)> parser(
        sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), 0), sdp_parser_free);
    const sdp_session_t *const session = sdp_session(parser.get());
    if (session == nullptr) {
        return std::nullopt;
    }
    Streams streams;
    for (const sdp_media_t *one = session->sdp_media; one != nullptr; one = one->m_next) {
        streams.push_back(streamOf(*session, *one));
    }
    return streams;
}

} // namespace peers

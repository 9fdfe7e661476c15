// libosip2 keeps attributes as text.
#include <osipparser2/osip_parser.h>
#include <osipparser2/sdp_message.h>

#include <memory>

#include "support/peers/peers.hpp"

namespace peers {

namespace {

std::string textOf(const char *text) {
    return text != nullptr ? text : "";
}

template <class Use>
void each(const osip_list_t &list, Use use) {
    for (int i = 0; i < osip_list_size(&list); ++i) {
        use(osip_list_get(&list, i));
    }
}

void findDirection(const osip_list_t &attributes, std::string &direction) {
    each(attributes, [&](void *item) {
        const std::string name = textOf(static_cast<sdp_attribute_t *>(item)->a_att_field);
        if (isDirection(name)) {
            direction = name;
        }
    });
}

Stream streamOf(const sdp_message_t &message, const sdp_media_t &media) {
    Stream stream;
    stream.media = textOf(media.m_media);
    stream.port = static_cast<uint32_t>(std::strtoul(textOf(media.m_port).c_str(), nullptr, 10));
    stream.protocol = textOf(media.m_proto);
    each(media.m_payloads,
         [&](void *item) { stream.formats.push_back(textOf(static_cast<char *>(item))); });
    stream.direction = "sendrecv";
    findDirection(message.a_attributes, stream.direction);
    findDirection(media.a_attributes, stream.direction);
    if (message.c_connection != nullptr) {
        stream.address = textOf(message.c_connection->c_addr);
    }
    each(media.a_attributes, [&](void *item) {
        const auto *const attribute = static_cast<sdp_attribute_t *>(item);
        stream.attributes += isDirection(textOf(attribute->a_att_field)) ? 0 : 1;
    });
    each(media.c_connections, [&](void *item) {
        stream.address = textOf(static_cast<sdp_connection_t *>(item)->c_addr);
    });
    return stream;
}

} // namespace

std::optional<Streams> read_osip(const std::string &text) {
    static const bool ready = parser_init() == 0;
    sdp_message_t *made = nullptr;
    if (!ready || sdp_message_init(&made) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<sdp_message_t, void (*)(sdp_message_t *)> message(made, sdp_message_free);
    if (sdp_message_parse(made, text.c_str()) != 0) {
        return std::nullopt;
    }
    Streams streams;
    each(made->m_medias, [&](void *item) {
        streams.push_back(streamOf(*made, *static_cast<sdp_media_t *>(item)));
    });
    return streams;
}

} // namespace peers

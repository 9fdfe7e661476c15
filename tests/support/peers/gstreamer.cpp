// The SDP library of GStreamer keeps attributes as text. It works without gst_init().
#include <gst/sdp/gstsdpmessage.h>

#include <memory>

#include "support/peers/peers.hpp"

namespace peers {

namespace {

std::string textOf(const char *text) {
    return text != nullptr ? text : "";
}

std::string directionOf(const GstSDPMessage *message, const GstSDPMedia *media) {
    std::string direction = "sendrecv";
    for (guint i = 0; i < gst_sdp_message_attributes_len(message); ++i) {
        const std::string name = textOf(gst_sdp_message_get_attribute(message, i)->key);
        direction = isDirection(name) ? name : direction;
    }
    for (guint i = 0; i < gst_sdp_media_attributes_len(media); ++i) {
        const std::string name = textOf(gst_sdp_media_get_attribute(media, i)->key);
        direction = isDirection(name) ? name : direction;
    }
    return direction;
}

Stream streamOf(const GstSDPMessage *message, const GstSDPMedia *media) {
    Stream stream;
    stream.media = textOf(gst_sdp_media_get_media(media));
    stream.port = gst_sdp_media_get_port(media);
    stream.protocol = textOf(gst_sdp_media_get_proto(media));
    for (guint i = 0; i < gst_sdp_media_formats_len(media); ++i) {
        stream.formats.push_back(textOf(gst_sdp_media_get_format(media, i)));
    }
    stream.direction = directionOf(message, media);
    for (guint i = 0; i < gst_sdp_media_attributes_len(media); ++i) {
        const std::string name = textOf(gst_sdp_media_get_attribute(media, i)->key);
        stream.attributes += isDirection(name) ? 0 : 1;
    }
    const GstSDPConnection *connection = gst_sdp_message_get_connection(message);
    if (gst_sdp_media_connections_len(media) != 0) {
        connection = gst_sdp_media_get_connection(media, 0);
    }
    stream.address = textOf(connection->address);
    return stream;
}

} // namespace

std::optional<Streams> read_gstreamer(const std::string &text) {
    GstSDPMessage *made = nullptr;
    gst_sdp_message_new(&made);
    const std::unique_ptr<GstSDPMessage, GstSDPResult (*)(GstSDPMessage *)> message(
        made, gst_sdp_message_free);
    if (gst_sdp_message_parse_buffer(reinterpret_cast<const guint8 *>(text.data()),
                                     static_cast<guint>(text.size()), made) != GST_SDP_OK) {
        return std::nullopt;
    }
    Streams streams;
    for (guint i = 0; i < gst_sdp_message_medias_len(made); ++i) {
        streams.push_back(streamOf(made, gst_sdp_message_get_media(made, i)));
    }
    return streams;
}

} // namespace peers

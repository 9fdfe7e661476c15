// libre. A session takes the text as an offer, and keeps directions as they are for who reads it.
#include <memory>

#include "support/peers/peers.hpp"

extern "C" {
#include <re/re_types.h>
// and what these build on
#include <re/re_fmt.h>
#include <re/re_list.h>
#include <re/re_mbuf.h>
#include <re/re_mem.h>
#include <re/re_sa.h>
#include <re/re_sdp.h>
}

namespace peers {

namespace {

std::string textOf(const char *text) {
    return text != nullptr ? text : "";
}

std::string addressOf(const sdp_media *media) {
    char text[64] = "";
    return sa_ntop(sdp_media_raddr(media), text, sizeof text) == 0 ? text : "";
}

sdp_dir turned(sdp_dir direction) {
    return direction == SDP_SENDONLY   ? SDP_RECVONLY
           : direction == SDP_RECVONLY ? SDP_SENDONLY
                                       : direction;
}

// Those that it keeps as text; a=rtpmap and a=fmtp become a part of their format.
size_t attributesOf(const sdp_media *media) {
    size_t count = 0;
    sdp_media_rattr_apply(
        media, nullptr,
        [](const char *, const char *, void *counted) -> bool {
            ++*static_cast<size_t *>(counted);
            return false;
        },
        &count);
    return count;
}

Stream streamOf(const sdp_media *media) {
    Stream stream;
    stream.media = textOf(sdp_media_name(media));
    stream.port = sdp_media_rport(media);
    stream.protocol = textOf(sdp_media_proto(media));
    const list *const formats = sdp_media_format_lst(media, false);
    for (const le *one = list_head(formats); one != nullptr; one = one->next) {
        const auto *const format = static_cast<const sdp_format *>(one->data);
        stream.formats.push_back(textOf(format->id));
        stream.attributes +=
            (format->name != nullptr ? 1u : 0u) + (format->params != nullptr ? 1u : 0u);
    }
    stream.attributes += attributesOf(media);
    stream.direction = textOf(sdp_dir_name(turned(sdp_media_rdir(media))));
    stream.address = addressOf(media);
    return stream;
}

} // namespace

std::optional<Streams> read_libre(const std::string &text) {
    sa local;
    sa_set_str(&local, "192.0.2.1", 0);
    sdp_session *made = nullptr;
    if (sdp_session_alloc(&made, &local) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<sdp_session, void *(*)(void *)> session(made, mem_deref);
    mbuf buffer;
    mbuf_init(&buffer);
    buffer.buf = reinterpret_cast<uint8_t *>(const_cast<char *>(text.data()));
    buffer.size = buffer.end = text.size();
    if (sdp_decode(made, &buffer, true) != 0) {
        return std::nullopt;
    }
    Streams streams;
    for (const le *one = list_head(sdp_session_medial(made, false)); one != nullptr;
         one = one->next) {
        streams.push_back(streamOf(static_cast<const sdp_media *>(one->data)));
    }
    return streams;
}

} // namespace peers

// The SDP library of GStreamer. It works without gst_init(), which would set up plugins and logs.
#include <gst/sdp/gstsdpmessage.h>

#include "peers.hpp"

namespace {

struct Gstreamer {
    static GstSDPMessage *parse(const std::string &text) {
        GstSDPMessage *message = nullptr;
        gst_sdp_message_new(&message);
        if (gst_sdp_message_parse_buffer(reinterpret_cast<const guint8 *>(text.data()),
                                         static_cast<guint>(text.size()), message) != GST_SDP_OK) {
            gst_sdp_message_free(message);
            return nullptr;
        }
        return message;
    }

    static void release(GstSDPMessage *message) { gst_sdp_message_free(message); }

    static bool print(GstSDPMessage *message, std::string *copy) {
        gchar *const text = gst_sdp_message_as_text(message);
        if (text != nullptr && copy != nullptr) {
            *copy = text;
        }
        g_free(text);
        return text != nullptr;
    }
};

[[maybe_unused]] const bool added = bench::addPeer<Gstreamer>("gstreamer");

} // namespace

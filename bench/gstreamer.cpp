// The SDP library of GStreamer. It works without gst_init(), which would set up plugins and logs.
#include <gst/sdp/gstsdpmessage.h>

#include "peers.hpp"

namespace {

GstSDPMessage *parsed(const std::string &text) {
    GstSDPMessage *message = nullptr;
    gst_sdp_message_new(&message);
    if (gst_sdp_message_parse_buffer(reinterpret_cast<const guint8 *>(text.data()),
                                     static_cast<guint>(text.size()), message) != GST_SDP_OK) {
        gst_sdp_message_free(message);
        return nullptr;
    }
    return message;
}

class Kept final : public bench::Parsed {
public:
    explicit Kept(GstSDPMessage *message) : message_(message) {}
    ~Kept() override { gst_sdp_message_free(message_); }
    Kept(const Kept &) = delete;
    Kept &operator=(const Kept &) = delete;

    bool print() override {
        gchar *const text = gst_sdp_message_as_text(message_);
        g_free(text);
        return text != nullptr;
    }

    std::string printed() override {
        gchar *const text = gst_sdp_message_as_text(message_);
        const std::string copy = text == nullptr ? "" : text;
        g_free(text);
        return copy;
    }

private:
    GstSDPMessage *message_;
};

bool parse(const std::string &text) {
    GstSDPMessage *const message = parsed(text);
    if (message != nullptr) {
        gst_sdp_message_free(message);
    }
    return message != nullptr;
}

std::unique_ptr<bench::Parsed> keep(const std::string &text) {
    GstSDPMessage *const message = parsed(text);
    return message == nullptr ? nullptr : std::make_unique<Kept>(message);
}

[[maybe_unused]] const bool added = bench::addPeer({"gstreamer", parse, keep});

} // namespace

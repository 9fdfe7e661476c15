// The SDP parser of sofia-sip. The parser owns what it reads, and the printer what it writes; each
// is freed with one call. They are set to keep and to write what they leave out by default: rtpmaps
// of payloads that are not in the m= line, and the default direction.
#include <sofia-sip/sdp.h>

#include "peers.hpp"

namespace {

struct Sofia {
    static sdp_parser_t *parse(const std::string &text) {
        sdp_parser_t *const parser =
            sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), sdp_f_all_rtpmaps);
        if (sdp_session(parser) == nullptr) {
            sdp_parser_free(parser);
            return nullptr;
        }
        return parser;
    }

    static void release(sdp_parser_t *parser) { sdp_parser_free(parser); }

    static bool print(sdp_parser_t *parser, std::string *copy) {
        sdp_printer_t *const printer =
            sdp_print(nullptr, sdp_session(parser), nullptr, 0, sdp_f_mode_always);
        const char *const text = sdp_message(printer);
        if (text != nullptr && copy != nullptr) {
            *copy = text;
        }
        sdp_printer_free(printer);
        return text != nullptr;
    }
};

[[maybe_unused]] const bool added = bench::addPeer<Sofia>("sofia");

} // namespace

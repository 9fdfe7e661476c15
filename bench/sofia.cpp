// The SDP parser of sofia-sip. The parser is its own memory home, as is the printer; both go with
// one call. It is told to keep and to write what it leaves away by default: rtpmaps of payloads
// that the m= line lacks, and the default direction.
#include <sofia-sip/sdp.h>

#include "peers.hpp"

namespace {

class Kept final : public bench::Parsed {
public:
    explicit Kept(sdp_parser_t *parser) : parser_(parser) {}
    ~Kept() override { sdp_parser_free(parser_); }
    Kept(const Kept &) = delete;
    Kept &operator=(const Kept &) = delete;

    bool print() override {
        sdp_printer_t *const printer = printerOf();
        const bool done = sdp_message(printer) != nullptr;
        sdp_printer_free(printer);
        return done;
    }

    std::string printed() override {
        sdp_printer_t *const printer = printerOf();
        const char *const text = sdp_message(printer);
        const std::string copy = text == nullptr ? "" : text;
        sdp_printer_free(printer);
        return copy;
    }

private:
    sdp_printer_t *printerOf() {
        return sdp_print(nullptr, sdp_session(parser_), nullptr, 0, sdp_f_mode_always);
    }

    sdp_parser_t *parser_;
};

// Null when the text is refused.
sdp_parser_t *parsed(const std::string &text) {
    sdp_parser_t *const parser =
        sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), sdp_f_all_rtpmaps);
    if (sdp_session(parser) == nullptr) {
        sdp_parser_free(parser);
        return nullptr;
    }
    return parser;
}

bool parse(const std::string &text) {
    sdp_parser_t *const parser = parsed(text);
    if (parser != nullptr) {
        sdp_parser_free(parser);
    }
    return parser != nullptr;
}

std::unique_ptr<bench::Parsed> keep(const std::string &text) {
    sdp_parser_t *const parser = parsed(text);
    return parser == nullptr ? nullptr : std::make_unique<Kept>(parser);
}

[[maybe_unused]] const bool added = bench::addPeer({"sofia", parse, keep});

} // namespace

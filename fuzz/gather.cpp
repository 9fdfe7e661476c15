// The parsers of a text line and of an rtpmap, called at any position of the lexer, accept what the
// model accepts token by token, and leave the lexer in the state of the model.
#include <cstdlib>

#include "lexers.hpp"

namespace {

using fuzz::require;
using support::LexerModel;

constexpr uint32_t kMaxName = 255;

// Memory for the hooks of the parser.
void *allocate(uint32_t size) {
    return std::calloc(1, size == 0 ? 1 : size);
}

void release(void *bytes) {
    std::free(bytes);
}

// Text that a parser stored.
std::string take(SipString &text) {
    const std::string bytes(text.pcData != nullptr ? text.pcData : "", text.ulLen);
    release(text.pcData);
    return bytes;
}

// ---- The work of the parsers on the model. Unless something is tested before, they first switch
// the context and ignore the result.

bool take(LexerModel &model, uint32_t kind, uint32_t context) {
    model.context = context;
    return model.match(kind);
}

// <key>= value LF
bool takeText(LexerModel &model, uint32_t kind, std::string &value) {
    if (!take(model, kind, SDP_LEXCTX_STRING) || model.kind == SDP_TOK_LF ||
        model.input[model.start] == '\0') {
        return false;
    }
    const auto rest = model.gatherRestOfLine(SDP_MAX_VALUE);
    value = rest.value_or("");
    return rest && take(model, SDP_TOK_LF, SDP_LEXCTX_SDP);
}

// 1*DIGIT, modulo 2^32
bool takeNumber(LexerModel &model, uint32_t &value) {
    const auto digits = model.kind == SDP_TOK_DIGIT ? model.tokenText() : std::nullopt;
    if (!digits) {
        return false;
    }
    value = 0;
    for (const char digit : *digits) {
        if (digit < '0' || digit > '9') {
            break;
        }
        value = value * 10 + static_cast<uint32_t>(digit - '0');
    }
    return take(model, SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM);
}

// ":" payload SP name "/" clock-rate [ "/" channels ] LF
bool takeRtpmap(LexerModel &model, SDPRtpMapAttr &numbers, std::string &name) {
    if (!take(model, SDP_TOK_COLON, SDP_LEXCTX_ALNUM) ||
        !takeNumber(model, numbers.ulPayloadType) || model.kind != SDP_TOK_SPACE ||
        !take(model, SDP_TOK_SPACE, SDP_LEXCTX_CHAR)) {
        return false;
    }
    const auto gathered = model.gatherToSlash(kMaxName);
    name = gathered.value_or("");
    if (!gathered || !take(model, SDP_TOK_SLASH, SDP_LEXCTX_ALNUM) ||
        !takeNumber(model, numbers.ulClockRate)) {
        return false;
    }
    if (take(model, SDP_TOK_SLASH, SDP_LEXCTX_ALNUM)) {
        return takeNumber(model, numbers.ulEncodingParams) &&
               take(model, SDP_TOK_LF, SDP_LEXCTX_SDP);
    }
    numbers.ulEncodingParams = 1;
    return model.kind == SDP_TOK_LF && take(model, SDP_TOK_LF, SDP_LEXCTX_SDP);
}

// ---- Both

void textBoth(LexerModel &model, uint32_t kind) {
    std::string expected;
    const bool fits = takeText(model, kind, expected);
    SipString value = {};
    const SDPResult result = sdpStringField(kind, &value);
    const std::string text = take(value);
    require((result == 0) == fits, "a text is taken as from the model");
    require(!fits || text == expected, "the text is the model's");
}

void rtpmapBoth(LexerModel &model) {
    SDPRtpMapAttr expected = {};
    std::string expectedName;
    const bool fits = takeRtpmap(model, expected, expectedName);
    SDPAttr attr = {};
    const SDPResult result = sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP);
    SDPRtpMapAttr &value = attr.unAttrValue.stRtpMap;
    const std::string name = take(value.strEncodingName);
    require((result == 0) == fits, "an rtpmap is taken as from the model");
    if (fits) {
        require(name == expectedName, "the name is the model's");
        require(value.ulPayloadType == expected.ulPayloadType, "the payload is the model's");
        require(value.ulClockRate == expected.ulClockRate, "the clock rate is the model's");
        require(value.ulEncodingParams == expected.ulEncodingParams,
                "the channels are the model's");
    }
}

// One step of both, chosen from those that leave them at a token.
void step(fuzz::Lexers &lexers, fuzz::Input &input) {
    const uint32_t choice = input.below(16);
    LexerModel &model = lexers.model();
    if (choice < 2 && model.kind != SDP_TOK_EOF && model.ended != 1) {
        choice == 0 ? textBoth(model, model.kind) : rtpmapBoth(model);
        lexers.shareTextBuffer();
    } else if (choice < 4) {
        lexers.switchTo(SDP_LEXCTX_SDP + input.below(SDP_LEXCTX_IPV6));
    } else if (choice < 5) {
        lexers.jump(input);
    } else {
        lexers.advance();
    }
    lexers.compare();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const uint32_t steps = input.byte();
    const std::string_view text = input.front(input.rest().size() * 3 / 4);
    SdpSetFnAlloc(allocate);
    SdpSetFnFree(release);
    fuzz::Lexers lexers(text);
    lexers.switchTo(SDP_LEXCTX_SDP);
    for (uint32_t i = 0; i < steps; ++i) {
        step(lexers, input);
    }
    SdpSetFnAlloc(nullptr);
    SdpSetFnFree(nullptr);
    return 0;
}

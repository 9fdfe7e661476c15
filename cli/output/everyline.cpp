#include "output/everyline.hpp"

#include <string>

#include "input/body.hpp"
#include "sdpline/sdpinternals.h"

namespace cli {

namespace {

// ---- Memory: the hooks over a block that goes when the lines are judged

SDPMemCp *block = nullptr;

void *allocateFromBlock(uint32_t size) {
    return block->pfnAlloc(block, size);
}

void freeToBlock(void *memory) {
    block->pfnFree(memory);
}

class HooksOverBlock {
public:
    HooksOverBlock() : alloc_(SdpGetFnAlloc()), free_(SdpGetFnFree()) {
        usable_ = SipMmCreateBufMem(512, 1024, &block) == 0;
        SdpSetFnAlloc(allocateFromBlock);
        SdpSetFnFree(freeToBlock);
    }
    ~HooksOverBlock() {
        SdpSetFnAlloc(alloc_);
        SdpSetFnFree(free_);
        SipMmReleaseBufMem(&block);
    }
    HooksOverBlock(const HooksOverBlock &) = delete;
    HooksOverBlock &operator=(const HooksOverBlock &) = delete;

    bool usable() const { return usable_; }

private:
    SdpFnAlloc alloc_;
    SdpFnFree free_;
    bool usable_;
};

// ---- One line

struct Line {
    std::string text;            // as the parser gets it
    std::vector<size_t> offsets; // of its bytes in the body, and of its end
};

// The line that begins there, in the parser's normal form: no CR of CR LF, no blanks at its start
// unless it is the first, no NUL bytes. `next` becomes the offset of the line behind it.
Line normalLine(std::string_view body, size_t begin, size_t &next) {
    const size_t feed = body.find('\n', begin);
    size_t end = feed != std::string_view::npos ? feed : body.size();
    next = feed != std::string_view::npos ? feed + 1 : body.size();
    end -= feed != std::string_view::npos && end > begin && body[end - 1] == '\r' ? 1 : 0;
    Line line;
    for (size_t at = begin; at < end; ++at) {
        const bool leading = line.text.empty() && begin != 0 && body[at] == ' ';
        if (body[at] != '\0' && !leading) {
            line.text += body[at];
            line.offsets.push_back(at);
        }
    }
    line.offsets.push_back(end);
    return line;
}

// The parser that a kind of line has, and a short body in which such a line may come next.
struct Judge {
    uint32_t kind;
    SDPResult (*parse)();
    std::string_view before;
};

constexpr std::string_view kNothing = "";
constexpr std::string_view kVersion = "v=0\n";
constexpr std::string_view kOrigin = "v=0\no=- 0 0 IN IP4 0\n";
constexpr std::string_view kName = "v=0\no=- 0 0 IN IP4 0\ns=-\n";
constexpr std::string_view kTime = "v=0\no=- 0 0 IN IP4 0\ns=-\nt=0 0\n";

template <class Record, SDPResult (*Parser)(Record *)>
SDPResult parseInto() {
    Record record = {};
    return Parser(&record);
}

template <uint32_t Kind>
SDPResult parseText() {
    SipString text = {};
    return sdpStringField(Kind, &text);
}

constexpr Judge kJudges[] = {
    {SDP_TOK_VERSION, parseInto<SdpLine, sdpProtoVersion>, kNothing},
    {SDP_TOK_ORIGIN, parseInto<SDPOrigin, sdpOriginField>, kVersion},
    {SDP_TOK_SESSION_NAME, parseText<SDP_TOK_SESSION_NAME>, kOrigin},
    {SDP_TOK_INFO, parseText<SDP_TOK_INFO>, kName},
    {SDP_TOK_URI, parseText<SDP_TOK_URI>, kName},
    {SDP_TOK_EMAIL, parseText<SDP_TOK_EMAIL>, kName},
    {SDP_TOK_PHONE, parseText<SDP_TOK_PHONE>, kName},
    {SDP_TOK_CONNECTION, parseInto<SDPConnection, sdpConnectionField>, kName},
    {SDP_TOK_BANDWIDTH, parseText<SDP_TOK_BANDWIDTH>, kName},
    {SDP_TOK_TIME, parseInto<SDPTimeField, sdpTimeField>, kName},
    {SDP_TOK_REPEAT, parseInto<SDPRepeatField, sdpRepeatField>, kTime},
    {SDP_TOK_ZONE, parseText<SDP_TOK_ZONE>, kTime},
    {SDP_TOK_KEY, parseText<SDP_TOK_KEY>, kTime},
    {SDP_TOK_ATTRIBUTE, parseInto<SDPAttr, sdpAttributeField>, kTime},
    {SDP_TOK_MEDIA, parseInto<SDPMediaField, sdpMediaField>, kName},
};

const Judge *judgeOf(uint32_t kind) {
    for (const Judge &judge : kJudges) {
        if (judge.kind == kind) {
            return &judge;
        }
    }
    return nullptr;
}

// The parser's place is where the lexer stands. A word that was judged lies before it; only a
// decode tells where, so the line is decoded once more behind lines that it may follow.
size_t placeIn(const Line &line, const Judge &judge, SDPResult result, size_t lexerAt) {
    const Decoded decoded = decodeBody(std::string(judge.before) + line.text);
    const size_t offset = decoded.failure.ulOffset;
    const bool same = decoded.result == result && offset >= judge.before.size() &&
                      offset - judge.before.size() < line.offsets.size();
    const size_t at = same ? offset - judge.before.size() : lexerAt;
    return line.offsets[at < line.offsets.size() ? at : line.offsets.size() - 1];
}

// Adds the line's fault, if it has one. The parsers want an empty line behind their own.
void judge(const Line &line, std::vector<LineFault> &faults) {
    std::string input = line.text + "\n\n";
    const SipString text = {static_cast<uint32_t>(input.size()), input.data()};
    SDPResult result = 0;
    uint32_t token = 0;
    size_t lexerAt = 0;
    const Judge *judge = nullptr;
    {
        const HooksOverBlock hooks;
        if (!hooks.usable()) {
            return;
        }
        clearSdpLexer();
        setInput(&text);
        setLexerContext(SDP_LEXCTX_SDP);
        judge = judgeOf(startTracking());
        result = judge != nullptr ? judge->parse() : 0;
        token = LA();
        lexerAt = sdpGetStartToken();
        clearSdpLexer();
    }
    if (judge == nullptr) {
        faults.push_back({0, token, line.offsets.front()});
    } else if (result != 0) {
        faults.push_back({result, token, placeIn(line, *judge, result, lexerAt)});
    }
}

} // namespace

std::vector<LineFault> judgeLines(std::string_view body, size_t refusedAt) {
    std::vector<LineFault> faults;
    const size_t feed = body.find('\n', refusedAt);
    size_t next = feed != std::string_view::npos ? feed + 1 : body.size();
    while (next < body.size()) {
        const Line line = normalLine(body, next, next);
        if (line.text.empty()) {
            break;
        }
        judge(line, faults);
    }
    return faults;
}

} // namespace cli

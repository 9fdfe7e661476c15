// Compares the lexer with its model on random inputs and random operations: after every operation
// all getters return the same. The seed is fixed.
#include "lexer/lexertest.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string_view>
#include <type_traits>
#include <vector>

#include "lexer/state.hpp"
#include "support/lexermodel.hpp"
#include "text/scan.hpp"

namespace {

using sdpline::BodyLexer;
using sdpline::StateLexer;
using support::LexerModel;
using support::LexerTest;

class Random {
public:
    explicit Random(uint32_t seed) : engine_(seed) {}

    uint32_t below(uint32_t bound) { return static_cast<uint32_t>(engine_() % bound); }
    bool oneIn(uint32_t n) { return below(n) == 0; }

    // Bytes that the contexts treat differently, sometimes any byte, and long runs.
    std::string input() {
        static constexpr std::string_view kinds[] = {
            "IN IP4 IP6 X-", "osvuiepcbtkamrz=", "=========",
            " \t\n\r",       "0123456789",       "abcXYZ",
            "--::..//",      "<>();:@,",         "!\"#$%&'*+?[]^_`{|}~\\",
        };
        std::string text;
        for (uint32_t parts = below(24); parts > 0; --parts) {
            const std::string_view kind = kinds[below(std::size(kinds))];
            if (oneIn(16)) {
                text += std::string(1, static_cast<char>(1 + below(255)));
            } else if (oneIn(40)) {
                text += std::string(1000 + below(60), kind[below(size(kind))]);
            } else if (oneIn(3)) {
                const uint32_t from = below(size(kind));
                text += kind.substr(from, 1 + below(5));
            } else {
                text += std::string(1 + below(3), kind[below(size(kind))]);
            }
        }
        return text;
    }

private:
    static uint32_t size(std::string_view text) { return static_cast<uint32_t>(text.size()); }

    std::mt19937 engine_;
};

std::string padded(const std::string &text) {
    return text + '\0' + std::string(sdpline::lexer::kPadding - 1, 'a');
}

class LexerModelTest : public LexerTest {
protected:
    // Both at the start of the same bytes.
    void start(std::string text, uint32_t context) {
        if (padded_) {
            std::ranges::replace(text, '\r', 'r'); // which would end lines, as in a body
        }
        use(padded_ ? padded(text) : text, context);
        size_ = static_cast<uint32_t>(text.size());
        std::memset(sdpGetThrowAwayBuffer(), '#', 1024);
        model_ = {};
        model_.text.fill('#');
        model_.input = sdpGetInput();
        model_.context = context;
        done_.clear();
    }

    void compare() {
        ASSERT_EQ(sdpGetStartToken(), model_.start);
        ASSERT_EQ(sdpGetEndToken(), model_.end);
        ASSERT_EQ(sdpGetIndex(), model_.index);
        ASSERT_EQ(sdpGetLastChar(), model_.last);
        ASSERT_EQ(sdpGetTToken(), model_.kind);
        ASSERT_EQ(LA(), model_.kind);
        ASSERT_EQ(sdpGetEnd(), model_.ended);
        ASSERT_EQ(sdpGetLexerContext(), model_.context);
        ASSERT_EQ(sdpGetInput(), model_.input);
    }

    // Runs an operation on the lexer of the state or, like a parse that knows the bytes after its
    // input, on one that does not check for special places.
    template <class Operation>
    auto onLexer(const Operation &operation) const {
        StateLexer lexer = sdpline::lexer::load();
        if (padded_ && lexer.special == 0) {
            BodyLexer body = {lexer, {}};
            return stored(body, operation);
        }
        return stored(lexer, operation);
    }

    template <class Lexer, class Operation>
    static auto stored(Lexer &lexer, const Operation &operation) {
        const auto result = operation(lexer);
        sdpline::lexer::store(lexer);
        return result;
    }

    // ---- One operation on both

    // Where nothing is special, the value of digits is computed while they are cut.
    static void compareCounted(const sdpline::Position &position) {
        const std::string_view digits = {reinterpret_cast<const char *>(position.at),
                                         static_cast<size_t>(position.end - position.at)};
        EXPECT_EQ(position.counted, sdpline::scanNumber(digits));
    }

    void consumeBoth(Random &) {
        if (padded_ && model_.context >= SDP_LEXCTX_SDP && model_.context <= SDP_LEXCTX_IPV6) {
            onLexer([&](auto &lexer) {
                lexer.advance(model_.context);
                if (model_.context == SDP_LEXCTX_ALNUM && lexer.special == 0 &&
                    lexer.is(SDP_TOK_DIGIT)) {
                    compareCounted(lexer);
                }
                return true;
            });
        } else {
            consume();
        }
        model_.consume();
    }

    bool isAtRun() const {
        switch (model_.context) {
        case SDP_LEXCTX_STRING: return model_.kind == SDP_TOK_STRING;
        case SDP_LEXCTX_TOKEN: return model_.kind == SDP_TOK_TOKEN;
        case SDP_LEXCTX_ALNUM: return model_.kind == SDP_TOK_DIGIT;
        default: return false;
        }
    }

    void advanceAfterRun() {
        onLexer([&](auto &lexer) {
            lexer.advanceAfterRun(model_.context);
            return true;
        });
        model_.consume();
    }

    void switchBoth(uint32_t context) {
        done_ += std::to_string(context) + ' ';
        setLexerContext(context);
        model_.context = context;
    }

    void switchToAny(Random &random) {
        switchBoth(random.oneIn(6) ? random.below(12) : 1 + random.below(6));
    }

    void matchAny(Random &random) {
        const uint32_t kind = random.oneIn(2) ? LA() : random.below(70);
        const bool matched = sdp_match(kind) != 0;
        EXPECT_EQ(matched, model_.match(kind));
    }

    void classifyBoth(Random &) {
        if (model_.start + model_.index <= size_) {
            const uint32_t kind = nextToken();
            EXPECT_EQ(kind, model_.nextToken());
        }
    }

    void markBoth(Random &) {
        if (model_.end < size_) { // or the next token would begin after the NUL
            mark();
            model_.mark();
        }
    }

    void clearBoth(Random &random) {
        if (random.oneIn(8)) {
            EXPECT_EQ(clearSdpLexer(), 1u);
            model_.clear();
        }
    }

    void startBoth(Random &) {
        const uint32_t kind = startTracking();
        EXPECT_EQ(kind, model_.startTracking());
    }

    // Any position in the input, as setters can set it.
    void jump(Random &random) {
        if (size_ == 0) {
            return;
        }
        model_.start = random.below(size_);
        model_.end = model_.start + (random.oneIn(4) ? 0 : random.below(size_ - model_.start));
        model_.index = 0;
        model_.kind = random.below(70);
        model_.last = static_cast<uint8_t>(random.below(256));
        model_.ended = random.oneIn(8) ? 2 : 0;
        model_.impose();
    }

    // An incomplete token.
    void build(Random &random) {
        if (model_.start < size_ && random.oneIn(3)) {
            model_.index = random.below(size_ - model_.start + 1);
            sdpSetIndex(model_.index);
        }
    }

    void readText(Random &) {
        const std::optional<std::string> expected = model_.tokenText();
        const char *const text = LT();
        ASSERT_EQ(text != nullptr, expected.has_value());
        if (text != nullptr) {
            EXPECT_EQ(text, *expected);
        }
        EXPECT_EQ(std::memcmp(sdpGetThrowAwayBuffer(), model_.text.data(), 1024), 0);
    }

    void fillBuffer(Random &random) {
        const std::string bytes = random.input().substr(0, random.below(20));
        sdpSetThrowAwayBuffer(reinterpret_cast<const uint8_t *>(bytes.data()),
                              static_cast<int32_t>(bytes.size()));
        std::memcpy(model_.text.data(), bytes.data(), bytes.size());
    }

    struct Operation {
        const char *name;
        void (LexerModelTest::*run)(Random &random);
    };
    static const Operation kOperations[10];

    void operate(Random &random) {
        static constexpr Operation mostly = {"consume", &LexerModelTest::consumeBoth};
        const Operation &operation =
            random.oneIn(2) ? mostly : kOperations[random.below(std::size(kOperations))];
        done_ += operation.name;
        done_ += ' ';
        SCOPED_TRACE(done_);
        (this->*operation.run)(random);
        compare();
    }

    // ---- The fast operations compared with token by token

    // Both on a token of the context at any position in the input, or at its end.
    void moveAnywhere(Random &random, uint32_t context) {
        switchBoth(context);
        if (!random.oneIn(4) && size_ != 0) {
            jump(random);
        }
        for (uint32_t steps = 1 + random.below(3); steps > 0; --steps) {
            consumeBoth(random);
        }
    }

    void compareRestOfLine(uint32_t limit) {
        std::string_view rest;
        const bool fits = onLexer([&](auto &lexer) { return lexer.takeRestOfLine(rest, limit); });
        const std::optional<std::string> expected = model_.gatherRestOfLine(limit);
        ASSERT_EQ(fits, expected.has_value());
        if (fits) {
            EXPECT_EQ(rest, *expected);
        }
        compare();
    }

    void compareBytesToSlash(uint32_t limit) {
        std::string_view bytes;
        const bool fits =
            onLexer([&](auto &lexer) { return lexer.takeBytesToSlash(bytes, limit); });
        const std::optional<std::string> expected = model_.gatherToSlash(limit);
        ASSERT_EQ(fits, expected.has_value());
        if (fits) {
            EXPECT_EQ(bytes, *expected);
        }
        compare();
    }

    LexerModel model_;
    bool padded_ = false; // bytes that may be read follow the input
    uint32_t size_ = 0;
    std::string done_;
};

const LexerModelTest::Operation LexerModelTest::kOperations[10] = {
    {"switch", &LexerModelTest::switchToAny}, {"match", &LexerModelTest::matchAny},
    {"next", &LexerModelTest::classifyBoth},  {"mark", &LexerModelTest::markBoth},
    {"clear", &LexerModelTest::clearBoth},    {"start", &LexerModelTest::startBoth},
    {"jump", &LexerModelTest::jump},          {"build", &LexerModelTest::build},
    {"text", &LexerModelTest::readText},      {"fill", &LexerModelTest::fillBuffer},
};

TEST_F(LexerModelTest, RandomOperationsLeaveTheSameState) {
    Random random(20240611);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const std::string text = random.input();
        SCOPED_TRACE(testing::PrintToString(text));
        padded_ = round % 2 != 0;
        start(text, random.below(8));
        for (uint32_t operations = 4 + random.below(60); operations > 0; --operations) {
            operate(random);
        }
    }
}

// Like the parser: one input from its start to its end.
TEST_F(LexerModelTest, RandomInputsAreCutTheSameFromStartToEnd) {
    Random random(7);
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        const std::string text = "v=" + random.input();
        SCOPED_TRACE(testing::PrintToString(text));
        padded_ = round % 2 != 0;
        start(text, SDP_LEXCTX_SDP);
        startBoth(random);
        compare();
        while (model_.ended != 1 && !HasFailure()) {
            switchBoth(1 + random.below(6));
            SCOPED_TRACE(done_);
            consumeBoth(random);
            compare();
            readText(random);
            if (isAtRun() && random.oneIn(2)) {
                advanceAfterRun();
                compare();
            }
        }
    }
}

TEST_F(LexerModelTest, RestsOfLinesAreGatheredAsTokenByToken) {
    Random random(4711);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const std::string text = random.input();
        SCOPED_TRACE(testing::PrintToString(text));
        padded_ = round % 2 != 0;
        start(text, SDP_LEXCTX_STRING);
        moveAnywhere(random, SDP_LEXCTX_STRING);
        compareRestOfLine(random.oneIn(3) ? 1023 : random.below(40));
    }
}

TEST_F(LexerModelTest, ARestOfLineFitsUpToItsLimit) {
    for (uint32_t limit = 0; limit < 16; ++limit) {
        for (const std::string text :
             {"s=ab cd\tef  g\nx", "s=ab cd\tef  g", "s=\nx", "s=", "s=a b"}) {
            SCOPED_TRACE(text + ' ' + std::to_string(limit));
            start(text, SDP_LEXCTX_SDP);
            Random random(1);
            startBoth(random);
            switchBoth(SDP_LEXCTX_STRING);
            consumeBoth(random);
            compareRestOfLine(limit);
        }
    }
}

// The token at offset 0 comes again and again, so that the rest of its line never fits.
TEST_F(LexerModelTest, ARestOfLineAfterOffset0NeverFits) {
    for (const std::string text : {"x yz\n", " xyz\n", "\txyz", "x", "x\n", "xy z\n", "\nx", ""}) {
        for (const uint32_t limit : {0u, 1u, 2u, 3u, 4u, 5u, 1023u}) {
            SCOPED_TRACE(testing::PrintToString(text) + ' ' + std::to_string(limit));
            start(text, SDP_LEXCTX_STRING);
            Random random(1);
            startBoth(random);
            compareRestOfLine(limit);
        }
    }
}

TEST_F(LexerModelTest, BytesToASlashAreGatheredAsByteByByte) {
    Random random(815);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const std::string text = random.input();
        SCOPED_TRACE(testing::PrintToString(text));
        padded_ = round % 2 != 0;
        start(text, SDP_LEXCTX_CHAR);
        moveAnywhere(random, SDP_LEXCTX_CHAR);
        compareBytesToSlash(random.oneIn(3) ? 255 : random.below(20));
    }
}

TEST_F(LexerModelTest, BytesToASlashFitUpToTheirLimit) {
    for (uint32_t limit = 0; limit < 9; ++limit) {
        for (const std::string text : {"5 L16 x/8000\n", "5 ab\n", "5 ab", "5 /8", "5 \n", "5 "}) {
            SCOPED_TRACE(testing::PrintToString(text) + ' ' + std::to_string(limit));
            start(text, SDP_LEXCTX_CHAR);
            Random random(1);
            sdpSetStartToken(1);
            sdpSetEndToken(1);
            model_.start = 1;
            model_.end = 1;
            consumeBoth(random);
            compareBytesToSlash(limit);
        }
    }
}

// The byte at offset 0 comes again and again, so that no slash is ever reached.
TEST_F(LexerModelTest, BytesAfterOffset0NeverReachASlash) {
    for (const std::string text : {"ab/8\n", "a/\n", "a\n", "ab", "/ab", "\nab", ""}) {
        for (const uint32_t limit : {0u, 1u, 2u, 3u, 255u}) {
            SCOPED_TRACE(testing::PrintToString(text) + ' ' + std::to_string(limit));
            start(text, SDP_LEXCTX_CHAR);
            Random random(1);
            startBoth(random);
            compareBytesToSlash(limit);
        }
    }
}

// ---- Bodies compared with their normal forms

// A body with CR LF and LF at its line ends and spaces before its lines; its normal form; and the
// position of each byte in it.
struct TwoForms {
    std::string body = "v=";
    std::string normal = "v=";
    std::vector<uint32_t> offsets = {0, 1};

    TwoForms(const std::string &text, Random &random) {
        for (const char byte : text) {
            if (byte == '\n') {
                endLine(random);
            } else if (byte != '\r' && (byte != ' ' || normal.back() != '\n')) {
                add(byte);
                normal += byte;
            }
        }
        add('\0');
    }

private:
    void add(char byte) {
        body += byte;
        offsets.push_back(static_cast<uint32_t>(normal.size()));
    }

    void endLine(Random &random) {
        if (!random.oneIn(3)) {
            add('\r');
        }
        add('\n');
        normal += '\n';
        for (uint32_t spaces = random.oneIn(3) ? random.below(4) : 0; spaces > 0; --spaces) {
            add(' ');
        }
    }
};

// The lexer of a body on its first token, and the model on that of the normal form.
template <class Lexer>
class BodyBesideModel {
public:
    BodyBesideModel(const TwoForms &forms, Random &random)
        : forms_(forms), random_(random), bytes_(padded(forms.body)) {
        model_.input = reinterpret_cast<const uint8_t *>(forms.normal.c_str());
        model_.context = SDP_LEXCTX_SDP;
        model_.startTracking();
    }
    BodyBesideModel(const BodyBesideModel &) = delete;
    BodyBesideModel &operator=(const BodyBesideModel &) = delete;
    // The text taken last is in bytes_, until it is copied.
    ~BodyBesideModel() { sdpline::lexer::publishText(); }

    void run() {
        while (model_.kind != SDP_TOK_EOF && !testing::Test::HasFailure()) {
            const uint32_t context = 1 + random_.below(6);
            if (random_.oneIn(4) && model_.kind != SDP_TOK_LF) {
                gather(context);
            } else {
                const bool toDigits =
                    context == SDP_LEXCTX_ALNUM && !lexer_.is(SDP_TOK_LF) && random_.oneIn(2);
                EXPECT_TRUE(toDigits ? lexer_.takeToDigits(model_.kind)
                                     : lexer_.take(model_.kind, context));
                model_.context = context;
                model_.match(model_.kind);
            }
            compare();
        }
    }

private:
    static Lexer first(const std::string &bytes) {
        const auto *const input = reinterpret_cast<const uint8_t *>(bytes.data());
        const BodyLexer lexer = {{.input = input,
                                  .at = input,
                                  .end = input + 2,
                                  .kind = SDP_TOK_VERSION,
                                  .context = SDP_LEXCTX_SDP,
                                  .last = '=',
                                  .counted = 0},
                                 {}};
        if constexpr (std::is_same_v<Lexer, BodyLexer>) {
            return lexer;
        } else {
            return lexer.anywhere();
        }
    }

    // A rest of line, or the bytes to a slash.
    void gather(uint32_t context) {
        const bool line = context == SDP_LEXCTX_STRING;
        const uint32_t limit = random_.oneIn(2) ? 1023 : random_.below(30);
        EXPECT_TRUE(lexer_.take(model_.kind, line ? SDP_LEXCTX_STRING : SDP_LEXCTX_CHAR));
        model_.context = line ? SDP_LEXCTX_STRING : SDP_LEXCTX_CHAR;
        model_.match(model_.kind);
        std::string_view bytes;
        const bool fits =
            line ? lexer_.takeRestOfLine(bytes, limit) : lexer_.takeBytesToSlash(bytes, limit);
        const std::optional<std::string> expected =
            line ? model_.gatherRestOfLine(limit) : model_.gatherToSlash(limit);
        ASSERT_EQ(fits, expected.has_value());
        if (fits) {
            EXPECT_EQ(bytes, *expected);
        }
    }

    void compare() {
        ASSERT_EQ(lexer_.kind, model_.kind);
        EXPECT_EQ(lexer_.context, model_.context);
        EXPECT_EQ(forms_.offsets[static_cast<size_t>(lexer_.at - lexer_.input)], model_.start);
        EXPECT_EQ(lexer_.last == '\r' ? '\n' : lexer_.last, model_.last);
        const bool hasText = std::is_same_v<Lexer, StateLexer> || !lexer_.is(SDP_TOK_LF);
        if (hasText && !lexer_.is(SDP_TOK_EOF)) {
            const std::string_view text = lexer_.text();
            const std::optional<std::string> expected = model_.tokenText();
            ASSERT_EQ(text.data() != nullptr, expected.has_value());
            EXPECT_EQ(text, expected.value_or(""));
        }
    }

    const TwoForms &forms_;
    Random &random_;
    const std::string bytes_;
    Lexer lexer_ = first(bytes_);
    LexerModel model_;
};

TEST_F(LexerModelTest, BodiesAreCutAsTheirNormalForms) {
    Random random(2811);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const TwoForms forms(random.input() + '\n' + random.input() + '\n', random);
        SCOPED_TRACE(testing::PrintToString(forms.body));
        if (round % 2 != 0) {
            BodyBesideModel<BodyLexer>(forms, random).run();
        } else {
            BodyBesideModel<StateLexer>(forms, random).run();
        }
    }
}

} // namespace

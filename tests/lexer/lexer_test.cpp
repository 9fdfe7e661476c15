// The tokens of the six contexts. The kinds of the 256 bytes are numbers here.
#include "lexer/lexertest.hpp"

#include <array>
#include <cstring>

namespace {

using support::LexerTest;
using support::Token;
using support::Tokens;

// Kinds of the bytes 0 to 127; all bytes above are 28. Eight bytes a row.
constexpr std::array<uint32_t, 128> kKinds = {
    30, 28, 28, 28, 28, 28, 28, 28,
    28, 32, 15, 28, 28, 28, 28, 28, // control bytes
    28, 28, 28, 28, 28, 28, 28, 28,
    28, 28, 28, 28, 28, 28, 28, 28, //
    31, 8,  16, 27, 23, 9,  22, 7,
    25, 26, 12, 5,  24, 6,  13, 18, //   ! " # $ % & ' ( ) * + , - . /
    3,  3,  3,  3,  3,  3,  3,  3,
    3,  3,  20, 17, 33, 14, 34, 19, // 0 to 9, : ; < = > ?
    21, 2,  2,  2,  2,  2,  2,  2,
    2,  2,  2,  2,  2,  2,  2,  2, // @ A to O
    2,  2,  2,  2,  2,  2,  2,  2,
    2,  2,  2,  51, 60, 52, 53, 4, // P to Z [ \ ] ^ _
    11, 2,  2,  2,  2,  2,  2,  2,
    2,  2,  2,  2,  2,  2,  2,  2, // ` a to o
    2,  2,  2,  2,  2,  2,  2,  2,
    2,  2,  2,  54, 55, 56, 10, 28, // p to z { | } ~ DEL
};

uint32_t kindOf(int byte) {
    return byte < 128 ? kKinds[static_cast<size_t>(byte)] : 28;
}

std::string str(int byte) {
    return std::string(1, static_cast<char>(byte));
}

bool isOneOf(int byte, const char *set) {
    return byte != 0 && std::strchr(set, byte) != nullptr;
}

bool isAlnum(int byte) {
    return kindOf(byte) == 2 || kindOf(byte) == 3;
}

// ---- Kinds

TEST_F(LexerTest, NamesOfKindsHaveTheirNumbers) {
    EXPECT_EQ(SDP_TOK_ORIGIN, 35);
    EXPECT_EQ(SDP_TOK_SESSION_NAME, 36);
    EXPECT_EQ(SDP_TOK_VERSION, 37);
    EXPECT_EQ(SDP_TOK_URI, 38);
    EXPECT_EQ(SDP_TOK_INFO, 39);
    EXPECT_EQ(SDP_TOK_EMAIL, 40);
    EXPECT_EQ(SDP_TOK_PHONE, 41);
    EXPECT_EQ(SDP_TOK_CONNECTION, 42);
    EXPECT_EQ(SDP_TOK_BANDWIDTH, 43);
    EXPECT_EQ(SDP_TOK_TIME, 44);
    EXPECT_EQ(SDP_TOK_KEY, 45);
    EXPECT_EQ(SDP_TOK_ATTRIBUTE, 46);
    EXPECT_EQ(SDP_TOK_MEDIA, 47);
    EXPECT_EQ(SDP_TOK_REPEAT, 48);
    EXPECT_EQ(SDP_TOK_ZONE, 49);
    EXPECT_EQ(SDP_TOK_IN, 57);
    EXPECT_EQ(SDP_TOK_IP4, 58);
    EXPECT_EQ(SDP_TOK_IP6, 59);
    EXPECT_EQ(SDP_TOK_STRING, 61);
    EXPECT_EQ(SDP_TOK_X_DASH, 62);
    EXPECT_EQ(SDP_TOK_TOKEN, 64);
}

TEST_F(LexerTest, NamesOfSingleBytesHaveTheirNumbers) {
    const std::vector<std::pair<int, char>> kinds = {
        {SDP_TOK_ALPHA, 'q'},       {SDP_TOK_DIGIT, '7'},    {SDP_TOK_UNDERSCORE, '_'},
        {SDP_TOK_PLUS, '+'},        {SDP_TOK_MINUS, '-'},    {SDP_TOK_APOSTROPHE, '\''},
        {SDP_TOK_EXCLAMATION, '!'}, {SDP_TOK_PERCENT, '%'},  {SDP_TOK_TILDE, '~'},
        {SDP_TOK_BACKQUOTE, '`'},   {SDP_TOK_ASTERISK, '*'}, {SDP_TOK_DOT, '.'},
        {SDP_TOK_EQUAL, '='},       {SDP_TOK_LF, '\n'},      {SDP_TOK_DQUOTE, '"'},
        {SDP_TOK_SEMICOLON, ';'},   {SDP_TOK_SLASH, '/'},    {SDP_TOK_QUESTION, '?'},
        {SDP_TOK_COLON, ':'},       {SDP_TOK_AT, '@'},       {SDP_TOK_AMPERSAND, '&'},
        {SDP_TOK_DOLLAR, '$'},      {SDP_TOK_COMMA, ','},    {SDP_TOK_LPAREN, '('},
        {SDP_TOK_RPAREN, ')'},      {SDP_TOK_HASH, '#'},     {SDP_TOK_OTHER, '\r'},
        {SDP_TOK_EOF, '\0'},        {SDP_TOK_SPACE, ' '},    {SDP_TOK_TAB, '\t'},
        {SDP_TOK_LESS, '<'},        {SDP_TOK_GREATER, '>'},  {SDP_TOK_LBRACKET, '['},
        {SDP_TOK_RBRACKET, ']'},    {SDP_TOK_CARET, '^'},    {SDP_TOK_LBRACE, '{'},
        {SDP_TOK_BAR, '|'},         {SDP_TOK_RBRACE, '}'},   {SDP_TOK_BACKSLASH, '\\'},
    };
    for (const auto &[kind, byte] : kinds) {
        EXPECT_EQ(static_cast<uint32_t>(kind), kindOf(byte)) << byte;
    }
}

TEST_F(LexerTest, NextTokenTellsTheKindOfEveryByteAndMovesNothing) {
    for (int byte = 0; byte < 256; ++byte) {
        use(str(byte), SDP_LEXCTX_SDP);
        EXPECT_EQ(nextToken(), kindOf(byte)) << byte;
        EXPECT_EQ(sdpGetLastChar(), byte);
        EXPECT_EQ(current(), (Token{0, 0, 0}));
        EXPECT_EQ(sdpGetIndex(), 0u);
        EXPECT_EQ(sdpGetEnd(), 0u) << "only a token sets the end";
    }
}

TEST_F(LexerTest, NextTokenLooksAtStartPlusIndex) {
    use("a1-\n", SDP_LEXCTX_SDP);
    sdpSetStartToken(1);
    sdpSetIndex(1);
    EXPECT_EQ(nextToken(), 6u);
    sdpSetIndex(2);
    EXPECT_EQ(nextToken(), 15u);
    EXPECT_EQ(sdpGetStartToken(), 1u);
    EXPECT_EQ(sdpGetIndex(), 2u);
}

// ---- Contexts: the first byte

TEST_F(LexerTest, EveryByteAloneIsATokenOfItsKindInFourContexts) {
    for (const uint32_t context :
         {SDP_LEXCTX_CHAR, SDP_LEXCTX_SDP, SDP_LEXCTX_ALNUM, SDP_LEXCTX_IPV6}) {
        for (int byte = 0; byte < 256; ++byte) {
            useInside(str(byte) + "\n", context);
            EXPECT_EQ(next(), (Token{kindOf(byte), 2, 2})) << byte << " in context " << context;
        }
    }
}

TEST_F(LexerTest, EveryByteButWhiteSpaceBeginsAStringInTheStringContext) {
    for (int byte = 0; byte < 256; ++byte) {
        useInside(str(byte) + "\n", SDP_LEXCTX_STRING);
        const bool alone = byte == 0 || isOneOf(byte, "\n\t ");
        EXPECT_EQ(next(), (Token{alone ? kindOf(byte) : 61, 2, 2})) << byte;
    }
}

TEST_F(LexerTest, EveryByteButSeparatorsBeginsATokenInTheTokenContext) {
    for (int byte = 0; byte < 256; ++byte) {
        useInside(str(byte) + "\n", SDP_LEXCTX_TOKEN);
        const bool alone = byte == 0 || isOneOf(byte, "\n\t <>();:@,");
        EXPECT_EQ(next(), (Token{alone ? kindOf(byte) : 64, 2, 2})) << byte;
    }
}

// ---- Contexts: the second byte

// The end of the token that begins with `first` at offset 2, followed by `second`.
#define EXPECT_RUN(context, first, second, continues, kind)                                        \
    do {                                                                                           \
        useInside(std::string(first) + str(second) + "\n", context);                               \
        EXPECT_EQ(next(), (Token{kind, 2, (continues) ? 3u : 2u})) << first << " then " << second; \
        EXPECT_EQ(sdpGetLastChar(), (continues) ? '\n' : second) << "the byte after the run";      \
    } while (false)

TEST_F(LexerTest, AStringGoesOnToWhiteSpaceOrTheEnd) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool continues = byte != 0 && !isOneOf(byte, "\n\t ");
        EXPECT_RUN(SDP_LEXCTX_STRING, "q", byte, continues, 61);
        EXPECT_RUN(SDP_LEXCTX_STRING, "(", byte, continues, 61);
    }
}

TEST_F(LexerTest, ATokenGoesOnToASeparatorOrTheEnd) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool continues = byte != 0 && !isOneOf(byte, "\n\t <>();:@,");
        EXPECT_RUN(SDP_LEXCTX_TOKEN, "q", byte, continues, 64);
        EXPECT_RUN(SDP_LEXCTX_TOKEN, "/", byte, continues, 64);
    }
}

TEST_F(LexerTest, LettersDigitsAndMinusEachRunAloneInTheAlnumContext) {
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_RUN(SDP_LEXCTX_ALNUM, "q", byte, kindOf(byte) == 2, 2);
        EXPECT_RUN(SDP_LEXCTX_ALNUM, "5", byte, kindOf(byte) == 3, 3);
        EXPECT_RUN(SDP_LEXCTX_ALNUM, "-", byte, byte == '-', 6);
    }
}

TEST_F(LexerTest, AnAddressGoesOnOverLettersDigitsColonAndDot) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool continues = isAlnum(byte) || byte == ':' || byte == '.';
        EXPECT_RUN(SDP_LEXCTX_IPV6, "f", byte, continues, continues ? kindOf(byte) : 2);
        EXPECT_RUN(SDP_LEXCTX_IPV6, "7", byte, continues, continues ? kindOf(byte) : 3);
        EXPECT_RUN(SDP_LEXCTX_IPV6, ":", byte, continues, continues ? kindOf(byte) : 20);
        EXPECT_RUN(SDP_LEXCTX_IPV6, ".", byte, continues, continues ? kindOf(byte) : 13);
    }
}

TEST_F(LexerTest, NoOtherByteBeginsARunInTheAlnumContext) {
    for (int byte = 1; byte < 256; ++byte) {
        if (!isAlnum(byte) && byte != '-') {
            useInside(str(byte) + str(byte) + "\n", SDP_LEXCTX_ALNUM);
            EXPECT_EQ(next(), (Token{kindOf(byte), 2, 2})) << byte;
            EXPECT_EQ(sdpGetLastChar(), byte) << "nothing after it was looked at";
        }
    }
}

TEST_F(LexerTest, NoOtherByteBeginsAnAddress) {
    for (int byte = 1; byte < 256; ++byte) {
        if (!isAlnum(byte) && byte != ':' && byte != '.') {
            useInside(str(byte) + "a\n", SDP_LEXCTX_IPV6);
            EXPECT_EQ(next(), (Token{kindOf(byte), 2, 2})) << byte;
            EXPECT_EQ(sdpGetLastChar(), byte);
        }
    }
}

TEST_F(LexerTest, ASeparatorStandsAloneThoughAnotherFollows) {
    for (const char byte : std::string("\n\t <>();:@,")) {
        useInside(str(byte) + str(byte), SDP_LEXCTX_TOKEN);
        EXPECT_EQ(next(), (Token{kindOf(byte), 2, 2})) << byte;
        EXPECT_EQ(sdpGetLastChar(), byte);
    }
}

TEST_F(LexerTest, EveryByteStandsAloneInTheCharContextWhateverFollows) {
    for (int byte = 1; byte < 256; ++byte) {
        useInside(std::string("o") + str(byte) + "\n", SDP_LEXCTX_CHAR);
        EXPECT_EQ(next(), (Token{2, 2, 2}));
        EXPECT_EQ(sdpGetLastChar(), 'o');
        EXPECT_EQ(next(), (Token{kindOf(byte), 3, 3})) << byte;
    }
}

// ---- The SDP context

TEST_F(LexerTest, FifteenSmallLettersBeginALine) {
    const std::string letters = "osvuiepcbtkamrz"; // kinds 35 to 49 in this order
    for (int byte = 1; byte < 256; ++byte) {
        useInside(str(byte) + "=\n", SDP_LEXCTX_SDP);
        const size_t place = letters.find(static_cast<char>(byte));
        if (place != std::string::npos) {
            EXPECT_EQ(next(), (Token{static_cast<uint32_t>(35 + place), 2, 3})) << byte;
        } else {
            EXPECT_EQ(next(), (Token{kindOf(byte), 2, 2})) << byte;
        }
        const bool letter = kindOf(byte) == 2;
        EXPECT_EQ(sdpGetLastChar(), letter ? '=' : byte) << "after a letter one byte is looked at";
    }
}

TEST_F(LexerTest, OfAllPairsOnlyLineKindsAndThreeWordsAreTwoBytesLong) {
    for (int first = 'A'; first <= 'z'; ++first) {
        for (int second = 1; second < 256; ++second) {
            if (kindOf(first) != 2 || second == '=') {
                continue;
            }
            const std::string pair = str(first) + str(second);
            useInside(pair + "\n", SDP_LEXCTX_SDP);
            const Token expected = pair == "IN"   ? Token{57, 2, 3}
                                   : pair == "X-" ? Token{62, 2, 3}
                                                  : Token{2, 2, 2};
            ASSERT_EQ(next(), expected) << pair;
            EXPECT_EQ(sdpGetLastChar(), pair == "IP" ? '\n' : second);
        }
    }
}

TEST_F(LexerTest, OnlyFourAndSixMakeAnAddressTypeOfIP) {
    for (int third = 0; third < 256; ++third) {
        useInside(std::string("IP") + str(third) + "\n", SDP_LEXCTX_SDP);
        const Token expected = third == '4'   ? Token{58, 2, 4}
                               : third == '6' ? Token{59, 2, 4}
                                              : Token{2, 2, 2};
        EXPECT_EQ(next(), expected) << third;
        EXPECT_EQ(sdpGetLastChar(), third) << "the third byte was looked at last";
        EXPECT_EQ(sdpGetIndex(), 0u);
    }
}

TEST_F(LexerTest, WordsAreCutWhateverFollowsThem) {
    useInside("INX IP4x IP66 X--", SDP_LEXCTX_SDP);
    EXPECT_EQ(rest(), (Tokens{{57, "IN"},
                              {2, "X"},
                              {31, " "},
                              {58, "IP4"},
                              {2, "x"},
                              {31, " "},
                              {59, "IP6"},
                              {3, "6"},
                              {31, " "},
                              {62, "X-"},
                              {6, "-"}}));
}

TEST_F(LexerTest, WordsAreOfCapitalLetters) {
    const std::string words = "In iN in Ip4 ip6 iP4 x-";
    useInside(words, SDP_LEXCTX_SDP);
    std::string joined;
    for (const auto &[kind, text] : rest()) {
        EXPECT_EQ(text.size(), 1u) << text;
        joined += text;
    }
    EXPECT_EQ(joined, words);
}

TEST_F(LexerTest, AnUnknownAddressTypeIsThreeTokens) {
    useInside("IP5", SDP_LEXCTX_SDP);
    EXPECT_EQ(rest(), (Tokens{{2, "I"}, {2, "P"}, {3, "5"}}));
}

TEST_F(LexerTest, ACapitalLetterBeginsNoLine) {
    useInside("V=", SDP_LEXCTX_SDP);
    EXPECT_EQ(rest(), (Tokens{{2, "V"}, {14, "="}}));
    useInside("I=X=", SDP_LEXCTX_SDP);
    EXPECT_EQ(rest(), (Tokens{{2, "I"}, {14, "="}, {2, "X"}, {14, "="}}));
}

TEST_F(LexerTest, ALineKindThatIsNotKnownIsALetter) {
    useInside("f=x=", SDP_LEXCTX_SDP);
    EXPECT_EQ(rest(), (Tokens{{2, "f"}, {14, "="}, {2, "x"}, {14, "="}}));
}

TEST_F(LexerTest, WordsAtTheEndOfTheInputReadNothingAfterIt) {
    for (const std::string text : {"I", "IP", "X", "v", "q"}) {
        useInside(text, SDP_LEXCTX_SDP);
        EXPECT_EQ(next(), (Token{2, 2, 2})) << text;
        EXPECT_EQ(sdpGetLastChar(), 0);
        EXPECT_EQ(sdpGetEnd(), 0u) << "the NUL was only looked at";
    }
}

TEST_F(LexerTest, VersionLineIsCutIntoThreeTokens) {
    use("v=0", SDP_LEXCTX_SDP);
    EXPECT_EQ(startTracking(), 37u);
    EXPECT_EQ(current(), (Token{37, 0, 1}));
    EXPECT_STREQ(LT(), "v=");
    EXPECT_EQ(next(), (Token{3, 2, 2}));
    EXPECT_STREQ(LT(), "0");
    EXPECT_EQ(next(), (Token{30, 3, 3}));
}

// ---- Runs of the other contexts

TEST_F(LexerTest, StringsAndBlanksAlternateInTheStringContext) {
    useInside("x y\t(z):  q", SDP_LEXCTX_STRING);
    EXPECT_EQ(rest(), (Tokens{{61, "x"},
                              {31, " "},
                              {61, "y"},
                              {32, "\t"},
                              {61, "(z):"},
                              {31, " "},
                              {31, " "},
                              {61, "q"}}));
}

TEST_F(LexerTest, ARunOfOneClassEndsAtTheNextClass) {
    useInside("0a", SDP_LEXCTX_ALNUM);
    EXPECT_EQ(rest(), (Tokens{{3, "0"}, {2, "a"}}));
    useInside("abc12 a-b --", SDP_LEXCTX_ALNUM);
    EXPECT_EQ(
        rest(),
        (Tokens{
            {2, "abc"}, {3, "12"}, {31, " "}, {2, "a"}, {6, "-"}, {2, "b"}, {31, " "}, {6, "--"}}));
}

TEST_F(LexerTest, ATokenHoldsSlashDotAndEquals) {
    useInside("RTP/AVP;a=b.c@d", SDP_LEXCTX_TOKEN);
    EXPECT_EQ(rest(), (Tokens{{64, "RTP/AVP"}, {17, ";"}, {64, "a=b.c"}, {21, "@"}, {64, "d"}}));
}

TEST_F(LexerTest, TheKindOfAnAddressIsThatOfItsLastByte) {
    const std::vector<std::pair<std::string, uint32_t>> addresses = {
        {"2001:db8::1", 3}, {"fe80::a", 2}, {"::", 20}, {"192.0.2.", 13}, {"1a", 2}, {"a1", 3}};
    for (const auto &[text, kind] : addresses) {
        useInside(text + "/5", SDP_LEXCTX_IPV6);
        EXPECT_EQ(next().kind, kind) << text;
        EXPECT_EQ(LT(), text);
        EXPECT_EQ(next().kind, 18u);
    }
}

TEST_F(LexerTest, ACarriageReturnIsOtherOrPartOfTheRun) {
    for (const uint32_t context :
         {SDP_LEXCTX_SDP, SDP_LEXCTX_CHAR, SDP_LEXCTX_ALNUM, SDP_LEXCTX_IPV6}) {
        useInside("a\rb", context);
        EXPECT_EQ(rest(), (Tokens{{2, "a"}, {28, "\r"}, {2, "b"}})) << context;
    }
    useInside("a\rb", SDP_LEXCTX_STRING);
    EXPECT_EQ(rest(), (Tokens{{61, "a\rb"}}));
    useInside("a\rb", SDP_LEXCTX_TOKEN);
    EXPECT_EQ(rest(), (Tokens{{64, "a\rb"}}));
}

TEST_F(LexerTest, NoContextCutsAcrossALineEnd) {
    for (uint32_t context = SDP_LEXCTX_SDP; context <= SDP_LEXCTX_IPV6; ++context) {
        useInside("a\na", context);
        EXPECT_EQ(next().end, 2u) << context;
        EXPECT_EQ(next(), (Token{15, 3, 3})) << context;
        EXPECT_EQ(next().start, 4u) << context;
        EXPECT_EQ(next(), (Token{30, 5, 5})) << context;
    }
}

TEST_F(LexerTest, ASwitchOfContextHoldsForTheNextTokenOnly) {
    useInside("ab12 cd", SDP_LEXCTX_STRING);
    EXPECT_EQ(next(), (Token{61, 2, 5}));
    setLexerContext(SDP_LEXCTX_CHAR);
    EXPECT_EQ(current(), (Token{61, 2, 5}));
    EXPECT_STREQ(LT(), "ab12");
    EXPECT_EQ(next(), (Token{31, 6, 6}));
    setLexerContext(SDP_LEXCTX_ALNUM);
    EXPECT_EQ(next(), (Token{2, 7, 8}));
}

TEST_F(LexerTest, UnknownContextsBeginATokenAndCutNone) {
    for (const uint32_t context : {0u, 7u, 8u, 100u, 0xFFFFFFFFu}) {
        useInside("ab", context);
        sdpSetTToken(99);
        consume();
        EXPECT_EQ(current(), (Token{99, 2, 1})) << "kind and end stay";
        EXPECT_EQ(sdpGetLastChar(), 'a');
        EXPECT_EQ(sdpGetIndex(), 0u);
        EXPECT_EQ(sdpGetEnd(), 0u);
        consume();
        EXPECT_EQ(current(), (Token{99, 2, 1})) << "the same byte again";
        setLexerContext(SDP_LEXCTX_STRING);
        EXPECT_EQ(next(), (Token{61, 2, 3})) << "which the next context then cuts";
    }
}

TEST_F(LexerTest, UnknownContextsSeeTheEndOfTheInput) {
    for (const uint32_t context : {0u, 7u}) {
        useInside("", context);
        sdpSetTToken(99);
        consume();
        EXPECT_EQ(sdpGetEnd(), 1u);
        EXPECT_EQ(LA(), 99u);
    }
}

} // namespace

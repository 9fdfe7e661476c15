// The parser of a body: a lexer, and the result of the check that refused the text.
//
// Each production is a function that opens with its grammar. It returns false when the text is
// refused; `failure` is then the result of the first check that failed. Productions are made of
// the primitives of ParserOn, which come in two orders: expect() switches the lexer's context and
// then tests the current token; see() and next() test it first and then switch.
//
// Productions are templates over the two parsers. The source file that defines a production
// instantiates it for each parser that other files call it with.
//
// The production of a line starts with the line's key as the current token, and leaves the next
// line's key current, in the SDP context. The production of an attribute's value starts after the
// attribute's name.
#pragma once

#include <concepts>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "checks/checks.hpp"
#include "lexer/lexer.hpp"
#include "sdpline/sdpinternals.h"
#include "services/allocation.hpp"
#include "services/settings.hpp"
#include "tables/attributes.hpp"
#include "tables/keywords.hpp"
#include "text/scan.hpp"

namespace sdpline {

// The checks of a word: the token is of another kind; its text is too long.
struct WordChecks {
    Check token;
    Check text;
};

// Stores the code of a word. A word that is not in the table fails the check.
template <const auto &Table>
SDPResult classify(uint32_t &code, std::string_view word, Check unknown,
                   uint32_t line = __builtin_LINE()) {
    const KeywordRow *const row = findWord<Table>(word);
    if (row == nullptr) {
        return failWord(unknown, word.data(), line);
    }
    code = row->code;
    return 0;
}

template <class Lexer>
struct ParserOn : Lexer {
    using Lexer::advance;
    using Lexer::advanceAfterRun;
    using Lexer::context;
    using Lexer::is;
    using Lexer::take;
    using Lexer::takeToDigits;
    using Lexer::text;
    using Lexer::valueOf;

    SDPResult failure; // 0 while no check has failed

    // Fails the check and returns false. Everywhere below, `line` is the line of the calling
    // source, which log entries show.
    SDPLINE_INLINE bool refuse(Check check, uint32_t value = 0, uint32_t line = __builtin_LINE()) {
        failure = fail(check, value, line);
        return false;
    }
    // Takes over the result of an operation that has already logged its failure; returns whether
    // it is a success.
    SDPLINE_INLINE bool accept(SDPResult result) {
        if (result == 0) [[likely]] {
            return true;
        }
        failure = result;
        return false;
    }

    // Switches the context; the current token must be of the kind; advances to the next token.
    SDPLINE_INLINE bool expect(uint32_t wanted, uint32_t under, Check check,
                               uint32_t line = __builtin_LINE()) {
        return take(wanted, under) || refuse(check, 0, line);
    }
    // The same under the alphanumeric context, before digits of which only the text is read.
    bool expectDigits(uint32_t wanted, Check check, uint32_t line = __builtin_LINE()) {
        return takeToDigits(wanted) || refuse(check, 0, line);
    }
    // The current token must be of the kind.
    SDPLINE_INLINE bool see(uint32_t wanted, Check check, uint32_t line = __builtin_LINE()) {
        return is(wanted) || refuse(check, 0, line);
    }
    // Switches the context and advances to the next token. Always true.
    SDPLINE_INLINE bool next(uint32_t under) {
        context = under;
        advance(under);
        return true;
    }
    // The same after a token that is a run of the context. In the alphanumeric context the run must
    // be one of digits.
    SDPLINE_INLINE bool nextAfterRun(uint32_t under) {
        context = under;
        advanceAfterRun(under);
        return true;
    }
    // Switches the context only. Always true.
    SDPLINE_INLINE bool under(uint32_t other) {
        context = other;
        return true;
    }

    // The text of the current token, which must be of the kind; it stays current.
    SDPLINE_INLINE bool read(std::string_view &word, uint32_t wanted, WordChecks checks,
                             uint32_t line = __builtin_LINE()) {
        if (!see(wanted, checks.token, line)) {
            return false;
        }
        word = text();
        return word.data() != nullptr || refuse(checks.text, 0, line);
    }
    // 1*DIGIT, modulo 2^32, and the next token.
    SDPLINE_INLINE bool number(uint32_t &value, WordChecks checks,
                               uint32_t line = __builtin_LINE()) {
        std::string_view digits;
        if (!read(digits, SDP_TOK_DIGIT, checks, line)) {
            return false;
        }
        value = valueOf(digits);
        return nextAfterRun(Context::Alnum);
    }
    // LF, then the next line's key.
    SDPLINE_INLINE bool endLine(Check check, uint32_t line = __builtin_LINE()) {
        return expect(SDP_TOK_LF, Context::Sdp, check, line);
    }
};

// The parser of a body's normal form, and that of the process-wide state.
using BodyParser = ParserOn<BodyLexer>;
using StateParser = ParserOn<StateLexer>;

template <class Any>
concept Parser = std::same_as<Any, BodyParser> || std::same_as<Any, StateParser>;

// ---- Where a production runs

// Runs the production of a line on a local copy of the parser. No other code has the copy's
// address, so the compiler keeps it in registers. A StateParser stays in memory and is not copied.
template <class Production>
[[gnu::flatten]] inline bool onLine(BodyParser &parser, const Production &production) {
    BodyParser copy;
    copy.input = parser.input;
    copy.failure = 0;
    copy.counted = 0;
    copy.copyPosition(parser);
    const bool done = production(copy);
    parser.copyPosition(copy);
    if (!done) [[unlikely]] {
        parser.failure = copy.failure;
    }
    return done;
}

template <class Production>
SDPLINE_INLINE bool onLine(StateParser &parser, const Production &production) {
    return production(parser);
}

// Runs a production out of line: the body's parser is converted to a StateParser and back.
template <class Production>
SDPLINE_INLINE bool outOfLine(BodyParser &parser, const Production &production) {
    StateParser other = {parser.anywhere(), 0};
    const bool done = production(other);
    parser.copyPosition(other);
    if (!done) {
        parser.failure = other.failure;
    }
    return done;
}

template <class Production>
SDPLINE_INLINE bool outOfLine(StateParser &parser, const Production &production) {
    return production(parser);
}

// An entry of a table of productions, which can be called with either parser.
template <class Record>
struct Production {
    template <class Function>
    constexpr Production(Function function) : onBody_(function), onState_(function) {}

    bool operator()(BodyParser &parser, Record &record) const { return onBody_(parser, record); }
    bool operator()(StateParser &parser, Record &record) const { return onState_(parser, record); }

private:
    bool (*onBody_)(BodyParser &parser, Record &record);
    bool (*onState_)(StateParser &parser, Record &record);
};

// Runs a production on the process-wide lexer, for the parsers that are called by their exported
// names.
StateParser loadParser();
SDPResult storeParser(const StateParser &parser);

template <class Production>
SDPResult withGlobalLexer(const Production &production) {
    StateParser parser = loadParser();
    production(parser);
    return storeParser(parser);
}

// ---- Records and lists

// Stores a copy of the text, without a terminator. Without memory the length is stored and the
// pointer is null. A text of length 0 makes a request for zero bytes too.
SDPLINE_INLINE SDPResult storeText(SipString &value, std::string_view text) {
    value.ulLen = static_cast<uint32_t>(text.size());
    value.pcData = static_cast<char *>(allocateBytes(value.ulLen));
    if (value.pcData == nullptr) {
        return fail(Check::SetString);
    }
    copyBytes(value.pcData, text.data(), text.size());
    return 0;
}

// Stores a text. Without memory the check `noMemory` fails.
SDPLINE_INLINE bool store(Parser auto &parser, SipString &value, std::string_view text,
                          Check noMemory, uint32_t line = __builtin_LINE()) {
    return storeText(value, text) == 0 || parser.refuse(noMemory, 0, line);
}

// Allocates the record that a member points to, and passes it to `parse`. The member may be
// unaligned within its packed record, so it is written with memcpy.
template <auto Member, class Owner, class Parse>
SDPLINE_INLINE bool parseInto(Parser auto &parser, Owner &owner, Check noMemory, uint32_t line,
                              Parse parse) {
    using Record = std::remove_pointer_t<std::remove_reference_t<decltype(owner.*Member)>>;
    auto *const record = allocate<Record>(row(noMemory).function);
    std::memcpy(&(owner.*Member), &record, sizeof record);
    return record != nullptr ? parse(*record) : parser.refuse(noMemory, 0, line);
}

// The checks of a list's memory: for the first array, for an item, for a longer array.
struct ListChecks {
    Check array;
    Check item;
    Check grow;
};

// Returns a longer array with the pointers of the old one, which is freed. Returns null when there
// is no memory; the old array then stays.
inline void **extendArray(void **array, uint32_t count, uint32_t newCount) {
    auto *const longer =
        static_cast<void **>(allocateBytes(newCount * static_cast<uint32_t>(sizeof(void *))));
    if (longer == nullptr || array == nullptr || count == 0) {
        return longer;
    }
    // The last slot is copied separately: it was written just now, and a wider load over it would
    // wait for that store.
    copyBytes(longer, array, (count - 1) * sizeof(void *));
    longer[count - 1] = array[count - 1];
    for (uint32_t slot = count; slot < newCount; ++slot) {
        longer[slot] = nullptr;
    }
    freeBytes(array);
    return longer;
}

// The array of a list and its number of slots. With the allocation hooks it grows by one slot for
// each item, because stacks rely on these requests. Where no program can see the requests, the
// array starts with `First` slots and doubles. It also doubles once a list is longer than a body of
// SDP_MAX_BODY bytes can make it, where longer bodies are admitted.
template <class Item, uint32_t First>
struct Slots {
    static constexpr uint32_t kLongList = 2048;

    Item **array;
    uint32_t count;

    SDPLINE_INLINE explicit Slots(Check noMemory) {
        if (allocatesInPlace()) [[likely]] {
            array = static_cast<Item **>(allocateBytes(First * sizeof(Item *)));
            count = First;
        } else {
            array = allocate<Item *>(row(noMemory).function);
            count = 1;
        }
    }

    SDPLINE_INLINE void grow(uint32_t used) {
        const bool doubles =
            allocatesInPlace() || (used >= kLongList && settings().ulMaxBodySize > SDP_MAX_BODY);
        count = doubles ? 2 * used : used + 1;
        array =
            reinterpret_cast<Item **>(extendArray(reinterpret_cast<void **>(array), used, count));
    }
};

// Builds a list of pointers. `attach` receives every array that the list moves to, `parse` fills
// one zeroed item, `more` returns whether another item follows, `finish` receives the count.
// Counters of 8 bits wrap: the item after the 256th is stored in slot 0 again, and from then on the
// list has as many items as the counter says.
template <class Item, class Counter, uint32_t First = 2, class Attach, class Parse, class More,
          class Finish>
SDPLINE_INLINE bool parseList(Parser auto &parser, ListChecks checks, Attach attach, Parse parse,
                              More more, Finish finish, uint32_t line = __builtin_LINE()) {
    Slots<Item, First> slots(checks.array);
    if (slots.array == nullptr) {
        return parser.refuse(checks.array, 0, line);
    }
    attach(slots.array);
    for (Counter count = 0;;) {
        Item *const item = allocate<Item>(row(checks.item).function);
        if (item == nullptr) {
            return parser.refuse(checks.item, 0, line);
        }
        if (!parse(parser, *item)) {
            return false;
        }
        slots.array[count++] = item;
        if (!more(parser)) {
            finish(count);
            return true;
        }
        if (sizeof count == 1 && count == 0) {
            slots.count = 1;
        } else if (count == slots.count) {
            slots.grow(count);
            if (slots.array == nullptr) {
                return parser.refuse(checks.grow, 0, line);
            }
            attach(slots.array);
        }
    }
}

// ---- Lines, and runs of lines of one kind
bool parseLines(Parser auto &parser, SdpLine &line);
bool parseVersion(Parser auto &parser, uint32_t &version);
bool parseOrigin(Parser auto &parser, SDPOrigin &origin);
bool parseText(Parser auto &parser, uint32_t kind, SipString &text);
bool parseTextList(Parser auto &parser, uint32_t kind, SDPStringList &list);
bool parseConnection(Parser auto &parser, SDPConnection &connection);
bool parseTimes(Parser auto &parser, SDPTimeSet &set);
bool parseAttributes(Parser auto &parser, SDPAttrList &list);
bool parseMediaDescriptions(Parser auto &parser, SDPMediaSet &set);
bool parseMediaField(Parser auto &parser, SDPMediaField &field);

// Parses a text into the record that a member points to; the same for a list of texts.
template <auto Member, class Owner>
bool textInto(Parser auto &parser, Owner &owner, uint32_t kind, Check noMemory,
              uint32_t line = __builtin_LINE()) {
    return parseInto<Member>(parser, owner, noMemory, line,
                             [&](SipString &text) { return parseText(parser, kind, text); });
}

template <auto Member, class Owner>
bool listInto(Parser auto &parser, Owner &owner, uint32_t kind, Check noMemory,
              uint32_t line = __builtin_LINE()) {
    return parseInto<Member>(parser, owner, noMemory, line, [&](SDPStringList &list) {
        return parseTextList(parser, kind, list);
    });
}

// The same for the other members that are pointers: connection, key, attributes.
template <auto Member, class Owner>
bool connectionInto(Parser auto &parser, Owner &owner, Check noMemory,
                    uint32_t line = __builtin_LINE()) {
    return parseInto<Member>(parser, owner, noMemory, line, [&](SDPConnection &connection) {
        return parseConnection(parser, connection);
    });
}

template <auto Member, class Owner>
bool keyInto(Parser auto &parser, Owner &owner, Check noMemory, uint32_t line = __builtin_LINE()) {
    return parseInto<Member>(parser, owner, noMemory, line, [&](SDPKey &key) {
        return parseText(parser, SDP_TOK_KEY, key.strKey);
    });
}

template <auto Member, class Owner>
bool attributesInto(Parser auto &parser, Owner &owner, Check noMemory,
                    uint32_t line = __builtin_LINE()) {
    return parseInto<Member>(parser, owner, noMemory, line,
                             [&](SDPAttrList &list) { return parseAttributes(parser, list); });
}

} // namespace sdpline

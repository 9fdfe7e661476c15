// What the field parsers share: the primitives between the lexer and the records, and the growth
// of lists. Every parser answers 0 or the code of the first check that failed.
//
// A line parser is entered with its line's key current and leaves the next line's key current, in
// the SDP context. A value parser of an attribute is entered behind the attribute's name.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "lexer/sdplexer.hpp"
#include "sdpline/sdpinternals.h"
#include "utils/sdpalloc.hpp"
#include "utils/sdpchecks.hpp"
#include "utils/sdputils.hpp"
#include "utils/sdpwords.hpp"

namespace sdpline {

// The last text that SdpLibParseSdp refused.
extern SDPFailure lastFailure;

// The checks of one number: not a run of digits, and too long to be read.
struct NumberChecks {
    Check digits;
    Check text;
};

// The value of a run of digits, modulo 2^32; the run stays current.
inline SDPResult readNumber(uint32_t &value, NumberChecks checks) {
    if (!lexer::at(SDP_TOK_DIGIT)) {
        return fail(checks.digits);
    }
    const std::string_view digits = lexer::text();
    if (digits.data() == nullptr) {
        return fail(checks.text);
    }
    value = scanNumber(digits);
    return 0;
}

// 1*DIGIT, then the next token under `context`.
inline SDPResult takeNumber(uint32_t &value, uint32_t context, NumberChecks checks) {
    if (const SDPResult result = readNumber(value, checks)) {
        return result;
    }
    lexer::take(SDP_TOK_DIGIT, context);
    return 0;
}

// The checks of one word: a token of another kind, and too long to be read.
struct WordChecks {
    Check token;
    Check text;
};

// The text of the current token, which must be of the kind; it stays current.
inline SDPResult readWord(std::string_view &word, uint32_t kind, WordChecks checks) {
    if (!lexer::at(kind)) {
        return fail(checks.token);
    }
    word = lexer::text();
    return word.data() != nullptr ? 0 : fail(checks.text);
}

// The same, then the next token under `context`.
inline SDPResult takeWord(std::string_view &word, uint32_t kind, uint32_t context,
                          WordChecks checks) {
    if (const SDPResult result = readWord(word, kind, checks)) {
        return result;
    }
    lexer::take(kind, context);
    return 0;
}

// The code of a word; one that the table does not know fails the check.
inline SDPResult classify(uint32_t &code, std::span<const Word> table, std::string_view word,
                          Check unknown, uint32_t line = __builtin_LINE()) {
    const Word *const row = findByText(table, word);
    if (row == nullptr) {
        return failWord(unknown, word.data(), line);
    }
    code = row->code;
    return 0;
}

// LF, then the next line's key.
inline SDPResult takeLineEnd(Check missing) {
    return lexer::take(SDP_TOK_LF, SDP_LEXCTX_SDP) ? 0 : fail(missing);
}

// The checks of a list's memory: its first slot, an item, one slot more.
struct ListChecks {
    Check array;
    Check item;
    Check grow;
};

// Builds a list of pointers, one slot longer for each item. `attach` is given every array the
// list moves to, `parse` fills one zeroed item, `more` tells whether another item follows.
// Counters of 8 bits wrap: the item behind the 256th takes slot 0 again, and the list shrinks to
// what the counter says at the next growth.
template <class Item, class Counter, class Attach, class Parse, class More>
SDPResult parseList(Counter &count, const ListChecks &checks, Attach attach, Parse parse,
                    More more) {
    count = 0;
    auto **slots = static_cast<Item **>(allocateBytes(sizeof(Item *)));
    if (slots == nullptr) {
        return fail(checks.array);
    }
    zeroFill(slots, sizeof(Item *), row(checks.array).function);
    attach(slots);
    for (;;) {
        Item *const item = allocate<Item>(row(checks.item).function);
        if (item == nullptr) {
            return fail(checks.item);
        }
        if (const SDPResult result = parse(item)) {
            return result;
        }
        slots[count++] = item;
        if (!more()) {
            return 0;
        }
        if (count != 0) {
            slots = reinterpret_cast<Item **>(SdpLibUtilExtendDP(
                reinterpret_cast<void **>(slots), count, static_cast<uint32_t>(count) + 1));
            if (slots == nullptr) {
                return fail(checks.grow);
            }
            attach(slots);
        }
    }
}

// One line or run of lines into a record that was allocated for it; a null one fails `noMemory`.
SDPResult parseText(uint32_t kind, SipString *text, Check noMemory,
                    uint32_t line = __builtin_LINE());
SDPResult parseKey(SDPKey *key, Check noMemory, uint32_t line = __builtin_LINE());
SDPResult parseTextList(uint32_t kind, SDPStringList *list, Check noMemory,
                        uint32_t line = __builtin_LINE());
SDPResult parseConnection(SDPConnection *connection, Check noMemory,
                          uint32_t line = __builtin_LINE());
SDPResult parseAttributes(SDPAttrList *list, Check noMemory, uint32_t line = __builtin_LINE());

// Attribute and word parsers by text that lies in the input; the exported ones take NUL-terminated
// words.
SDPResult parseAttributeValue(SDPAttr &attr, std::string_view name, uint32_t type);
SDPResult keepUnrecognised(SDPAttr &attr, std::string_view name);

} // namespace sdpline

// What the field parsers share: the primitives between the lexer and the records, and the growth
// of lists. Every parser answers 0 or the code of the first check that failed.
//
// A line parser is entered with its line's key current and leaves the next line's key current, in
// the SDP context. A value parser of an attribute is entered behind the attribute's name.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "checks/checks.hpp"
#include "lexer/lexer.hpp"
#include "sdpline/sdpinternals.h"
#include "services/allocation.hpp"
#include "services/settings.hpp"
#include "tables/keywords.hpp"
#include "text/scan.hpp"

namespace sdpline {

// Stores a copy of the text, without a terminator. Without memory the length stays and the
// pointer is null. A text of length 0 asks for zero bytes all the same.
SDPLINE_INLINE SDPResult storeText(SipString &value, std::string_view text) {
    value.ulLen = static_cast<uint32_t>(text.size());
    value.pcData = static_cast<char *>(allocateBytes(value.ulLen));
    if (value.pcData == nullptr) {
        return fail(Check::SetString);
    }
    copyBytes(value.pcData, text.data(), text.size());
    return 0;
}

// The checks of one number: not a run of digits, and too long to be read.
struct NumberChecks {
    Check digits;
    Check text;
};

// The value of a run of digits, modulo 2^32; the run stays current.
SDPLINE_INLINE SDPResult readNumber(Lexer &lexer, uint32_t &value, NumberChecks checks) {
    if (!lexer.is(SDP_TOK_DIGIT)) {
        return fail(checks.digits);
    }
    const std::string_view digits = lexer.text();
    if (digits.data() == nullptr) {
        return fail(checks.text);
    }
    value = scanNumber(digits);
    return 0;
}

// 1*DIGIT, then the next token under `context`.
SDPLINE_INLINE SDPResult takeNumber(Lexer &lexer, uint32_t &value, uint32_t context,
                                    NumberChecks checks) {
    if (const SDPResult result = readNumber(lexer, value, checks)) {
        return result;
    }
    lexer.take(SDP_TOK_DIGIT, context);
    return 0;
}

// The checks of one word: a token of another kind, and too long to be read.
struct WordChecks {
    Check token;
    Check text;
};

// The text of the current token, which must be of the kind; it stays current.
SDPLINE_INLINE SDPResult readWord(Lexer &lexer, std::string_view &word, uint32_t kind,
                                  WordChecks checks) {
    if (!lexer.is(kind)) {
        return fail(checks.token);
    }
    word = lexer.text();
    return word.data() != nullptr ? 0 : fail(checks.text);
}

// The same, then the next token under `context`.
SDPLINE_INLINE SDPResult takeWord(Lexer &lexer, std::string_view &word, uint32_t kind,
                                  uint32_t context, WordChecks checks) {
    if (const SDPResult result = readWord(lexer, word, kind, checks)) {
        return result;
    }
    lexer.take(kind, context);
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
SDPLINE_INLINE SDPResult takeLineEnd(Lexer &lexer, Check missing) {
    return lexer.take(SDP_TOK_LF, SDP_LEXCTX_SDP) ? 0 : fail(missing);
}

// The checks of a list's memory: its first slot, an item, one slot more.
struct ListChecks {
    Check array;
    Check item;
    Check grow;
};

// A longer array with the same pointers, in place of the old one, which is given back. Null when
// there is no memory: the old one stays.
inline void **extendArray(void **array, uint32_t count, uint32_t newCount) {
    auto *const longer =
        static_cast<void **>(allocateBytes(newCount * static_cast<uint32_t>(sizeof(void *))));
    if (longer == nullptr || array == nullptr || count == 0) {
        return longer;
    }
    // The last slot apart: it has just been written, and by itself.
    copyBytes(longer, array, (count - 1) * sizeof(void *));
    longer[count - 1] = array[count - 1];
    for (uint32_t slot = count; slot < newCount; ++slot) {
        longer[slot] = nullptr;
    }
    freeBytes(array);
    return longer;
}

// A list that no body of SDP_MAX_BODY bytes can hold.
constexpr uint32_t kLongList = 2048;

// One more slot for a long list. Where longer bodies are decoded it doubles when its room is used up,
// so that a body takes time in proportion to its length.
[[gnu::cold, gnu::noinline]] void **extendLong(void **array, uint32_t count, uint32_t &room);

// Builds a list of pointers, one slot longer for each item. `attach` is given every array the
// list moves to, `parse` fills one zeroed item, `more` tells whether another item follows.
// Counters of 8 bits wrap: the item behind the 256th takes slot 0 again, and the list shrinks to
// what the counter says at the next growth.
template <class Item, class Counter, class Attach, class Parse, class More>
SDPLINE_INLINE SDPResult parseList(Lexer &lexer, Counter &count, ListChecks checks, Attach attach,
                                   Parse parse, More more) {
    count = 0;
    uint32_t room = 0; // of a long list
    auto **slots = allocate<Item *>(row(checks.array).function);
    if (slots == nullptr) {
        return fail(checks.array);
    }
    attach(slots);
    for (;;) {
        Item *const item = allocate<Item>(row(checks.item).function);
        if (item == nullptr) {
            return fail(checks.item);
        }
        if (const SDPResult result = parse(lexer, *item)) {
            return result;
        }
        slots[count++] = item;
        if (!more(lexer)) {
            return 0;
        }
        if (count != 0) {
            auto **const full = reinterpret_cast<void **>(slots);
            if (sizeof(Counter) > 1 && count >= kLongList) [[unlikely]] {
                slots = reinterpret_cast<Item **>(extendLong(full, count, room));
            } else {
                slots = reinterpret_cast<Item **>(
                    extendArray(full, count, static_cast<uint32_t>(count) + 1));
            }
            if (slots == nullptr) {
                return fail(checks.grow);
            }
            attach(slots);
        }
    }
}

// ---- The lines, or runs of lines of one kind. The exported parsers do the same on the state.
SDPResult parseVersion(Lexer &lexer, uint32_t &version);
SDPResult parseOrigin(Lexer &lexer, SDPOrigin &origin);
SDPResult parseText(Lexer &lexer, uint32_t kind, SipString &text);
SDPResult parseTextList(Lexer &lexer, uint32_t kind, SDPStringList &list);
SDPResult parseConnection(Lexer &lexer, SDPConnection &connection);
SDPResult parseTimes(Lexer &lexer, SDPTimeSet &set);
SDPResult parseAttributes(Lexer &lexer, SDPAttrList &list);
SDPResult parseMediaDescriptions(Lexer &lexer, SDPMediaSet &set);
SDPResult parseMediaField(Lexer &lexer, SDPMediaField &field);

// A record for one of them; `parseInto` parses into it where it could be allocated.
template <class Record>
Record *allocateFor(Check noMemory) {
    return allocate<Record>(row(noMemory).function);
}

template <class Record, class Parse>
SDPResult parseInto(Record *record, Check noMemory, Parse parse, uint32_t line = __builtin_LINE()) {
    return record != nullptr ? parse(*record) : fail(noMemory, 0, line);
}

// ---- The values of attributes, entered behind the name
SDPResult parseRtpmap(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseMode(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parsePacketization(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseQuality(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseFaxNumber(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseFaxRate(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseFaxErrorCorrection(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseSilence(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseEcan(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseIpBcp(Lexer &lexer, SDPAttr &attr);
SDPResult parseSetup(Lexer &lexer, SDPAttr &attr, uint32_t type);
SDPResult parseResourceStatus(Lexer &lexer, SDPAttr &attr, uint32_t type);

} // namespace sdpline

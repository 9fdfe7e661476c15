// What the tests of single parsers share: a text under the lexer that ends where readable memory
// ends, the parser's memory under watch, and results in words.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpinternals.h"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace support {

// "ok", or the check's name and the class: "TimeStart 101".
std::string named(SDPResult result);

// The bytes of a counted string; "(null)" for a null pointer or null data.
std::string textOf(const SipString &text);
std::string textOf(const SipString *text);

struct TextAndResult {
    const char *text;
    const char *result;
};

struct WordAndCode {
    const char *word;
    uint32_t code; // kNoWord: the word is refused
};

class ParsingTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes the text and a NUL the input, and its first token current in the SDP context.
    void start(std::string_view text);
    // Makes "a=" and the text the input; the token after the attribute's name is current.
    void startValue(std::string_view text);

    // What the parser of a record returns for each text.
    template <class Record>
    void expectResults(SDPResult (*parse)(Record *), std::span<const TextAndResult> rows) {
        for (const TextAndResult &row : rows) {
            start(row.text);
            Record record = {};
            EXPECT_EQ(named(parse(&record)), row.result) << '"' << row.text << '"';
        }
    }

    // What a classifier stores for each word: its code, or nothing for one that it refuses.
    static constexpr uint32_t kNoWord = 0xFFFFFFFF;
    template <class Record, class Field>
    void expectWords(SDPResult (*classify)(Record *, const char *), Field field,
                     std::initializer_list<WordAndCode> rows, const char *refusal,
                     const char *entry = nullptr) {
        std::vector<std::string> entries;
        for (const WordAndCode &row : rows) {
            constexpr uint32_t kBefore = 77;
            Record record = {};
            std::invoke(field, record) = kBefore;
            const bool refused = row.code == kNoWord;
            EXPECT_EQ(named(classify(&record, row.word)), refused ? refusal : "ok") << row.word;
            EXPECT_EQ(std::invoke(field, record), refused ? kBefore : row.code) << row.word;
            if (refused && entry != nullptr) {
                entries.emplace_back(entry);
            }
        }
        EXPECT_EQ(log.texts(), entries);
    }

    // Fails the n-th allocation from now on. Memory comes filled with kDirt, not zeroed.
    static void failAllocation(uint32_t n);
    static constexpr uint32_t kDirt = 0xA5A5A5A5;
    // The sizes asked for since the start of the test.
    static const std::vector<uint32_t> &sizesAskedFor();

    support::LogRecorder log;

private:
    std::optional<support::Guarded> input_;
};

} // namespace support

// Decides what is masked in one line: the rules for each kind of line and attribute.
#pragma once

#include <string_view>
#include <vector>

#include "redact/edits.hpp"
#include "redact/masks.hpp"
#include "redact/shapes.hpp"

namespace cli {

// The mask of an address or a host name, as in o= and c= lines. In other text letters and digits
// are replaced by "x".
std::string addressMask(std::string_view address, Masks &masks);

class LineMasks {
public:
    LineMasks(std::string_view line, Masks &masks) : line_(line), masks_(masks) {}

    // Returns all edits in order. To be called once.
    std::vector<Edit> run();

private:
    // A word of the line, between blanks.
    struct Word {
        size_t begin;
        size_t end;
    };

    // What is done with a word whose form is not that of a value.
    enum class Others {
        Kept,  // for words of a protocol, as in a=fmtp
        Masked // except short numbers and a few common words
    };

    using Rule = void (LineMasks::*)(size_t from);
    struct AttributeRule {
        std::string_view name;
        Rule rule;
    };
    static const AttributeRule kAttributeRules[];
    static Rule ruleOf(std::string_view name);

    // ---- Lines; the value begins at `from`
    void line(char key, size_t from);
    void origin(size_t from);
    void connection(size_t from);
    void key(size_t from);
    void numbers(size_t from);
    void freeText(size_t from);

    // ---- Values of attributes, in attributemasks.cpp
    void attribute(size_t from);
    void protocolWords(size_t from) { words(from, Others::Kept); }
    void otherWords(size_t from) { words(from, Others::Masked); }
    void registeredWords(size_t from);
    void firstWordKept(size_t from);
    void addresses(size_t from);
    void secret(size_t from) { mask(Mask::Secret, from, line_.size()); }
    void whole(size_t from) { mask(Mask::Word, from, line_.size()); }
    void crypto(size_t from);
    void fingerprint(size_t from);
    void keyManagement(size_t from);
    void candidate(size_t from);
    void alternative(size_t from);
    void nested(size_t from);
    void transports(size_t from);
    void afterSwitch(size_t from);
    void encodingName(size_t from);

    // ---- Words
    void words(size_t from, Others others);
    void word(const Word &word, Others others);
    void addressWord(const Word &word);
    void findings(const Word &word, const std::vector<Finding> &found);
    bool explains(const Word &word, const std::vector<Finding> &found) const;
    bool isKnown(const Word &word) const;
    void textRun(const Word &first, const Word &last);
    void outline(const Word &word);
    void mask(Mask kind, size_t begin, size_t end);

    std::vector<Word> wordsFrom(size_t from) const;
    std::string_view text(const Word &word) const {
        return line_.substr(word.begin, word.end - word.begin);
    }
    // The word without bytes at its ends that are not letters or digits.
    Word core(const Word &word) const;
    bool isAddressPlace(const std::vector<Word> &words, size_t i) const;

    std::string_view line_;
    Masks &masks_;
    std::vector<Edit> edits_;
    bool isNested_ = false;
};

} // namespace cli

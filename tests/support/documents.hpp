// Documents of cases: Markdown files with one case below each "##" heading. A case consists of
// fenced blocks of named kinds:
//
//     ## A value of the greatest length
//     The reason.
//     ```sdp lf t38=2          the kind, and words of the block
//     v=0
//     ```
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace support {

struct Block {
    std::vector<std::string> words; // after the kind
    std::vector<std::string> lines;
    int at = 0; // the line of the file

    bool has(const std::string &word) const;
    std::string joined() const; // every line ended by LF
};

struct Section {
    std::string file; // without folder
    int at = 0;
    std::string title;
    std::map<std::string, Block> blocks; // by kind

    bool has(const std::string &kind) const { return blocks.count(kind) != 0; }
    const Block &block(const std::string &kind) const { return blocks.at(kind); }
    std::optional<Block> find(const std::string &kind) const;
};

// Reports an error in a document: ends the program with the position and the reason.
[[noreturn]] void refuse(const std::string &file, int line, const std::string &why);

// Every case of every document in the folder. A document with blocks of other kinds, or with two of
// one kind in a case, is refused.
std::vector<Section> readSections(const std::string &folder,
                                  std::initializer_list<std::string_view> kinds);

// "AddressWithTtl": only letters and digits, as names of tests may hold.
std::string testName(const std::string &title);

} // namespace support

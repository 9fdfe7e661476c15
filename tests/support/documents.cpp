#include "support/documents.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace support {

namespace {

std::vector<std::string> wordsOf(const std::string &text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

class Reader {
public:
    Reader(const std::filesystem::path &path, std::initializer_list<std::string_view> kinds)
        : in_(path), path_(path.string()), name_(path.filename().string()), kinds_(kinds) {}

    void read(std::vector<Section> &sections) {
        const size_t before = sections.size();
        for (std::string line; next(line);) {
            if (line.starts_with("## ")) {
                sections.push_back({name_, at_, line.substr(3), {}});
            } else if (line.starts_with("```")) {
                if (sections.size() == before) {
                    refuse(path_, at_, "a block before the first case");
                }
                take(wordsOf(line.substr(3)), sections.back());
            }
        }
    }

private:
    bool next(std::string &line) {
        ++at_;
        return static_cast<bool>(std::getline(in_, line));
    }

    void take(const std::vector<std::string> &words, Section &section) {
        const std::string kind = words.empty() ? "" : words.front();
        if (std::find(kinds_.begin(), kinds_.end(), kind) == kinds_.end()) {
            refuse(path_, at_, "a block of the unknown kind \"" + kind + '"');
        }
        if (section.has(kind)) {
            refuse(path_, at_, "a second block of the kind \"" + kind + '"');
        }
        Block &block = section.blocks[kind];
        block.words.assign(words.begin() + 1, words.end());
        block.at = at_;
        for (std::string line; line != "```";) {
            if (!next(line)) {
                refuse(path_, block.at, "a block without an end");
            }
            if (line != "```") {
                block.lines.push_back(line);
            }
        }
    }

    std::ifstream in_;
    std::string path_;
    std::string name_;
    std::initializer_list<std::string_view> kinds_;
    int at_ = 0;
};

} // namespace

bool Block::has(const std::string &word) const {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::string Block::joined() const {
    std::string text;
    for (const std::string &line : lines) {
        text += line + '\n';
    }
    return text;
}

std::optional<Block> Section::find(const std::string &kind) const {
    return has(kind) ? std::optional(blocks.at(kind)) : std::nullopt;
}

void refuse(const std::string &file, int line, const std::string &why) {
    std::fprintf(stderr, "%s:%d: %s\n", file.c_str(), line, why.c_str());
    std::exit(2);
}

std::vector<Section> readSections(const std::string &folder,
                                  std::initializer_list<std::string_view> kinds) {
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".md") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<Section> sections;
    for (const auto &file : files) {
        Reader(file, kinds).read(sections);
    }
    return sections;
}

std::string testName(const std::string &title) {
    std::string name;
    bool startsWord = true;
    for (const char byte : title) {
        if (std::isalnum(static_cast<unsigned char>(byte)) == 0) {
            startsWord = true;
            continue;
        }
        name += startsWord ? static_cast<char>(std::toupper(byte)) : byte;
        startsWord = false;
    }
    return name;
}

} // namespace support

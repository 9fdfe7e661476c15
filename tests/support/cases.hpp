// Case documents: Markdown files in tests/cases, one case below each "##" heading.
//
//     ## A value of the greatest length
//     Why it is so.
//     ```sdp lf t38=2          the body; see below for the words and escapes
//     v=0
//     s={{x*1023}}
//     ```
//     ```tree                  the decoded body, as cli::describeTree prints it ...
//     ```text                  ... and what is written back
//     ```refused               or the refusal: code, check and place, then the log entries
//
// Words behind "sdp": lf (lines end in LF, else CR LF), raw (lines are joined as they stand),
// open (the last line has no end); avpf, family, max=N, t38=N, eol=lf|cr (configuration while the
// case runs).
// Escapes in a body: \r \n \t \0 \s (a blank) \\ \xHH, and {{text*N}} for N times the text.
//
// "tree part": the lines listed occur in this order, among others. "text same": what is written
// back is the body. Behind "text", once: what is written back decodes to another tree.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace support {

struct Block {
    std::vector<std::string> words; // behind the kind
    std::vector<std::string> lines;
    int at; // the line of the file

    bool has(const std::string &word) const;
    std::string joined() const; // every line ended by LF
};

struct Case {
    std::string file; // without folder
    int at;
    std::string title;
    std::string body;
    Block bodyBlock;
    std::optional<Block> tree;
    std::optional<Block> text;
    std::optional<Block> refused;
    bool avpf;
    bool family;      // SdpSetSupMedProtoRtpFamily
    uint32_t maxBody; // SdpSetMaxBodySize
    uint32_t t38Style;
    uint32_t lineEnd;
};

// The bytes that the lines of an "sdp" block stand for.
std::string bodyOf(const Block &block);

// Every case of every document in the folder. A document that cannot be read as cases ends the
// program with its file and line.
std::vector<Case> readCases(const std::string &folder);

} // namespace support

// The cases of tests/cases.
//
//     ## A value of the greatest length
//     The reason.
//     ```sdp lf t38=2          the body; see below for the words and escapes
//     v=0
//     s={{x*1023}}
//     ```
//     ```tree                  the decoded body, as cli::describeTree prints it ...
//     ```text                  ... and what is written back
//     ```refused               or the refusal: code, check and position, then the log entries
//
// Words after "sdp": lf (lines end in LF instead of CR LF), raw (lines are joined without line
// ends), open (the last line has no line end); avpf, family, max=N, t38=N, eol=lf|cr (the
// configuration of the case). Escapes in a body: \r \n \t \0 \s (a space) \\ \xHH, and {{text*N}}
// for N times the text.
//
// "tree part": the tree contains these lines in this order, and others. "text same": the text that
// is written back is the body. "text once": the text that is written back decodes to another tree.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/documents.hpp"

namespace support {

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

// The body that an "sdp" block describes.
std::string bodyOf(const Block &block);

// Every case of every document in the folder. A document that cannot be read as cases ends the
// program with its file and line.
std::vector<Case> readCases(const std::string &folder);

} // namespace support

// The subcommands. Each adds itself to the program with its options; its callback does the work and
// leaves the exit status.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/options.hpp"
#include "redact/redact.hpp"
#include "sdpline/sdpline.h"

namespace cli {

struct Outcome {
    int status = 0;
    int trouble = 1; // the status when the output cannot be written
};

void addDecode(CLI::App &app, Outcome &outcome);
void addFormat(CLI::App &app, Outcome &outcome);
void addEncode(CLI::App &app, Outcome &outcome);
void addCheck(CLI::App &app, Outcome &outcome);
void addDiff(CLI::App &app, Outcome &outcome);
void addExplain(CLI::App &app, Outcome &outcome);
void addProfiles(CLI::App &app, Outcome &outcome);

// ---- Options that several subcommands have

struct DecodeOptions {
    std::vector<std::string> paths = {"-"};
    bool json = false;
    bool avpf = false;
    bool redact = false;
};

struct WriteOptions {
    std::string lineEnd = "crlf";
    uint32_t t38Style = SDP_T38_STYLE_FLAG;
};

void addPaths(CLI::App &command, DecodeOptions &options, const std::string &what);
void addAvpf(CLI::App &command, bool &avpf);
void addRedact(CLI::App &command, bool &redact);
void addWriteOptions(CLI::App &command, WriteOptions &options);

void configure(const WriteOptions &options);

// ---- Bodies of all inputs, decoded one after another

// Calls `use` for every body that is accepted; the others are reported on standard error. Answers
// the exit status.
int forEachBody(const DecodeOptions &options,
                const std::function<bool(const std::string &title, SdpLine &line)> &use);

} // namespace cli

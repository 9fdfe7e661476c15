// The commands. Each adds itself to the program with its options; its callback does the work and
// sets the exit status.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/options.hpp"
#include "input/input.hpp"
#include "redact/redact.hpp"
#include "sdpline/sdpline.hpp"

namespace cli {

// The exit statuses of all commands, of which the greatest is returned.
enum ExitStatus : int {
    kFine = 0,
    kRefused = 1,      // a body, document or code was refused; the compared bodies differ
    kUnusable = kUsage // an input, an argument or the output cannot be used
};

using AddCommand = void(CLI::App &app, int &status);
AddCommand addDecode, addFormat, addEncode, addCheck, addCalls, addDiff, addExplain, addProfiles;
AddCommand addAnswer, addNegotiateCheck, addTidy, addRules;

// In the order of the help. A new command needs a row here, a section in the man page and a row in
// completion/generate.sh.
inline constexpr auto kCommands = std::to_array<AddCommand *>(
    {addDecode, addFormat, addEncode, addCheck, addCalls, addDiff, addExplain, addProfiles,
     addAnswer, addNegotiateCheck, addTidy, addRules});

// ---- Options that several commands have

struct DecodeOptions {
    std::vector<std::string> paths = {"-"};
    bool json = false;
    bool avpf = false;
    bool rtpFamily = false;
    uint32_t maxBody = SDP_MAX_BODY;
    bool tidy = false;
    bool redact = false;
    Selection selection;
    uint32_t jobs = 0; // inputs that are read at once; 0: one for each core
};

struct WriteOptions {
    std::string lineEnd = "crlf";
    uint32_t t38Style = SDP_T38_STYLE_FLAG;
};

void addPaths(CLI::App &command, DecodeOptions &options); // and addSelection()
void addSelection(CLI::App &command, DecodeOptions &options);
void addDecoderOptions(CLI::App &command, DecodeOptions &options);
void addTidyFlag(CLI::App &command, DecodeOptions &options);
void addMaxBody(CLI::App &command, uint32_t &maxBody);
void addRedact(CLI::App &command, DecodeOptions &options);
void addColor(CLI::App &command, std::string &color);
void addWriteOptions(CLI::App &command, WriteOptions &options);

void configure(const DecodeOptions &options);
void configure(const WriteOptions &options);

// ---- Reading the bodies of all inputs

// What commands that read bodies share: the exit status, and the messages on standard error.
class BodyUser : public InputUser {
public:
    // A redactor of the caller learns the values of the bodies, and masks messages about them; the
    // bodies themselves are not masked.
    explicit BodyUser(const DecodeOptions &options, Redactor *shared = nullptr);

    void problem(const InputProblem &problem) override;
    std::string packetOf(const Found &found) override;
    std::string textOf(const Found &found) override;
    const Selection &selection() const override { return selection_; }
    unsigned jobs() const override { return jobs_; }

    int status() const { return status_; }

protected:
    // Raises the exit status for a problem of this kind.
    void noteProblem(Problem::Kind kind);
    void atLeast(ExitStatus status) { status_ = std::max(status_, static_cast<int>(status)); }

    // The redactor that masks what is shown of this body; null without --redact.
    Redactor *redactorFor(const Found &found);

    // The body, repaired and masked as the options say. For a refused body: reports it, raises the
    // exit status and returns nothing.
    std::optional<sdpline::Body> decoded(const Found &found);
    // For prepare(): decodes the body before decoded() is called for it, unless --tidy is set.
    std::shared_ptr<const Prepared> decodedAhead(const Found &found) const;

private:
    sdpline::Result<sdpline::Body> decode(const Found &found, Redactor *redactor) const;

    const bool tidy_;
    const bool redact_;
    const Selection selection_;
    const unsigned jobs_;
    Redactor *const shared_;
    Redactor redactor_;
    int status_ = kFine;
};

// Calls `use` for every accepted body, with a title where there are several; reports the others on
// standard error. Returns the exit status.
int forEachBody(const DecodeOptions &options,
                const std::function<bool(const std::string &title, sdpline::Body &body)> &use);

} // namespace cli

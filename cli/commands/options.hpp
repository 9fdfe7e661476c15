// The command line, without the headers of CLI11, which take seconds to compile in every source
// that includes them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace cli {

constexpr int kUsage = 2; // the exit status for a wrong command line

struct Program {
    const char *name;
    const char *description;
    const char *version;
    const char *footer;
};
// Reads the command line of a program whose commands `add` adds, and runs the command that it
// names, which sets the status. After --help and --version the status is 0, after a wrong command
// line, which is reported on standard error, kUsage.
void readCommandLine(const Program &program, int argc, char **argv,
                     const std::function<void(CLI::App &)> &add, int &status);

struct CommandText {
    const char *name;
    const char *description;
    const char *footer; // examples and exit statuses
};
// Adds a command whose work is `run`.
CLI::App &addCommand(CLI::App &app, const CommandText &text, std::function<void()> run);

void addFlag(CLI::App &command, const char *name, bool &set, const std::string &help);
// An option of one word, shown as `--name TYPE`, or an operand where `type` is empty.
void addWord(CLI::App &command, const char *name, std::string &word, const char *type,
             const std::string &help);
void addRequired(CLI::App &command, const char *name, std::string &word, const std::string &help);
void addWords(CLI::App &command, const char *name, std::vector<std::string> &words,
              const std::string &help);
// Names that are separated by commas, in an option that may be repeated: `--name NAME,...`.
void addNames(CLI::App &command, const char *name, std::vector<std::string> &names,
              const std::string &help);
// The word must be one of the list, the number in the range.
void addChoice(CLI::App &command, const char *name, std::string &word, const char *type,
               const std::vector<std::string> &words, const std::string &help);
void addNumber(CLI::App &command, const char *name, uint32_t &number, const char *type,
               uint32_t least, uint32_t greatest, const std::string &help);

// An option of one word that may be repeated.
void addEach(CLI::App &command, const char *name, std::vector<std::string> &words, const char *type,
             const std::string &help);

// Reports an option that cannot be used: "--summary: ...". Does not return.
[[noreturn]] void refuseOption(const char *name, const std::string &reason);

// Reports a missing operand. Does not return.
[[noreturn]] void requireOperand(const char *name);

} // namespace cli

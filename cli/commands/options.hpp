// The command line, without the headers of the library that reads it: those cost seconds in every
// source that sees them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace cli {

constexpr int kUsage = 2; // the status of a command line that cannot be read

struct Program {
    const char *name;
    const char *description;
    const char *version;
    const char *footer;
};
// Reads the command line of a program to which `add` adds its commands, and runs the command that
// it names. The status is left as the command left it; after --help and --version it is 0, after
// wrong usage, which is told, kUsage.
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
// Names with commas between them, the option any number of times: `--name NAME,...`.
void addNames(CLI::App &command, const char *name, std::vector<std::string> &names,
              const std::string &help);
// Refused unless it is one of the words, or in the range.
void addChoice(CLI::App &command, const char *name, std::string &word, const char *type,
               const std::vector<std::string> &words, const std::string &help);
void addNumber(CLI::App &command, const char *name, uint32_t &number, const char *type,
               uint32_t least, uint32_t greatest, const std::string &help);

// An option of one word that may be given any number of times, with one word each.
void addEach(CLI::App &command, const char *name, std::vector<std::string> &words, const char *type,
             const std::string &help);

// What a command says of options that cannot be used: "--summary: ...". Does not return.
[[noreturn]] void refuseOption(const char *name, const std::string &reason);

// What a command says that finds an operand missing. Does not return.
[[noreturn]] void requireOperand(const char *name);

} // namespace cli

#include "commands/options.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <numeric>
#include <utility>

#include "text/escape.hpp"

namespace cli {

namespace {

// How many letters must be inserted, deleted or replaced to turn one word into the other.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = std::exchange(row[0], i);
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, replaced}));
        }
    }
    return row.back();
}

constexpr size_t kLongestWord = 40;
constexpr size_t kTypingErrors = 2;

// "; did you mean --redact?" for "--redct"; empty where no known word is similar.
std::string suggestion(std::string_view word, const std::vector<std::string> &known) {
    word = word.substr(0, word.find('='));
    std::string best;
    size_t least = kTypingErrors + 1;
    for (const std::string &candidate : known) {
        const size_t typed = word.size() <= kLongestWord ? distance(word, candidate) : least;
        if (typed < least && 2 * typed < candidate.size()) {
            least = typed;
            best = candidate;
        }
    }
    return best.empty() ? "" : "; did you mean " + best + '?';
}

std::vector<std::string> optionsOf(const CLI::App &command) {
    std::vector<std::string> names;
    for (const CLI::Option *const option : command.get_options()) {
        for (const std::string &name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::vector<std::string> commandsOf(const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::App *const command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

// CLI11 reads an operand "[a,b]" as a list of two, but it may be the name of a file. A mark before
// it keeps it one word. Words that begin with the mark get another one.
constexpr char kMark = '\x01';

std::vector<std::string> markedWords(int argc, char **argv) {
    std::vector<std::string> words(argv, argv + argc);
    for (std::string &word : words) {
        if (word.starts_with('[') || word.starts_with(kMark)) {
            word.insert(0, 1, kMark);
        }
    }
    return words;
}

std::string unmarked(std::string word) {
    word.erase(0, word.starts_with(kMark) ? 1 : 0);
    return word;
}

// An option or operand whose words lose the mark again.
template <typename Value>
CLI::Option *option(CLI::App &command, const char *name, Value &value, const std::string &help) {
    return command.add_option(name, value, help)->transform(unmarked);
}

// Says what is wrong with the command line; begins like all messages of the program.
void tellUsage(const CLI::App &app, const CLI::ParseError &error) {
    const auto chosen = app.get_subcommands();
    const CLI::App &command = chosen.empty() ? app : *chosen.front();
    const std::string name =
        app.get_name() + (chosen.empty() ? "" : ' ' + chosen.front()->get_name());
    std::vector<std::string> extras = app.remaining(true);
    std::ranges::transform(extras, extras.begin(), unmarked);
    std::cerr << name << ": ";
    if (extras.empty() || extras.front() == "--") {
        std::cerr << escaped(error.what());
    } else if (chosen.empty() && !extras.front().starts_with('-')) {
        std::cerr << "no subcommand is named \"" << escaped(extras.front()) << '"'
                  << suggestion(extras.front(), commandsOf(app));
    } else {
        std::cerr << "unexpected argument \"" << escaped(extras.front()) << '"'
                  << suggestion(extras.front(), optionsOf(command));
    }
    std::cerr << "\nRun \"" << name << " --help\" for more information.\n";
}

} // namespace

void readCommandLine(const Program &program, int argc, char **argv,
                     const std::function<void(CLI::App &)> &add, int &status) {
    CLI::App app(program.description, program.name);
    app.require_subcommand(1);
    app.set_version_flag("--version", program.version);
    app.footer(program.footer);
    add(app);
    const std::vector<std::string> words = markedWords(argc, argv);
    std::vector<const char *> arguments;
    for (const std::string &word : words) {
        arguments.push_back(word.c_str());
    }
    try {
        app.parse(argc, arguments.data());
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) { // --help or --version
            status = app.exit(error);
        } else {
            tellUsage(app, error);
            status = kUsage;
        }
    }
}

CLI::App &addCommand(CLI::App &app, const CommandText &text, std::function<void()> run) {
    CLI::App *const command = app.add_subcommand(text.name, text.description);
    command->footer(text.footer);
    command->callback(std::move(run));
    return *command;
}

void addFlag(CLI::App &command, const char *name, bool &set, const std::string &help) {
    command.add_flag(name, set, help);
}

void addWord(CLI::App &command, const char *name, std::string &word, const char *type,
             const std::string &help) {
    option(command, name, word, help)->type_name(type)->take_last();
}

void addRequired(CLI::App &command, const char *name, std::string &word, const std::string &help) {
    option(command, name, word, help)->required()->type_name("");
}

void addWords(CLI::App &command, const char *name, std::vector<std::string> &words,
              const std::string &help) {
    option(command, name, words, help)->type_name("");
}

void addNames(CLI::App &command, const char *name, std::vector<std::string> &names,
              const std::string &help) {
    option(command, name, names, help)->type_name("NAME,...")->allow_extra_args(false);
}

void addChoice(CLI::App &command, const char *name, std::string &word, const char *type,
               const std::vector<std::string> &words, const std::string &help) {
    option(command, name, word, help)
        ->check(CLI::IsMember(words).description(""))
        ->type_name(type)
        ->take_last();
}

void addNumber(CLI::App &command, const char *name, uint32_t &number, const char *type,
               uint32_t least, uint32_t greatest, const std::string &help) {
    option(command, name, number, help)
        ->check(CLI::Range(least, greatest).description(""))
        ->type_name(type)
        ->take_last();
}

void addEach(CLI::App &command, const char *name, std::vector<std::string> &words, const char *type,
             const std::string &help) {
    option(command, name, words, help)->type_name(type)->allow_extra_args(false);
}

void refuseOption(const char *name, const std::string &reason) {
    throw CLI::ValidationError(name, reason);
}

void requireOperand(const char *name) {
    throw CLI::RequiredError(name);
}

} // namespace cli

#include "commands/options.hpp"

#include <CLI/CLI.hpp>

#include <iostream>
#include <sstream>
#include <utility>

#include "output/escape.hpp"

namespace cli {

namespace {

// What is wrong with the command line quotes it, and file names of anybody's may be on it.
void printEscaped(const std::string &problem) {
    std::istringstream lines(problem);
    for (std::string line; std::getline(lines, line);) {
        std::cerr << escaped(line) << '\n';
    }
}

} // namespace

bool readCommandLine(const Program &program, int argc, char **argv,
                     const std::function<void(CLI::App &)> &add, int &status) {
    CLI::App app(program.description, program.name);
    app.require_subcommand(1);
    app.set_version_flag("--version", program.version);
    app.footer(program.footer);
    add(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        std::ostringstream problem;
        status = app.exit(error, std::cout, problem) == 0 ? 0 : kUsage;
        printEscaped(problem.str());
        return false;
    }
    return true;
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
    command.add_option(name, word, help)->type_name(type);
}

void addRequired(CLI::App &command, const char *name, std::string &word, const std::string &help) {
    command.add_option(name, word, help)->required()->type_name("");
}

void addWords(CLI::App &command, const char *name, std::vector<std::string> &words,
              const std::string &help) {
    command.add_option(name, words, help)->type_name("");
}

void addNames(CLI::App &command, const char *name, std::vector<std::string> &names,
              const std::string &help) {
    command.add_option(name, names, help)->type_name("NAME,...")->allow_extra_args(false);
}

void addChoice(CLI::App &command, const char *name, std::string &word, const char *type,
               const std::vector<std::string> &words, const std::string &help) {
    command.add_option(name, word, help)
        ->check(CLI::IsMember(words).description(""))
        ->type_name(type);
}

void addNumber(CLI::App &command, const char *name, uint32_t &number, const char *type,
               uint32_t least, uint32_t greatest, const std::string &help) {
    command.add_option(name, number, help)
        ->check(CLI::Range(least, greatest).description(""))
        ->type_name(type);
}

void addEach(CLI::App &command, const char *name, std::vector<std::string> &words, const char *type,
             const std::string &help) {
    command.add_option(name, words, help)->type_name(type)->allow_extra_args(false);
}

void refuseOption(const char *name, const std::string &reason) {
    throw CLI::ValidationError(name, reason);
}

void requireOperand(const char *name) {
    throw CLI::RequiredError(name);
}

} // namespace cli

#include "output/terminal.hpp"

#include <cstdlib>
#include <iostream>

#include <unistd.h>

namespace cli {

namespace {

constexpr Style kPlain = {};
constexpr Style kColoured = {"\033[1m",  "\033[1;31m", "\033[1;32m",
                             "\033[32m", "\033[31m",   "\033[0m"};

constexpr size_t kManyFiles = 20;
constexpr size_t kBarWidth = 30;

bool isSet(const char *variable) {
    const char *const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool isTerminal(std::FILE *stream) {
    return isatty(fileno(stream)) != 0;
}

bool isDumb() {
    const char *const terminal = std::getenv("TERM");
    return terminal == nullptr || std::string_view(terminal) == "dumb";
}

} // namespace

const Style &styleFor(std::FILE *stream, std::string_view choice) {
    if (choice != "auto") {
        return choice == "always" ? kColoured : kPlain;
    }
    return isTerminal(stream) && !isDumb() && !isSet("NO_COLOR") ? kColoured : kPlain;
}

Progress::Progress(size_t total, bool wanted)
    : total_(total), wanted_(wanted && total >= kManyFiles && isTerminal(stderr) && !isDumb()) {}

void Progress::advance() {
    const size_t percent = done_ * 100 / total_;
    ++done_;
    if (!wanted_ || (shown_ != 0 && done_ * 100 / total_ == percent)) {
        return;
    }
    const size_t filled = done_ * kBarWidth / total_;
    const std::string line = '[' + std::string(filled, '#') + std::string(kBarWidth - filled, '.') +
                             "] " + std::to_string(done_) + '/' + std::to_string(total_) + " files";
    std::cout.flush(); // it may go to the same terminal
    std::fputs(('\r' + line).c_str(), stderr);
    std::fflush(stderr);
    shown_ = line.size();
}

void Progress::hide() {
    if (shown_ != 0) {
        std::fputs(('\r' + std::string(shown_, ' ') + '\r').c_str(), stderr);
        std::fflush(stderr);
        shown_ = 0;
    }
}

} // namespace cli

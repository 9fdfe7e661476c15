#include "output/terminal.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <unistd.h>

namespace cli {

namespace {

constexpr Style kPlain = {};
constexpr Style kColoured = {"\033[1m",  "\033[1;31m", "\033[1;32m",
                             "\033[32m", "\033[31m",   "\033[0m"};

constexpr size_t kManyFiles = 20;
constexpr uint64_t kManyBytes = 32'000'000;
constexpr size_t kBarWidth = 30;
constexpr double kMega = 1e6;
constexpr double kGiga = 1e9;

// A number by a format of printf().
std::string printed(const char *format, double number) {
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

// "0:05", "12:34", "1:00:00"
std::string clockText(uint64_t seconds) {
    const auto two = [](uint64_t number) {
        return (number < 10 ? ":0" : ":") + std::to_string(number);
    };
    return seconds < 3600
               ? std::to_string(seconds / 60) + two(seconds % 60)
               : std::to_string(seconds / 3600) + two(seconds / 60 % 60) + two(seconds % 60);
}

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

double Advance::share() const {
    const double share = bytes != 0 ? static_cast<double>(bytesDone) / static_cast<double>(bytes)
                                    : static_cast<double>(filesDone) /
                                          static_cast<double>(std::max<size_t>(files, 1));
    return std::min(share, 1.0); // a file may have grown
}

std::string Advance::text() const {
    const bool knowsEnd = bytes != 0 || files > 1;
    const auto filled = static_cast<size_t>(share() * kBarWidth);
    std::string line =
        knowsEnd ? '[' + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] "
                 : "";
    const bool isLarge = static_cast<double>(std::max(bytes, bytesDone)) >= kGiga;
    const auto amount = [isLarge](uint64_t count) {
        return printed("%.1f", static_cast<double>(count) / (isLarge ? kGiga : kMega));
    };
    if (files > 1) {
        line += std::to_string(filesDone) + '/' + std::to_string(files) + " files";
    } else {
        line += (bytes != 0 ? amount(bytesDone) + " of " + amount(bytes) : amount(bytesDone)) +
                (isLarge ? " GB" : " MB");
    }
    if (bytesDone == 0 || seconds <= 0) {
        return line;
    }
    const double rate = static_cast<double>(bytesDone) / seconds;
    line += printed(", %.0f MB/s", rate / kMega);
    if (bytes != 0) {
        const double left = static_cast<double>(bytes - std::min(bytes, bytesDone)) / rate;
        line += ", " + clockText(static_cast<uint64_t>(left + 0.5)) + " left";
    }
    return line;
}

Progress::Progress(size_t files, uint64_t bytes, bool wanted)
    : advance_{files, 0, bytes}, wanted_(wanted && isTerminal(stderr) && !isDumb()) {}

void Progress::read(uint64_t bytes) {
    advance_.bytesDone += bytes;
    show();
}

void Progress::fileDone() {
    ++advance_.filesDone;
    show();
}

void Progress::show() {
    constexpr std::chrono::milliseconds kOften(200);
    const bool isMuch =
        advance_.files >= kManyFiles || std::max(advance_.bytes, advance_.bytesDone) >= kManyBytes;
    const Clock::time_point now = wanted_ && isMuch ? Clock::now() : Clock::time_point();
    const auto bytes = static_cast<unsigned>(advance_.share() * 100);
    const auto files =
        static_cast<unsigned>(advance_.filesDone * 100 / std::max<size_t>(advance_.files, 1));
    const bool isSame = shown_ != 0 && bytes + files == percents_;
    if (!wanted_ || !isMuch || (isSame && now - drawn_ < kOften)) {
        return;
    }
    percents_ = bytes + files;
    drawn_ = now;
    advance_.seconds = std::chrono::duration<double>(now - begin_).count();
    std::string line = advance_.text();
    const size_t columns = line.size();
    line.resize(std::max(columns, shown_), ' ');
    std::cout.flush(); // standard output may be the same terminal
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

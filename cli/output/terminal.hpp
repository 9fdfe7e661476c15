// Colour and a progress bar, which are used only on terminals.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// ANSI escape sequences; empty where colour is not wanted.
struct Style {
    std::string_view bold;
    std::string_view error;
    std::string_view caret;
    std::string_view added;
    std::string_view removed;
    std::string_view reset;
};

inline const std::vector<std::string> kColorChoices = {"auto", "always", "never"};

// For the choice "auto": colour if the stream is a terminal that supports it and NO_COLOR is not
// set.
const Style &styleFor(std::FILE *stream, std::string_view choice = "auto");

// How much of the inputs has been read. An unknown number of bytes is 0.
struct Advance {
    size_t files = 0;
    size_t filesDone = 0;
    uint64_t bytes = 0;
    uint64_t bytesDone = 0;
    double seconds = 0; // since the start

    // "[######........................] 12/40 files, 340 MB/s, 0:05 left", and for one file
    // "[###...........................] 0.2 of 2.1 GB, 340 MB/s, 0:05 left"
    std::string text() const;
    double share() const; // from 0 to 1
};

// Shows this in a line on standard error that is overwritten; only on a terminal, and only for many
// files or many bytes.
class Progress {
public:
    Progress(size_t files, uint64_t bytes, bool wanted = true);
    ~Progress() { hide(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void read(uint64_t bytes); // adds bytes
    void fileDone();           // adds a file
    void hide();               // before something else is written to the terminal

private:
    using Clock = std::chrono::steady_clock;

    void show();

    Advance advance_;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point drawn_; // when the line was last written
    unsigned percents_ = 0;   // in that line
    size_t shown_ = 0;        // columns of that line
    bool wanted_;
};

} // namespace cli

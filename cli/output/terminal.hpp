// What is done on a terminal only: colour, and a progress bar.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// ANSI styles; empty where colour is not wanted.
struct Style {
    std::string_view bold;
    std::string_view error;
    std::string_view caret;
    std::string_view added;
    std::string_view removed;
    std::string_view reset;
};

inline const std::vector<std::string> kColorChoices = {"auto", "always", "never"};

// Of the choice "auto": colour when the stream is a terminal that knows it and NO_COLOR is not set.
const Style &styleFor(std::FILE *stream, std::string_view choice = "auto");

// A bar on standard error that counts up to a number of files. It is shown on a terminal only, and
// for many files only.
class Progress {
public:
    explicit Progress(size_t total, bool wanted = true);
    ~Progress() { hide(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void advance(); // one more is done
    void hide();    // before something else is written to the terminal

private:
    size_t total_;
    size_t done_ = 0;
    size_t shown_ = 0; // columns taken
    bool wanted_;
};

} // namespace cli

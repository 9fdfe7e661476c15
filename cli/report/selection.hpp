// Which diagnostics are shown, and how often each check failed.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "report/entry.hpp"
#include "report/report.hpp"

namespace cli {

// The names of checks and doubts that are not wanted.
class IgnoredNames {
public:
    // Names with commas between them. False, with a message, for what is the name of neither.
    bool add(std::string_view list, std::string &error);

    // A file with a name a line; what follows "#" is a comment.
    bool addFile(const std::string &path, std::string &error);

    bool contains(std::string_view name) const { return names_.contains(name); }

private:
    std::set<std::string_view> names_; // as the tables have them
};

// Counts by the name of the check.
class Tally {
public:
    // `input`: the name of the input, masked.
    void add(const ReportEntry &entry, const std::string &input);

    // The most frequent first; of equally frequent ones, errors first, then by name.
    std::vector<CheckCount> counts() const;

private:
    std::map<std::string, CheckCount, std::less<>> counts_;
};

} // namespace cli

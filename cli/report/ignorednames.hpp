// The checks and doubts that a command line leaves out of the report.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "report/entry.hpp"

namespace cli {

class IgnoredNames {
public:
    // Adds names that are separated by commas. Returns false, with a message, for a name that is
    // neither that of a check nor that of a doubt.
    bool add(std::string_view list, std::string &error);

    // Adds the names in a file, one on each line; "#" begins a comment.
    bool addFile(const std::string &path, std::string &error);

    bool contains(std::string_view name) const { return names_.contains(name); }

private:
    std::set<std::string_view> names_; // as the tables spell them
};

} // namespace cli

// How often each check failed.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "report/entry.hpp"
#include "report/report.hpp"

namespace cli {

// Counts diagnostics by the name of their check or doubt.
class Tally {
public:
    // `input` is the name of the input, masked.
    void add(const ReportEntry &entry, const std::string &input);

    // Sorted: the most frequent first; among equals, errors before warnings, then by name.
    std::vector<CheckCount> counts() const;

private:
    std::map<std::string, CheckCount, std::less<>> counts_;
};

} // namespace cli

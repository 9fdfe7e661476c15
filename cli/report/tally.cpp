#include "report/tally.hpp"

#include <algorithm>
#include <tuple>

namespace cli {

void Tally::add(const ReportEntry &entry, const std::string &input) {
    CheckCount &row = counts_[std::string(entry.name)];
    if (row.count++ == 0) {
        row.name = entry.name;
        row.severity = entry.severity;
        row.sentence = sentenceFor(entry.name);
        row.first = input + ':' + std::to_string(entry.line) +
                    (entry.column == 0 ? "" : ':' + std::to_string(entry.column));
    }
}

std::vector<CheckCount> Tally::counts() const {
    std::vector<CheckCount> list;
    for (const auto &[name, row] : counts_) {
        list.push_back(row);
    }
    std::ranges::sort(list, [](const CheckCount &a, const CheckCount &b) {
        return std::tuple(b.count, a.severity, std::string_view(a.name)) <
               std::tuple(a.count, b.severity, std::string_view(b.name));
    });
    return list;
}

} // namespace cli

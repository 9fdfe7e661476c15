#include "report/selection.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <tuple>

#include "output/escape.hpp"
#include "output/origin.hpp"
#include "output/text.hpp"

namespace cli {

bool IgnoredNames::add(std::string_view list, std::string &error) {
    for (size_t at = 0; at <= list.size();) {
        const size_t end = std::min(list.find(',', at), list.size());
        const std::string_view given = trimmed(list.substr(at, end - at));
        const std::string_view name = nameKnown(given);
        if (name.empty()) {
            error = "no check and no doubt is named \"" + escaped(given) +
                    "\": see sdpline explain --list and sdpline rules";
            return false;
        }
        names_.insert(name);
        at = end + 1;
    }
    return true;
}

bool IgnoredNames::addFile(const std::string &path, std::string &error) {
    std::ifstream file(path);
    std::string line;
    for (size_t number = 1; std::getline(file, line); ++number) {
        const std::string_view name = trimmed(std::string_view(line).substr(0, line.find('#')));
        if (!name.empty() && !add(name, error)) {
            error = escaped(path) + ':' + std::to_string(number) + ": " + error;
            return false;
        }
    }
    if (!file.eof()) { // a folder opens, and fails when it is read
        error = escaped(path) + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

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

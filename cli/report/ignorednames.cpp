#include "report/ignorednames.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

bool IgnoredNames::add(std::string_view list, std::string &error) {
    for (size_t at = 0; at <= list.size();) {
        const size_t end = std::min(list.find(',', at), list.size());
        const std::string_view given = trimmed(list.substr(at, end - at));
        const std::string_view name = nameKnown(given);
        if (name.empty()) {
            error = "no check or doubt is named \"" + escaped(given) +
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
    if (!file.eof()) { // a folder can be opened, but not read
        error = escaped(path) + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace cli

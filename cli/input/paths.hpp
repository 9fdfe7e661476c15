// Finds the files that the arguments of a command name.
#pragma once

#include <string>
#include <vector>

namespace cli {

struct PathError {
    std::string path;
    std::string reason;
};

// The paths, with every folder replaced by the regular files below it, sorted. Names that begin
// with a dot are left out, links to folders are not followed. Folders that cannot be read are left
// out and added to `errors`.
std::vector<std::string> expandFolders(const std::vector<std::string> &paths,
                                       std::vector<PathError> &errors);

} // namespace cli

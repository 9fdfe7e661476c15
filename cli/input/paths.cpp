#include "input/paths.hpp"

#include <algorithm>
#include <filesystem>

namespace cli {

namespace {

namespace fs = std::filesystem;

// The files and folders directly in one folder.
struct Listing {
    std::vector<std::string> files;
    std::vector<std::string> folders;
};

Listing listingOf(const std::string &folder, std::vector<PathError> &errors) {
    Listing listing;
    std::error_code problem;
    fs::directory_iterator entry(folder, problem);
    while (!problem && entry != fs::directory_iterator()) {
        std::error_code ignored; // an entry may have been removed meanwhile
        if (!entry->path().filename().string().starts_with('.')) {
            if (entry->is_regular_file(ignored)) {
                listing.files.push_back(entry->path().string());
            } else if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
                listing.folders.push_back(entry->path().string());
            }
        }
        entry.increment(problem);
    }
    if (problem) {
        errors.push_back({folder, problem.message()});
    }
    return listing;
}

void addFolder(const std::string &folder, std::vector<std::string> &files,
               std::vector<PathError> &errors) {
    std::vector<std::string> found;
    std::vector<std::string> open = {folder};
    while (!open.empty()) {
        const std::string next = std::move(open.back());
        open.pop_back();
        Listing listing = listingOf(next, errors);
        std::move(listing.files.begin(), listing.files.end(), std::back_inserter(found));
        std::move(listing.folders.begin(), listing.folders.end(), std::back_inserter(open));
    }
    std::sort(found.begin(), found.end());
    std::move(found.begin(), found.end(), std::back_inserter(files));
}

} // namespace

std::vector<std::string> expandFolders(const std::vector<std::string> &paths,
                                       std::vector<PathError> &errors) {
    std::vector<std::string> files;
    for (const std::string &path : paths) {
        std::error_code ignored;
        if (path != "-" && fs::is_directory(path, ignored)) {
            addFolder(path, files, errors);
        } else {
            files.push_back(path);
        }
    }
    return files;
}

} // namespace cli

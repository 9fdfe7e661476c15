#include "input/input.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>

namespace cli {

namespace {

namespace fs = std::filesystem;

bool isHidden(const fs::path &path) {
    return path.filename().string().starts_with('.');
}

void addFolder(const std::string &folder, std::vector<std::string> &files,
               std::vector<std::string> &errors) {
    std::error_code problem;
    fs::recursive_directory_iterator entry(folder, problem);
    std::vector<std::string> found;
    while (!problem && entry != fs::recursive_directory_iterator()) {
        std::error_code ignored;
        if (isHidden(entry->path())) {
            entry.disable_recursion_pending();
        } else if (entry->is_regular_file(ignored)) {
            found.push_back(entry->path().string());
        }
        entry.increment(problem);
    }
    if (problem) {
        errors.push_back(folder + ": " + problem.message());
    }
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
}

} // namespace

Source::Source(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), lineStarts_{0} {
    for (size_t at = text_.find('\n'); at != std::string::npos; at = text_.find('\n', at + 1)) {
        lineStarts_.push_back(at + 1);
    }
}

Place Source::placeOf(size_t offset) const {
    const auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
    return {static_cast<size_t>(next - lineStarts_.begin()), offset - *(next - 1) + 1};
}

std::optional<Source> readSource(const std::string &path, std::string &error) {
    const auto close = [](std::FILE *file) { file != stdin ? std::fclose(file) : 0; };
    errno = 0;
    const std::unique_ptr<std::FILE, decltype(close)> file(
        path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close);
    std::string text;
    char chunk[65536];
    for (size_t got = 1; file && got != 0;) {
        got = std::fread(chunk, 1, sizeof chunk, file.get());
        text.append(chunk, got);
    }
    if (!file || std::ferror(file.get()) != 0) {
        error = std::strerror(errno);
        return std::nullopt;
    }
    return Source(path == "-" ? "standard input" : path, std::move(text));
}

std::vector<std::string> expandFolders(const std::vector<std::string> &paths,
                                       std::vector<std::string> &errors) {
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

Inputs readInputs(const std::vector<std::string> &paths) {
    Inputs inputs;
    inputs.sources.reserve(paths.size()); // bodies point to sources
    for (const std::string &path : paths) {
        std::string error;
        std::optional<Source> source = readSource(path, error);
        if (!source) {
            std::cerr << "sdpline: " << (path == "-" ? "standard input" : path) << ": " << error
                      << '\n';
            inputs.complete = false;
            continue;
        }
        inputs.sources.push_back(std::move(*source));
        const Source &held = inputs.sources.back();
        const Bodies found = findBodies(held.text());
        for (const Problem &problem : found.problems) {
            std::cerr << "sdpline: " << problemText(held, problem) << '\n';
            inputs.complete = false;
        }
        for (const BodyPlace &place : found.bodies) {
            inputs.bodies.push_back({&held, place});
        }
    }
    return inputs;
}

std::string problemText(const Source &source, const Problem &problem) {
    const size_t line = source.placeOf(problem.offset).line;
    return source.name() + (line > 1 ? ':' + std::to_string(line) : "") + ": " + problem.text;
}

} // namespace cli

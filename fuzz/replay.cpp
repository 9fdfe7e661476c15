// Runs a target on files, or on every file in folders: for compilers without libFuzzer.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz.hpp"

namespace {

std::vector<std::filesystem::path> filesOf(const std::filesystem::path &path) {
    if (!std::filesystem::is_directory(path)) {
        return {path};
    }
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(path)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool run(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "%s: cannot be read\n", path.c_str());
        return false;
    }
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    fuzz::Exact input(bytes);
    std::printf("%s\n",
                path.c_str()); // the last name printed is that of the input that ended the program
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

} // namespace

int main(int argc, char **argv) {
    size_t runs = 0;
    bool good = true;
    for (int i = 1; i < argc; ++i) {
        for (const auto &path : filesOf(argv[i])) {
            good = run(path) && good;
            ++runs;
        }
    }
    std::printf("%zu inputs\n", runs);
    return good && runs != 0 ? 0 : 1;
}

#include "input/input.hpp"

#include <new>

#include "input/filekind.hpp"
#include "input/paths.hpp"
#include "input/window.hpp"
#include "output/escape.hpp"

namespace cli {

namespace {

class InputReader {
public:
    InputReader(const std::string &path, InputUser &user)
        : path_(path), name_(inputName(path)), user_(user), window_(path) {}

    // Returns false where the input cannot be read.
    bool run() {
        if (!fill()) {
            return false;
        }
        if (const std::string kind = foreignKind(window_.text()); !kind.empty()) {
            user_.problem({Problem::Unusable, path_, escaped(kind)});
            return false;
        }
        do {
            Bodies found;
            const size_t done = finder_.take(window_.text(), window_.last(), found);
            hand(found);
            window_.drop(done);
            passed_ += done;
            if (!fill()) {
                return false;
            }
        } while (!window_.text().empty());
        Bodies rest;
        finder_.finish(rest);
        hand(rest);
        return true;
    }

private:
    bool fill() {
        if (window_.fill(BodyFinder::kAhead)) {
            return true;
        }
        user_.problem({Problem::Unusable, path_, window_.error()});
        return false;
    }

    void hand(const Bodies &found) {
        for (const Problem &problem : found.problems) {
            const size_t line = problem.line > 1 ? problem.line : 0;
            user_.problem({problem.kind, path_, escaped(problem.text), line});
        }
        for (const BodyPlace &place : found.bodies) {
            const std::string_view text = window_.text().substr(place.offset - passed_, place.size);
            const std::string_view head =
                place.carried
                    ? window_.text().substr(place.message - passed_, place.offset - place.message)
                    : std::string_view();
            user_.body({name_, path_, text, place.offset, place.line, head, {}});
        }
    }

    const std::string &path_;
    const std::string name_;
    InputUser &user_;
    Window window_;
    BodyFinder finder_;
    size_t passed_ = 0;
};

} // namespace

void readInputs(const std::vector<std::string> &paths, InputUser &user) {
    std::vector<PathError> errors;
    const std::vector<std::string> files = expandFolders(paths, errors);
    user.files(files.size());
    for (const PathError &error : errors) {
        user.problem({Problem::Unusable, error.path, error.reason});
    }
    for (const std::string &file : files) {
        bool read = false;
        try {
            read = InputReader(file, user).run();
        } catch (const std::bad_alloc &) {
            user.problem({Problem::Unusable, file, "it does not fit into memory"});
        }
        user.fileDone(read);
    }
}

std::string InputProblem::message() const {
    return inputName(path) + (line == 0 ? "" : ':' + std::to_string(line)) + ": " + text;
}

std::string inputName(const std::string &path) {
    return path == "-" ? "standard input" : escaped(path);
}

} // namespace cli

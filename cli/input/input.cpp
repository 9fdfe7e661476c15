#include "input/input.hpp"

#include <filesystem>
#include <new>

#include "capture/container.hpp"
#include "input/ahead.hpp"
#include "input/captureinput.hpp"
#include "input/filekind.hpp"
#include "input/filter.hpp"
#include "input/paths.hpp"
#include "input/window.hpp"
#include "text/escape.hpp"

namespace cli {

namespace {

class InputReader {
public:
    InputReader(const std::string &path, InputUser &user)
        : path_(path), user_(user), window_(path), found_{inputName(path), path, {}, 0, 1} {}

    // Returns false where the input cannot be read.
    bool run() {
        if (!fill(kMagic)) {
            return false;
        }
        if (Container::begins(window_.text())) {
            return readCapture(window_, path_, found_.name, user_);
        }
        if (const std::string kind = foreignKind(window_.text()); !kind.empty()) {
            user_.problem({Problem::Unusable, path_, escaped(kind)});
            return false;
        }
        return fill(BodyFinder::kStep) && readText();
    }

private:
    static constexpr size_t kMagic = 32; // what tells the kind of an input

    bool readText() {
        do {
            bodies_.clear();
            const size_t done = finder_.take(window_.text(), window_.last(), bodies_);
            hand(bodies_);
            window_.drop(done);
            passed_ += done;
            if (!fill(done == 0 ? BodyFinder::kAhead : BodyFinder::kStep)) {
                return false;
            }
        } while (!window_.text().empty());
        bodies_.clear();
        finder_.finish(bodies_);
        hand(bodies_);
        return true;
    }

    bool fill(size_t size) {
        const bool read = window_.fill(size);
        user_.bytesRead(window_.newlyTaken());
        if (read) {
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
        size_t told = 0; // messages that were passed to the user
        for (const BodyPlace &place : found.bodies) {
            told = tellMessages(found, told, place.offset);
            const std::string_view head =
                place.carried
                    ? window_.text().substr(place.message - passed_, place.offset - place.message)
                    : std::string_view();
            user_.body(placed(place, head));
        }
        tellMessages(found, told, ~size_t(0));
    }

    // Passes on the messages that begin before the offset.
    size_t tellMessages(const Bodies &found, size_t from, size_t before) {
        for (; from < found.messages.size() && found.messages[from].offset < before; ++from) {
            const BodyPlace &place = found.messages[from];
            user_.message(placed(place, window_.text().substr(place.offset - passed_, place.size)));
        }
        return from;
    }

    const Found &placed(const BodyPlace &place, std::string_view head) {
        found_.text = window_.text().substr(place.offset - passed_, place.size);
        found_.offset = place.offset;
        found_.line = place.line;
        found_.head = head;
        return found_;
    }

    const std::string &path_;
    InputUser &user_;
    Window window_;
    BodyFinder finder_;
    Bodies bodies_; // in the text of the window
    Found found_;   // the body or message that is passed to the user
    size_t passed_ = 0;
};

bool readInput(const std::string &path, InputUser &user) {
    try {
        return InputReader(path, user).run();
    } catch (const std::bad_alloc &) {
        user.problem({Problem::Unusable, path, "it does not fit into memory"});
        return false;
    }
}

// 0 where one of them is not a regular file, since the size of a pipe is not known.
uint64_t bytesOf(const std::vector<std::string> &files) {
    uint64_t bytes = 0;
    for (const std::string &file : files) {
        std::error_code problem;
        const auto size = std::filesystem::file_size(file, problem);
        if (file == "-" || problem) {
            return 0;
        }
        bytes += size;
    }
    return bytes;
}

} // namespace

void readInputs(const std::vector<std::string> &paths, InputUser &user) {
    std::vector<PathError> errors;
    const std::vector<std::string> files = expandFolders(paths, errors);
    user.files(files.size(), bytesOf(files));
    for (const PathError &error : errors) {
        user.problem({Problem::Unusable, error.path, error.reason});
    }
    Filter filter(user);
    if (files.size() > 1 && user.jobs() > 1) {
        readAhead(files, readInput, filter);
    } else {
        for (const std::string &file : files) {
            user.fileDone(readInput(file, filter));
        }
    }
    if (!files.empty()) {
        filter.finish(files.back());
    }
}

void InputUser::problemAt(const Found &place, Problem::Kind kind, const std::string &text) {
    problem({kind, place.path, packetOf(place) + ": " + text});
}

std::string InputUser::packetOf(const Found &found) {
    return found.packet.frame == 0 ? "" : "frame " + std::to_string(found.packet.frame);
}

const Selection &InputUser::selection() const {
    static const Selection all;
    return all;
}

std::string InputProblem::message() const {
    return inputName(path) + (line == 0 ? "" : ':' + std::to_string(line)) + ": " + text;
}

std::string inputName(const std::string &path) {
    return path == "-" ? "standard input" : escaped(path);
}

} // namespace cli

// Files and standard input, read whole, with the bodies found in them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "input/message.hpp"

namespace cli {

struct Place {
    size_t line; // from 1, as columns
    size_t column;
};

// One input: its bytes, and where its lines begin.
class Source {
public:
    Source(std::string name, std::string text);

    const std::string &name() const { return name_; }
    std::string_view text() const { return text_; }
    std::string_view body(const BodyPlace &place) const {
        return text().substr(place.offset, place.size);
    }
    Place placeOf(size_t offset) const;

private:
    std::string name_;
    std::string text_;
    std::vector<size_t> lineStarts_;
};

// The whole file, or standard input for "-". Without a value the reason is in `error`.
std::optional<Source> readSource(const std::string &path, std::string &error);

// The paths with every folder replaced by the regular files below it, sorted; names that begin with
// a dot are left out. Folders that cannot be read are in `errors`, as "name: reason".
std::vector<std::string> expandFolders(const std::vector<std::string> &paths,
                                       std::vector<std::string> &errors);

// One body of one input.
struct Found {
    const Source *source;
    BodyPlace place;

    std::string_view text() const { return source->body(place); }
};

// All inputs of a command and their bodies, in order.
struct Inputs {
    std::vector<Source> sources;
    std::vector<Found> bodies;
    bool complete = true; // nothing was unreadable
};

// Reads all of them; what cannot be read, or has no body, is reported on standard error.
Inputs readInputs(const std::vector<std::string> &paths);

// "name: message", or "name:LINE: message" for a problem that is not at the start.
std::string problemText(const Source &source, const Problem &problem);

} // namespace cli

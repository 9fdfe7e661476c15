#include "commands/onebody.hpp"

#include <algorithm>

#include "output/maskedorigin.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// The numbers of the lines that are m= lines; `first` is the number of the first line.
std::vector<size_t> mediaLinesOf(std::string_view text, size_t first) {
    std::vector<size_t> lines;
    for (size_t begin = 0; begin < text.size(); ++first) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = text.substr(begin, end - begin);
        const size_t letter = line.find_first_not_of(kDroppedBeforeLine);
        if (letter < line.size() && line.substr(letter).starts_with("m=")) {
            lines.push_back(first);
        }
        begin = end + 1;
    }
    return lines;
}

} // namespace

OneBody::OneBody(const DecodeOptions &options, const std::string &path, Redactor *shared)
    : BodyUser(options, shared) {
    readInputs({path}, *this);
    if (count_ != 1 && status() != kUnusable) {
        problem({Problem::Unusable, path, "expected one body, found " + std::to_string(count_)});
    }
}

void OneBody::body(const Found &found) {
    if (++count_ != 1) {
        return;
    }
    name_ = placeName(found, nullptr);
    line_ = found.line;
    mediaLines_ = mediaLinesOf(found.text, found.line);
    body_ = decoded(found);
}

std::string OneBody::placeOf(std::optional<uint32_t> stream) const {
    const bool known = stream && *stream < mediaLines_.size();
    return name_ + ':' + std::to_string(known ? mediaLines_[*stream] : line_) + ":1";
}

} // namespace cli

#include "input/filter.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "text/strings.hpp"

namespace cli {

namespace {

constexpr size_t kLongestPart = 60;

// A name that is valid on every file system: letters, digits, "-", "_", and "." except at the
// start.
std::string safeName(std::string_view text) {
    std::string name;
    for (const char byte : text.substr(0, kLongestPart)) {
        const bool isSafe = isAlnum(byte) || byte == '-' || (byte == '.' && !name.empty());
        name += isSafe ? byte : '_';
    }
    return name;
}

// "calls-8-INVITE-3c26_host": the input, the frame or line, the method or status and the Call-ID.
std::string nameFor(const Found &found) {
    const Origin origin = originOf(found.packet, found.head);
    const std::string stem =
        found.path == "-" ? "stdin" : std::filesystem::path(found.path).stem().string();
    const size_t place = origin.packet.frame != 0 ? origin.packet.frame : found.line;
    std::string name = safeName(stem) + '-' + std::to_string(place);
    for (const std::string *const part : {&origin.message, &origin.callId}) {
        name += part->empty() ? "" : '-' + safeName(*part);
    }
    return name;
}

} // namespace

bool Filter::takes(const Found &found) const {
    return !wanted_.narrows() || wanted_.takes(originOf(found.packet, found.head));
}

void Filter::message(const Found &whole) {
    if (takes(whole)) {
        user_.message(whole);
    }
}

void Filter::problemAt(const Found &place, Problem::Kind kind, const std::string &text) {
    if (takes(place)) {
        user_.problemAt(place, kind, text);
    }
}

std::shared_ptr<const Prepared> Filter::prepare(const Found &found) const {
    return takes(found) ? user_.prepare(found) : nullptr;
}

void Filter::body(const Found &found) {
    ++seen_;
    if (!takes(found)) {
        return;
    }
    ++taken_;
    if (!wanted_.extract.empty()) {
        extract(found);
    }
    user_.body(found);
}

// Does not overwrite existing files: a second run must write to another folder.
void Filter::extract(const Found &found) {
    std::error_code problem;
    std::filesystem::create_directories(wanted_.extract, problem);
    const std::string name = nameFor(found);
    std::string path = wanted_.extract + '/' + name + ".sdp";
    for (size_t n = 2; !written_.insert(path).second; ++n) {
        path = wanted_.extract + '/' + name + '-' + std::to_string(n) + ".sdp";
    }
    const std::string text = user_.textOf(found);
    errno = 0;
    std::FILE *const file = std::fopen(path.c_str(), "wbx");
    const bool written =
        file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
    const int reason = errno;
    if (file == nullptr || std::fclose(file) != 0 || !written) {
        user_.problem({Problem::Unusable, path, std::strerror(reason)});
    }
}

void Filter::finish(const std::string &path) {
    if (wanted_.narrows() && seen_ != 0 && taken_ == 0) {
        user_.problem({Problem::Unusable, path,
                       "none of " + counted(seen_, "body", "bodies") + " is selected"});
    }
}

} // namespace cli

#include "peers.hpp"

#include <algorithm>
#include <string_view>

namespace bench {

namespace {

std::vector<Peer> &list() {
    static std::vector<Peer> all;
    return all;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines.push_back(line);
    }
    return lines;
}

} // namespace

std::vector<Peer> peers() {
    std::vector<Peer> sorted = list();
    std::sort(sorted.begin(), sorted.end(), [](const Peer &left, const Peer &right) {
        return std::string_view(left.name) < right.name;
    });
    return sorted;
}

bool addPeer(const Peer &peer) {
    list().push_back(peer);
    return true;
}

Lost lostLines(const std::string &text, const std::string &printed) {
    const std::vector<std::string_view> lines = linesOf(text);
    std::vector<std::string_view> written = linesOf(printed);
    size_t lost = 0;
    for (const std::string_view line : lines) {
        const auto found = std::find(written.begin(), written.end(), line);
        if (found == written.end()) {
            ++lost;
        } else {
            written.erase(found);
        }
    }
    return {lost, lines.size()};
}

} // namespace bench

// Other libraries that parse SDP, each in one source, which is built only where it is installed.
// Each is called as its documentation says: one parse and free for each text, and one print and
// free.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

// A text that a library has parsed.
class Parsed {
public:
    virtual ~Parsed() = default;
    virtual bool print() = 0; // and frees the text
    virtual std::string printed() = 0;
};

// A text that Library::parse read. Library has these functions:
//  - parse: returns the tree of a text, or null where it is refused,
//  - release: frees the tree,
//  - print: writes the tree, copies the text if wanted, and frees it.
template <class Library>
class ParsedBy final : public Parsed {
public:
    using Tree = decltype(Library::parse(std::string()));

    explicit ParsedBy(Tree tree) : tree_(tree) {}
    ~ParsedBy() override { Library::release(tree_); }
    ParsedBy(const ParsedBy &) = delete;
    ParsedBy &operator=(const ParsedBy &) = delete;

    bool print() override { return Library::print(tree_, nullptr); }

    std::string printed() override {
        std::string copy;
        Library::print(tree_, &copy);
        return copy;
    }

private:
    Tree tree_;
};

struct Peer {
    const char *name;
    bool (*parse)(const std::string &text);                   // and frees everything
    std::unique_ptr<Parsed> (*keep)(const std::string &text); // null when the text is refused
};

// The libraries that the program was built with, by name. Each source adds one before main().
std::vector<Peer> peers();
bool addPeer(const Peer &peer);

template <class Library>
bool addPeer(const char *name) {
    const auto parse = [](const std::string &text) {
        const auto tree = Library::parse(text);
        if (tree != nullptr) {
            Library::release(tree);
        }
        return tree != nullptr;
    };
    const auto keep = [](const std::string &text) -> std::unique_ptr<Parsed> {
        const auto tree = Library::parse(text);
        return tree == nullptr ? nullptr : std::make_unique<ParsedBy<Library>>(tree);
    };
    return addPeer({name, parse, keep});
}

// How many lines of the text the peer does not print after it has parsed it, and how many there
// are.
struct Lost {
    size_t lines;
    size_t of;
};
Lost lostLines(const std::string &text, const std::string &printed);

} // namespace bench

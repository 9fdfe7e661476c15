#include "output/jsonlist.hpp"

#include "output/diagnostic.hpp"

namespace cli {

namespace {

// The text of the document without its last line end; every line but the first is indented.
std::string indented(const nlohmann::ordered_json &document, size_t columns) {
    std::string text = dumped(document);
    text.pop_back();
    std::string result;
    for (const char byte : text) {
        result += byte;
        if (byte == '\n') {
            result.append(columns, ' ');
        }
    }
    return result;
}

} // namespace

JsonList::JsonList(std::ostream &out, const std::string &name) : out_(out) {
    out_ << "{\n  \"" << name << "\": [";
}

void JsonList::add(const nlohmann::ordered_json &item) {
    out_ << (empty_ ? "\n    " : ",\n    ") << indented(item, 4);
    empty_ = false;
}

void JsonList::finish(const nlohmann::ordered_json &members) {
    out_ << (empty_ ? "]" : "\n  ]");
    for (const auto &member : members.items()) {
        out_ << ",\n  \"" << member.key() << "\": " << indented(member.value(), 2);
    }
    out_ << "\n}\n";
}

} // namespace cli

// Writes a JSON document with one list item by item, so that the list need not be in memory.
#pragma once

#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

namespace cli {

class JsonList {
public:
    // Begins an object with the list as its first member.
    JsonList(std::ostream &out, const std::string &name);

    void add(const nlohmann::ordered_json &item);

    // Ends the list, and the object with these members.
    void finish(const nlohmann::ordered_json &members);

private:
    std::ostream &out_;
    bool empty_ = true;
};

} // namespace cli

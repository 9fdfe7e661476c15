// A body in parts, and the fault of each rule that can be put into it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sdpline/sdptidy.h"

namespace tidytest {

// The lines of the body that can have a fault.
enum class Place {
    Version,
    Origin,
    Name,
    Info,
    Connection,
    Time,
    Tool, // an attribute of the session
    Audio,
    AudioInfo,
    AudioConnection,
    Bandwidth,
    Map,      // a=rtpmap of a static payload
    OtherMap, // and of another
    Number,   // a=ptime
    Flag,
    Silence,
    Message, // the other m= line
    MessageConnection,
    Whole // of no line, or of one that is put in
};

struct UntidyLine {
    Place place;
    std::string key;
    std::vector<std::string> fields;
    std::string equals = "=";
    std::string gap = " "; // between the first two fields
    std::string tail = {};

    std::string text() const;
};

class UntidyBody {
public:
    UntidyBody();

    UntidyLine &at(Place place);
    void erase(Place place);
    void insertAfter(Place place, const std::string &line);
    void repeat(Place place);
    void moveAfter(Place place, Place other);

    // Faults of the whole.
    std::string before;
    std::string lineEnd = "\r\n";
    bool isTooLong = false; // by its carriage returns

    std::string text() const;

private:
    std::vector<UntidyLine>::iterator find(Place place);

    std::vector<UntidyLine> lines_;
};

struct Fault {
    uint32_t rule;
    std::vector<Place> places;
    std::function<void(UntidyBody &, Place)> apply;
};

// One for each rule, in the order in which they are put in: a line is changed, then taken away,
// moved or repeated as it is.
const std::vector<Fault> &faults();

} // namespace tidytest

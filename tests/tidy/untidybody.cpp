#include "tidy/untidybody.hpp"

#include <algorithm>
#include <iterator>

namespace tidytest {

std::string UntidyLine::text() const {
    std::string text = key + equals;
    for (size_t i = 0; i < fields.size(); ++i) {
        text += (i == 0 ? "" : i == 1 ? gap : " ") + fields[i];
    }
    return text + tail;
}

UntidyBody::UntidyBody()
    : lines_({{Place::Version, "v", {"0"}},
              {Place::Origin, "o", {"-", "1", "1", "IN", "IP4", "192.0.2.1"}},
              {Place::Name, "s", {"call"}},
              {Place::Info, "i", {"info"}},
              {Place::Connection, "c", {"IN", "IP4", "192.0.2.1"}},
              {Place::Time, "t", {"0", "0"}},
              {Place::Tool, "a", {"tool:x"}},
              {Place::Audio, "m", {"audio", "5004", "RTP/AVP", "0", "96"}},
              {Place::AudioInfo, "i", {"audio"}},
              {Place::AudioConnection, "c", {"IN", "IP4", "192.0.2.2"}},
              {Place::Bandwidth, "b", {"AS:64"}},
              {Place::Map, "a", {"rtpmap:0", "PCMU/8000"}},
              {Place::OtherMap, "a", {"rtpmap:96", "x-codec/8000"}},
              {Place::Number, "a", {"ptime:20"}},
              {Place::Flag, "a", {"sendrecv"}},
              {Place::Silence, "a", {"silenceSupp:off", "-", "-", "-", "-"}},
              {Place::Message, "m", {"message", "7394", "TCP/MSRP", "*"}},
              {Place::MessageConnection, "c", {"IN", "IP4", "192.0.2.3"}}}) {}

std::vector<UntidyLine>::iterator UntidyBody::find(Place place) {
    return std::ranges::find(lines_, place, &UntidyLine::place);
}

UntidyLine &UntidyBody::at(Place place) {
    return *find(place);
}

void UntidyBody::erase(Place place) {
    lines_.erase(find(place));
}

void UntidyBody::insertAfter(Place place, const std::string &line) {
    lines_.insert(find(place) + 1, {Place::Whole, line, {}, ""});
}

void UntidyBody::repeat(Place place) {
    UntidyLine copy = *find(place);
    copy.place = Place::Whole;
    lines_.insert(find(place) + 1, copy);
}

void UntidyBody::moveAfter(Place place, Place other) {
    const UntidyLine line = *find(place);
    lines_.erase(find(place));
    lines_.insert(find(other) + 1, line);
}

std::string UntidyBody::text() const {
    std::string text = before;
    for (const UntidyLine &line : lines_) {
        text += line.text() + lineEnd;
    }
    return text;
}

namespace {

const std::vector<Place> kConnections = {Place::Connection, Place::AudioConnection,
                                         Place::MessageConnection};
const std::vector<Place> kTyped = {Place::Origin, Place::Connection, Place::AudioConnection,
                                   Place::MessageConnection};

size_t netOf(Place place) {
    return place == Place::Origin ? 3 : 0;
}

using Apply = std::function<void(UntidyBody &, Place)>;

// Replaces the text of a field of the line.
Apply field(size_t index, const char *text) {
    return [=](UntidyBody &body, Place at) { body.at(at).fields[index] = text; };
}

// The same, counted from the network type.
Apply fieldFromNet(size_t index, const char *text) {
    return [=](UntidyBody &body, Place at) { body.at(at).fields[netOf(at) + index] = text; };
}

// Adds a line after that of a place.
Apply lineAfter(Place place, const char *line) {
    return [=](UntidyBody &body, Place) { body.insertAfter(place, line); };
}

Apply moveAfter(Place place) {
    return [=](UntidyBody &body, Place at) { body.moveAfter(at, place); };
}

void erase(UntidyBody &body, Place at) {
    body.erase(at);
}

// ---- Within a line

void withoutAddressType(UntidyBody &body, Place at) {
    std::vector<std::string> &fields = body.at(at).fields;
    fields.erase(fields.begin() + static_cast<ptrdiff_t>(netOf(at)) + 1);
}

void withTwoUsers(UntidyBody &body, Place at) {
    std::vector<std::string> &fields = body.at(at).fields;
    fields[0] = "J";
    fields.insert(fields.begin() + 1, "Q");
}

std::vector<Fault> ofAddresses() {
    return {
        {SDP_TIDY_ORIGIN_ID, {Place::Origin}, field(2, "0xAC4E")},
        {SDP_TIDY_NET_CASE, kTyped, fieldFromNet(0, "in")},
        {SDP_TIDY_ADDR_TYPE_WORD, kTyped, fieldFromNet(1, "IPV4")},
        {SDP_TIDY_ADDR_FAMILY, kConnections, field(2, "2001:db8::1")},
        {SDP_TIDY_CONN_HOST, kConnections, field(2, "media.example.com")},
        {SDP_TIDY_ADDR_TYPE_MISSING, kTyped, withoutAddressType},
        {SDP_TIDY_ORIGIN_ADDRESS,
         {Place::Origin},
         [](UntidyBody &body, Place at) { body.at(at).fields.pop_back(); }},
        {SDP_TIDY_ORIGIN_SPACES, {Place::Origin}, withTwoUsers},
        {SDP_TIDY_ORIGIN_USER,
         {Place::Origin},
         [](UntidyBody &body, Place at) { body.at(at).fields.erase(body.at(at).fields.begin()); }},
    };
}

void withASpaceInTheMap(UntidyBody &body, Place at) {
    std::string &first = body.at(at).fields[0];
    const size_t colon = first.find(':');
    colon == std::string::npos
        ? body.at(at).fields[1].insert(body.at(at).fields[1].find('/') + 1, " ")
        : first.insert(colon + 1, " ");
}

std::vector<Fault> ofValues() {
    return {
        {SDP_TIDY_NAME_EMPTY,
         {Place::Name},
         [](UntidyBody &body, Place at) { body.at(at).fields.clear(); }},
        {SDP_TIDY_VALUE_MISSING,
         {Place::Flag},
         [](UntidyBody &body, Place at) { body.at(at).fields[0] += ':'; }},
        {SDP_TIDY_ATTR_COLON,
         {Place::Map, Place::OtherMap, Place::Number},
         [](UntidyBody &body, Place at) { std::ranges::replace(body.at(at).fields[0], ':', ' '); }},
        {SDP_TIDY_RTPMAP_SPACE, {Place::Map, Place::OtherMap}, withASpaceInTheMap},
        {SDP_TIDY_RTPMAP_CLOCK, {Place::Map}, field(1, "PCMU")},
        {SDP_TIDY_RTPMAP_NO_CLOCK, {Place::OtherMap}, field(1, "x-codec")},
        {SDP_TIDY_SILENCE_PARAMS,
         {Place::Silence},
         [](UntidyBody &body, Place at) { body.at(at).fields.resize(1); }},
        {SDP_TIDY_FORMAT_MISSING,
         {Place::Audio, Place::Message},
         [](UntidyBody &body, Place at) { body.at(at).fields.resize(3); }},
    };
}

std::vector<Fault> ofBlanks() {
    return {
        {SDP_TIDY_SPACE_RUN,
         {Place::Origin, Place::Connection, Place::AudioConnection, Place::Time, Place::Audio,
          Place::Message, Place::Map, Place::OtherMap},
         [](UntidyBody &body, Place at) {
             const bool map = at == Place::Map || at == Place::OtherMap;
             body.at(at).gap = map ? "\t" : "  "; // a name may begin with blanks
         }},
        {SDP_TIDY_TRAILING_SPACE,
         {Place::Version, Place::Origin, Place::Connection, Place::AudioConnection, Place::Time,
          Place::Message, Place::Map, Place::OtherMap, Place::Number, Place::Flag},
         [](UntidyBody &body, Place at) { body.at(at).tail = " "; }},
        {SDP_TIDY_KEY_SPACE,
         {Place::Version, Place::Origin, Place::Name, Place::Info, Place::Connection,
          Place::AudioConnection, Place::Time, Place::Audio, Place::Bandwidth, Place::Map,
          Place::OtherMap, Place::Number, Place::Flag, Place::Silence, Place::Message},
         [](UntidyBody &body, Place at) { body.at(at).equals = " ="; }},
    };
}

// ---- Of lines, and of the whole

std::vector<Fault> ofLines() {
    return {
        {SDP_TIDY_LINE_TWICE,
         {Place::Origin, Place::Name, Place::Info, Place::Connection, Place::AudioInfo,
          Place::AudioConnection},
         [](UntidyBody &body, Place at) { body.repeat(at); }},
        {SDP_TIDY_LINE_AGAIN,
         {Place::Name, Place::Info, Place::AudioInfo},
         [](UntidyBody &body, Place at) { body.insertAfter(at, body.at(at).key + "=another"); }},
        {SDP_TIDY_CONN_AGAIN, kConnections,
         [](UntidyBody &body, Place at) { body.insertAfter(at, "c=IN IP4 192.0.2.9"); }},
        {SDP_TIDY_LINE_ORDER,
         {Place::AudioInfo, Place::AudioConnection, Place::Bandwidth},
         moveAfter(Place::Silence)},
        {SDP_TIDY_LINE_LEVEL, {Place::Time}, moveAfter(Place::Bandwidth)},
        {SDP_TIDY_LINE_UNKNOWN, {Place::Whole}, lineAfter(Place::Bandwidth, "y=1")},
        {SDP_TIDY_LINE_EMPTY, {Place::Whole}, lineAfter(Place::Bandwidth, "b=")},
        {SDP_TIDY_EMPTY_LINES, {Place::Whole}, lineAfter(Place::Origin, "")},
        {SDP_TIDY_VERSION_MISSING, {Place::Version}, erase},
        {SDP_TIDY_ORIGIN_MISSING, {Place::Origin}, erase},
        {SDP_TIDY_NAME_MISSING, {Place::Name}, erase},
        {SDP_TIDY_TIME_MISSING, {Place::Time}, erase},
    };
}

std::vector<Fault> ofTheWhole() {
    return {
        {SDP_TIDY_LEADING_BLANK,
         {Place::Whole},
         [](UntidyBody &body, Place) { body.before += body.lineEnd + " "; }},
        {SDP_TIDY_BYTE_ORDER_MARK,
         {Place::Whole},
         [](UntidyBody &body, Place) { body.before.insert(0, "\xEF\xBB\xBF"); }},
        {SDP_TIDY_LINE_END_SIZE,
         {Place::Whole},
         [](UntidyBody &body, Place) { body.isTooLong = true; }},
        {SDP_TIDY_LINE_END_CR,
         {Place::Whole},
         [](UntidyBody &body, Place) {
             body.lineEnd = "\r";
             std::erase(body.before, '\n');
         }},
    };
}

} // namespace

const std::vector<Fault> &faults() {
    static const std::vector<Fault> all = [] {
        std::vector<Fault> joined;
        for (const auto some : {ofAddresses, ofValues, ofBlanks, ofLines, ofTheWhole}) {
            std::ranges::move(some(), std::back_inserter(joined));
        }
        return joined;
    }();
    return all;
}

} // namespace tidytest

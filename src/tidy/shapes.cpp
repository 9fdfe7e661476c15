#include "tidy/shapes.hpp"

#include <array>
#include <iterator>

#include "text/perfecthash.hpp"

namespace sdpline::tidy {

namespace {

struct NamedShape {
    std::string_view name;
    Shape shape;
};

constexpr NamedShape kAttributes[] = {
    {"rtpmap", Shape::Rtpmap},
    {"fmtp", Shape::Text},
    {"sendrecv", Shape::Flag},
    {"sendonly", Shape::Flag},
    {"recvonly", Shape::Flag},
    {"inactive", Shape::Flag},
    {"ptime", Shape::Words},
    {"maxptime", Shape::Words},
    {"setup", Shape::Words},
    {"curr", Shape::Words},
    {"des", Shape::Words},
    {"conf", Shape::Words},
    {"framerate", Shape::Words},
    {"quality", Shape::Words},
    {"cat", Shape::Text},
    {"keywds", Shape::Text},
    {"tool", Shape::Text},
    {"orient", Shape::Text},
    {"type", Shape::Text},
    {"charset", Shape::Text},
    {"sdplang", Shape::Text},
    {"lang", Shape::Text},
    {"T38FaxVersion", Shape::Words},
    {"T38MaxBitRate", Shape::Words},
    {"T38FaxMaxBuffer", Shape::Words},
    {"T38FaxMaxDatagram", Shape::Words},
    {"T38FaxFillBitRemoval", Shape::MaybeWords},
    {"T38FaxTranscodingMMR", Shape::MaybeWords},
    {"T38FaxTranscodingJBIG", Shape::MaybeWords},
    {"T38FaxRateManagement", Shape::Words},
    {"T38FaxUdpEC", Shape::Words},
    {"silenceSupp", Shape::Silence},
    {"ecan", Shape::Text},
    {"ipbcp", Shape::Words},
    {"fax", Shape::Flag},
    {"modem", Shape::Flag},
    {"X-fax", Shape::Flag},
    {"X-modem", Shape::Flag},
};

constexpr PerfectHash<std::size(kAttributes)> kNames([] {
    std::array<std::string_view, std::size(kAttributes)> names;
    for (size_t row = 0; row < names.size(); ++row) {
        names[row] = kAttributes[row].name;
    }
    return names;
}());

} // namespace

Shape shapeOf(std::string_view name) {
    const size_t row = kNames.lastRow(name);
    return row != std::size(kAttributes) ? kAttributes[row].shape : Shape::Any;
}

} // namespace sdpline::tidy

// The shapes that tidy distinguishes, from the library's table of attributes.
#include "tidy/shapes.hpp"

#include <array>

#include "sdpline/cpp/detail/attributes.hpp"
#include "text/perfecthash.hpp"

namespace sdpline::tidy {

namespace {

constexpr Shape shapeOfValue(tables::Shape shape) {
    switch (shape) {
    case tables::Shape::Flag:
    case tables::Shape::Direction: return Shape::Flag;
    case tables::Shape::Number:
    case tables::Shape::Decimal:
    case tables::Shape::Keyword:
    case tables::Shape::IpBcp:
    case tables::Shape::Precondition: return Shape::Words;
    case tables::Shape::Switch: return Shape::MaybeWords;
    case tables::Shape::Text:
    case tables::Shape::Ecan: return Shape::Text;
    case tables::Shape::RtpMap: return Shape::Rtpmap;
    case tables::Shape::SilenceSupp: return Shape::Silence;
    case tables::Shape::None:
    case tables::Shape::NamedText:
    case tables::Shape::NameOnly: break;
    }
    return Shape::Any;
}

// Indexed by row of kNames; the last one is that of unknown names.
constexpr auto kShapes = [] {
    std::array<Shape, tables::kLastAttribute + 1> shapes{};
    for (uint32_t row = 0; row < tables::kLastAttribute; ++row) {
        shapes[row] = shapeOfValue(tables::kAttributes[row + 1].shape);
    }
    shapes.back() = Shape::Any;
    return shapes;
}();

constexpr PerfectHash<tables::kLastAttribute> kNames([] {
    std::array<std::string_view, tables::kLastAttribute> names;
    for (uint32_t row = 0; row < tables::kLastAttribute; ++row) {
        names[row] = tables::kAttributes[row + 1].bareName();
    }
    return names;
}());

} // namespace

Shape shapeOf(std::string_view name) {
    return kShapes[kNames.lastRow(name)];
}

} // namespace sdpline::tidy

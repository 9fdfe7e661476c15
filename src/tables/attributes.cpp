// The exported attribute names, and the lookup of a type by its name.
#include "tables/attributes.hpp"

#include "sdpline/sdpline.h"
#include "text/perfecthash.hpp"

extern "C" {

#define ATTRIBUTE(type, enumerator, name, shape, words, deviations)                                \
    {sizeof name - 1, const_cast<char *>(name)},
constexpr SipString sstrSdpAttrNames[] = {
#include "sdpline/cpp/detail/attributes.def"
};
#undef ATTRIBUTE

} // extern "C"

namespace sdpline {

namespace {

constexpr PerfectHash<kLastAttribute> kNames([] {
    std::array<std::string_view, kLastAttribute> names;
    for (uint32_t row = 0; row < kLastAttribute; ++row) {
        names[row] = kAttributes[row + 1].bareName();
    }
    return names;
}());

} // namespace

uint32_t attributeType(std::string_view name) {
    return static_cast<uint32_t>(kNames.lastRow(name)) + 1;
}

} // namespace sdpline

// Makes its table from the rows of the library.
#include "output/checktable.hpp"

#include "checks/rowwords.hpp"

namespace cli {

namespace {

using namespace sdpline::rowwords;
using sdpline::ResultKind;

// How a check is logged is left out.
constexpr CheckInfo kRows[] = {
#define CHECK(source, name, function, outcome, logged, sentence)                                   \
    {static_cast<uint32_t>(sdpline::Source::source), #name, #function, outcome, sentence},
#include "checks/all.def"
#undef CHECK
};

} // namespace

std::span<const CheckInfo> allChecks() {
    return kRows;
}

uint32_t codeOf(const CheckInfo &check, uint32_t fileBase) {
    const uint32_t location = check.outcome.location;
    return check.returns(ResultKind::Composed)
               ? (fileBase + check.file) << 24 | location << 10 | check.outcome.errorClass
               : location;
}

std::string_view sourceOf(const CheckInfo &check) {
    for (const CheckInfo &other : kRows) {
        SDPResultText words = {};
        if (other.returns(ResultKind::Composed) && other.file == check.file &&
            SdpLibDescribeResult(codeOf(other, g_gSipStackFileId), &words) == 0) {
            return words.pcSource;
        }
    }
    return {};
}

} // namespace cli

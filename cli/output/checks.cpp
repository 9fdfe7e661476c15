// Reads the same rows as the library.
#include "output/checks.hpp"

#include "checks/checks.hpp"

namespace cli {

namespace {

using sdpline::Source;

// The words that the rows are written in; how a check is logged is not needed.
struct Result {
    decltype(CheckInfo::kind) kind;
    uint32_t location;
    uint32_t errorClass;
};
constexpr Result PASS = {CheckInfo::PassedUp, 0, 0};
constexpr Result CODE(uint32_t location, uint32_t errorClass) {
    return {CheckInfo::Composed, location, errorClass};
}
constexpr Result BARE(uint32_t result) {
    return {CheckInfo::Bare, result, 0};
}
constexpr uint32_t RESOURCE = SDP_ERRCLASS_RESOURCE;
constexpr uint32_t NOT_SDP = SDP_ERRCLASS_NOT_SDP;
constexpr uint32_t FIELD_SYNTAX = SDP_ERRCLASS_FIELD_SYNTAX;
constexpr uint32_t UNEXPECTED_LINE = SDP_ERRCLASS_UNEXPECTED_LINE;
constexpr uint32_t BAD_ADDRESS = SDP_ERRCLASS_BAD_ADDRESS;

constexpr CheckInfo row(Source source, const char *name, const char *function, Result result,
                        const char *sentence) {
    return {static_cast<uint32_t>(source),
            name,
            function,
            result.kind,
            result.location,
            result.errorClass,
            sentence};
}

constexpr CheckInfo kRows[] = {
#define CHECK(source, name, function, outcome, logged, sentence)                                   \
    row(Source::source, #name, #function, outcome, sentence),
#include "checks/all.def"
#undef CHECK
};

} // namespace

std::span<const CheckInfo> allChecks() {
    return kRows;
}

uint32_t codeOf(const CheckInfo &check, uint32_t fileBase) {
    return check.kind == CheckInfo::Composed
               ? (fileBase + check.file) << 24 | check.location << 10 | check.errorClass
               : check.location;
}

std::string_view sourceOf(const CheckInfo &check) {
    for (const CheckInfo &other : kRows) {
        SDPResultText words = {};
        if (other.kind == CheckInfo::Composed && other.file == check.file &&
            SdpLibDescribeResult(codeOf(other, g_gSipStackFileId), &words) == 0) {
            return words.pcSource;
        }
    }
    return {};
}

} // namespace cli

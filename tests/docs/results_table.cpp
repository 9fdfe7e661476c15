// Prints docs/results.md from the table of failing checks, so that the document always agrees with
// the code.
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "checks/checks.hpp"

using namespace sdpline;

namespace {

constexpr char kHead[] =
    R"(# Every result

The result of each failing check of the library. `tests/docs/results_table.cpp` prints this file from the
table in `src/checks/`, and a test compares the two. `./dev docs` updates it.

- **Code** is the result while `g_gSipStackFileId` is 0. A base is added to the top 8 bits, modulo 256.
  "bare" results are the number alone, whatever the base. "passed on" rows add a log entry and return the
  code of the function that they called.
- **Class** is the low 10 bits of the code, by its name in `sdpline.h` without `SDP_ERRCLASS_`.
- **Log** is the level of the log entry and the number in its category, "none" for 0xFFFFFFFF; "-" is
  a check that is not logged. A check that is not logged does not set `g_gSipCodePoint` either.
- **Check** is the name in the code, in `SDPFailure.pcCheck` and in `SDPResultText.pcCheck`.

`SdpLibDescribeResult` reads the same table.
)";

std::string codeText(Check check) {
    char text[16];
    switch (row(check).outcome.kind) {
    case ResultKind::Forwarded: return "passed on";
    case ResultKind::Bare:
        std::snprintf(text, sizeof text, "bare %" PRIu32, codeOf(check));
        return text;
    case ResultKind::Composed: break;
    }
    std::snprintf(text, sizeof text, "0x%08" PRIx32, codeOf(check));
    return text;
}

std::string logText(const Logged &logged) {
    if (logged.level == 0) {
        return "-";
    }
    const std::string category =
        logged.category == kNoCategory ? "none" : std::to_string(logged.category);
    return std::to_string(logged.level) + ", " + category;
}

// A vertical bar would end the cell.
std::string cell(const char *sentence) {
    std::string text;
    for (; *sentence != '\0'; ++sentence) {
        text += *sentence == '|' ? "\\|" : std::string(1, *sentence);
    }
    return text;
}

// Codes first, in rising order; then the rows without a code, in the table's order.
bool isBefore(Check a, Check b) {
    const bool aHasCode = row(a).outcome.kind == ResultKind::Composed;
    const bool bHasCode = row(b).outcome.kind == ResultKind::Composed;
    if (aHasCode != bHasCode) {
        return aHasCode;
    }
    return aHasCode && codeOf(a) < codeOf(b);
}

void printSource(Source source) {
    std::vector<Check> checks;
    for (size_t i = 0; i < kCheckCount; ++i) {
        if (kChecks[i].source == source) {
            checks.push_back(static_cast<Check>(i));
        }
    }
    std::stable_sort(checks.begin(), checks.end(), isBefore);
    std::printf("\n## %s, %u\n\n", sourceName(source), static_cast<unsigned>(source));
    std::printf("| Code | Function | Class | Log | Check | What was wrong |\n");
    std::printf("| --- | --- | --- | --- | --- | --- |\n");
    for (const Check check : checks) {
        const CheckRow &failed = row(check);
        std::printf("| %s | `%s` | %s | %s | %s | %s |\n", codeText(check).c_str(), failed.function,
                    className(failed.outcome.errorClass), logText(failed.logged).c_str(),
                    failed.name, cell(failed.sentence).c_str());
    }
}

} // namespace

int main() {
    std::vector<Source> sources;
    for (const CheckRow &failed : kChecks) {
        if (std::find(sources.begin(), sources.end(), failed.source) == sources.end()) {
            sources.push_back(failed.source);
        }
    }
    std::sort(sources.begin(), sources.end());
    std::printf("%s", kHead);
    for (const Source source : sources) {
        printSource(source);
    }
}

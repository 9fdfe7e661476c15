// Tidies any bytes: a text that decodes is not changed, a repaired text decodes and is not changed
// again, and every removed line has a repair. Doubts lie inside a text that decodes, and are those
// that a second, simple search finds.
#include <algorithm>
#include <map>
#include <string>

#include "fuzz.hpp"
#include "sdpline/sdptidy.h"
#include "tidy/plaindoubts.hpp"

namespace {

using fuzz::require;

// A report that is released at the end of its scope.
class Report {
public:
    using Operation = decltype(&SdpTidyText);

    Report(Operation operation, std::string_view text, uint64_t rules) : bytes_(text) {
        const SipString given = bytes_.text();
        const SDPTidyOptions options = {rules, nullptr};
        result_ = operation(&given, &options, &report_);
        require(bytes_.view() == text, "tidying leaves the text as it is");
        require((result_ == 0) == (report_.pstLine != nullptr), "a body, or a reason");
        require((result_ == 0) == (report_.enOutcome != SDP_TIDY_REFUSED),
                "the outcome says which");
    }
    ~Report() { SdpTidyRelease(&report_); }
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;

    const SDPTidyReport *operator->() const { return &report_; }
    SDPResult result() const { return result_; }
    std::string_view text() const { return {report_.strText.pcData, report_.strText.ulLen}; }

private:
    fuzz::Exact bytes_;
    SDPTidyReport report_ = {};
    SDPResult result_ = 0;
};

// Each line, without its line end, with its number in the report.
template <class Use>
void eachLine(std::string_view text, char lineEnd, Use use) {
    for (uint32_t number = 1;; ++number) {
        const size_t size = std::min(text.find(lineEnd), text.size());
        std::string line(text.substr(0, size));
        std::erase(line, '\r');
        use(number, line);
        if (size == text.size()) {
            return;
        }
        text.remove_prefix(size + 1);
    }
}

// Lines end at a CR where that is repaired.
void requireNoLineLost(std::string_view text, const Report &report, uint64_t rules) {
    std::map<std::string, int> lost;
    const bool endsInCr = text.find('\n') == std::string_view::npos &&
                          (rules & SDP_TIDY_BIT(SDP_TIDY_LINE_END_CR)) != 0;
    eachLine(text, endsInCr ? '\r' : '\n', [&](uint32_t number, const std::string &line) {
        const SDPTidyRow *const rows = report->pstRows;
        const bool told = std::any_of(rows, rows + report->ulNoOfRows,
                                      [=](const SDPTidyRow &row) { return row.ulLine == number; });
        lost[line] += told ? 0 : 1;
    });
    eachLine(report.text(), '\n', [&](uint32_t, const std::string &line) { --lost[line]; });
    for (const auto &[line, count] : lost) {
        require(count <= 0, "a row tells of each line that is gone", line);
    }
}

void requirePlaces(std::string_view text, const Report &report) {
    uint32_t line = 0;
    for (uint32_t i = 0; i < report->ulNoOfRows; ++i) {
        const SDPTidyRow &row = report->pstRows[i];
        require(SdpTidyRuleAt(row.enRule) != nullptr, "a row names a rule");
        require(row.ulOffset <= text.size(), "a place lies inside the text");
        require(row.ulColumn >= 1 && row.ulColumn <= row.ulOffset + 1, "a column is in its line");
        require(row.ulLine >= line, "rows are in the order of the text");
        line = row.ulLine;
    }
}

void requireTidied(std::string_view text, uint64_t rules) {
    const bool decodes = fuzz::decode(text) != nullptr;
    const Report report(SdpTidyText, text, rules);
    require(decodes == (report->enOutcome == SDP_TIDY_UNCHANGED), "what decodes is left alone");
    requirePlaces(text, report);
    for (uint32_t i = 0; i < report->ulNoOfRows; ++i) {
        require((rules & SDP_TIDY_BIT(report->pstRows[i].enRule)) != 0, "each rule was wanted");
    }
    if (report->enOutcome != SDP_TIDY_REPAIRED) {
        require(report.result() == SDP_TIDY_ARGUMENT || report.text() == text, "it is as it was");
        return;
    }
    require(fuzz::decode(report.text()) != nullptr, "what was repaired decodes");
    const Report again(SdpTidyText, report.text(), rules);
    require(again->enOutcome == SDP_TIDY_UNCHANGED, "tidying twice is tidying once");
    requireNoLineLost(text, report, rules);
}

// The library finds the same doubts as a simple search, which needs stack in proportion to the
// text.
void requirePlainDoubts(std::string_view text, const Report &report) {
    constexpr size_t longest = 1000;
    if (text.size() > longest || report.result() != 0) {
        return;
    }
    std::string found;
    for (uint32_t i = 0; i < report->ulNoOfRows; ++i) {
        const SDPTidyRow &row = report->pstRows[i];
        found += std::to_string(row.ulLine) + ':' + std::to_string(row.ulColumn) + ' ' +
                 SdpTidyRuleAt(row.enRule)->pcName + '\n';
    }
    const bool family = SdpGetSupMedProtoRtpFamily() == 1;
    require(found == tidytest::plainDoubts(std::string(text), family), "no doubt is missed", found);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    fuzz::Configuration::of(input.byte()).apply();
    const uint64_t repairs = SDP_TIDY_BIT(SDP_TIDY_CR_INSIDE) - 1;
    const uint64_t chosen =
        input.oneIn(4) ? uint64_t{input.number()} << 32 | input.number() : repairs;
    const std::string_view text = input.rest();
    const fuzz::NothingLeaks nothingLeaks;
    requireTidied(text, chosen & repairs);
    const Report doubts(SdpTidyFindDoubts, text, 0);
    requirePlaces(text, doubts);
    requirePlainDoubts(text, doubts);
    require(doubts.result() == 0 || doubts->ulNoOfRows == 0, "a refused text has no doubts");
    return 0;
}

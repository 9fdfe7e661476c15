#include "tidy/tidied.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>

#include "support/guarded.hpp"

namespace tidytest {

namespace {

using Operation = SDPResult (*)(const SipString *, const SDPTidyOptions *, SDPTidyReport *);

Tidied take(Operation operation, std::string_view given, uint64_t rules,
            const SDPDecodeOptions &options) {
    const support::Guarded bytes{std::string(given)};
    const SipString text = bytes.text();
    const SDPTidyOptions wanted = {rules, &options};
    SDPTidyReport report;
    Tidied tidied;
    tidied.result = operation(&text, &wanted, &report);
    tidied.outcome = report.enOutcome;
    if (report.strText.pcData != nullptr) {
        tidied.text.assign(report.strText.pcData, report.strText.ulLen);
    }
    if (report.ulNoOfRows != 0) {
        tidied.rows.assign(report.pstRows, report.pstRows + report.ulNoOfRows);
    }
    tidied.failure = report.stFailure;
    tidied.remaining = report.stRemaining;
    tidied.hasBody = report.pstLine != nullptr;
    SdpTidyRelease(&report);
    EXPECT_EQ(report.pstLine, nullptr);
    EXPECT_EQ(report.pstMemCp, nullptr);
    return tidied;
}

std::string placeOf(const SDPTidyRow &row) {
    return std::to_string(row.ulLine) + ':' + std::to_string(row.ulColumn) + ' ' +
           SdpTidyRuleAt(row.enRule)->pcName;
}

// The offset of each line, with that of the end of the text.
std::vector<size_t> linesOf(const std::string &text) {
    std::vector<size_t> lines = {0};
    const bool endsInCr = text.find('\n') == std::string::npos;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == (endsInCr ? '\r' : '\n')) {
            lines.push_back(at + 1);
        }
    }
    return lines;
}

std::vector<std::string> cut(const std::string &text) {
    std::vector<std::string> lines(1);
    for (const char byte : text) {
        if (byte == '\n') {
            lines.emplace_back();
        } else if (byte != '\r') {
            lines.back() += byte;
        }
    }
    return lines;
}

// The repaired text has as many equal lines as the given one, or rows report the others.
void expectNoLineLost(const std::string &text, const Tidied &tidied) {
    struct Balance {
        int lost = 0;
        int told = 0;
    };
    std::map<std::string, Balance> lines;
    std::string given = text;
    if (text.find('\n') == std::string::npos) {
        std::ranges::replace(given, '\r', '\n');
    }
    uint32_t number = 0;
    for (const std::string &line : cut(given)) {
        ++number;
        const bool told = std::ranges::any_of(
            tidied.rows, [&](const SDPTidyRow &row) { return row.ulLine == number; });
        ++lines[line].lost;
        lines[line].told += told ? 1 : 0;
    }
    for (const std::string &line : cut(tidied.text)) {
        --lines[line].lost;
    }
    for (const auto &[line, balance] : lines) {
        EXPECT_LE(balance.lost, balance.told) << "no row tells where this line is: " << line;
    }
}

// The decoder refuses the original of a line that was rewritten.
void expectOnlyRefusedLinesChanged(const std::string &text, const Tidied &tidied,
                                   const SDPDecodeOptions &options) {
    // Rules that add a line, and one for blanks that can be before an added line.
    constexpr uint64_t putIn =
        SDP_TIDY_BIT(SDP_TIDY_LEADING_BLANK) | SDP_TIDY_BIT(SDP_TIDY_VERSION_MISSING) |
        SDP_TIDY_BIT(SDP_TIDY_ORIGIN_MISSING) | SDP_TIDY_BIT(SDP_TIDY_NAME_MISSING) |
        SDP_TIDY_BIT(SDP_TIDY_TIME_MISSING);
    if (text.find('\n') == std::string::npos) {
        return;
    }
    const std::vector<std::string> given = cut(text);
    std::vector<std::string> written = cut(tidied.text);
    for (const SDPTidyRow &row : tidied.rows) {
        if (row.ulNewLine == 0 || (putIn & SDP_TIDY_BIT(row.enRule)) != 0) {
            continue;
        }
        std::string &line = written[row.ulNewLine - 1];
        const std::string &before = given[row.ulLine - 1];
        if (line == before) {
            continue;
        }
        const std::string after = std::exchange(line, before);
        std::string back;
        for (const std::string &each : written) {
            back += each + '\n';
        }
        line = after;
        EXPECT_FALSE(decodes(back, options))
            << "the decoder takes " << before << ", which became " << after;
    }
}

void expectPlaces(const std::string &text, const Tidied &tidied) {
    const std::vector<size_t> lines = linesOf(text);
    size_t before = 0;
    for (const SDPTidyRow &row : tidied.rows) {
        ASSERT_NE(SdpTidyRuleAt(row.enRule), nullptr);
        ASSERT_GE(row.ulLine, 1u);
        ASSERT_LE(row.ulLine, lines.size());
        EXPECT_EQ(row.ulOffset, lines[row.ulLine - 1] + row.ulColumn - 1);
        EXPECT_LE(row.ulOffset, text.size());
        EXPECT_GE(row.ulLine, before) << "rows are in the order of the text";
        before = row.ulLine;
    }
}

} // namespace

std::string Tidied::report() const {
    std::string lines;
    for (const SDPTidyRow &row : rows) {
        lines += placeOf(row) + " -> " +
                 (row.ulNewLine == 0 ? "gone" : std::to_string(row.ulNewLine)) + '\n';
    }
    return lines;
}

std::string Tidied::doubts() const {
    std::string lines;
    for (const SDPTidyRow &row : rows) {
        lines += placeOf(row) + '\n';
    }
    return lines;
}

Tidied tidied(std::string_view text, uint64_t rules, const SDPDecodeOptions &options) {
    return take(SdpTidyText, text, rules, options);
}

Tidied doubted(std::string_view text, const SDPDecodeOptions &options) {
    return take(SdpTidyFindDoubts, text, 0, options);
}

bool decodes(std::string_view text, const SDPDecodeOptions &options) {
    const support::Guarded bytes{std::string(text)};
    const SipString given = bytes.text();
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdpWithOptions(&given, &options, &line);
    SdpLibReleaseSdp(&line);
    return result == 0;
}

void expectProperties(const std::string &text, const Tidied &tidied, uint64_t rules,
                      const SDPDecodeOptions &options) {
    EXPECT_EQ(tidied.result == 0, tidied.outcome != SDP_TIDY_REFUSED);
    EXPECT_EQ(tidied.result == 0, tidied.hasBody);
    const bool taken = decodes(text, options);
    EXPECT_EQ(taken, tidied.outcome == SDP_TIDY_UNCHANGED);
    EXPECT_EQ(tidied.failure.ulResult == 0, taken);
    if (tidied.outcome != SDP_TIDY_REPAIRED) {
        EXPECT_EQ(tidied.text, text);
        EXPECT_TRUE(tidied.outcome != SDP_TIDY_UNCHANGED || tidied.rows.empty());
    }
    if (tidied.outcome == SDP_TIDY_REPAIRED) {
        EXPECT_FALSE(tidied.rows.empty());
        EXPECT_TRUE(decodes(tidied.text, options)) << tidied.text;
        const Tidied again = tidytest::tidied(tidied.text, rules, options);
        EXPECT_EQ(again.outcome, static_cast<uint32_t>(SDP_TIDY_UNCHANGED));
        EXPECT_EQ(again.text, tidied.text);
        expectNoLineLost(text, tidied);
        expectOnlyRefusedLinesChanged(text, tidied, options);
    }
    for (const SDPTidyRow &row : tidied.rows) {
        EXPECT_NE(rules & SDP_TIDY_BIT(row.enRule), 0u) << "a rule that was not wanted";
    }
    expectPlaces(text, tidied);
}

} // namespace tidytest

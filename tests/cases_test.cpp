// Runs every case of tests/cases: decoded, compared, written back, decoded again; then with each
// allocation and each append failing in turn.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "output/tree.hpp"
#include "sdpline/sdpline.h"
#include "support/allocations.hpp"
#include "support/appends.hpp"
#include "support/bodies.hpp"
#include "support/cases.hpp"
#include "support/casetests.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using support::Allocations;
using support::Appends;
using support::Body;
using support::Case;
using support::Held;

struct Decoded {
    SDPResult result;
    Body body;
    std::vector<std::string> logs;
    std::vector<std::string> logsWithLines;
};

Decoded decode(const std::string &bytes) {
    support::LogRecorder log;
    const support::Guarded input(bytes);
    const SipString text = input.text();
    auto *line = reinterpret_cast<SdpLine *>(1);
    const SDPResult result = SdpLibDecodeSdp(&text, &line);
    return {result, Body(line), log.texts(), log.textsWithLines()};
}

// The text with its configured line ends as LF, and bytes that are not printable as escapes.
std::string visible(const std::string &text) {
    const SipString lineEnd = SdpGetCrlfString(0);
    const std::string end(lineEnd.pcData, lineEnd.ulLen);
    std::string result;
    for (size_t at = 0; at < text.size();) {
        if (text.compare(at, end.size(), end) == 0) {
            result += '\n';
            at += end.size();
            continue;
        }
        const auto byte = static_cast<unsigned char>(text[at++]);
        if (byte >= ' ' && byte < 127) {
            result += static_cast<char>(byte);
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", byte);
            result += byte == '\r' ? "\\r" : byte == '\n' ? "\\n" : byte == '\t' ? "\\t" : escape;
        }
    }
    return result;
}

std::string code(SDPResult result) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", result);
    return text;
}

std::string replaced(const std::string &text, const std::string &what, const std::string &with) {
    std::string result;
    size_t at = 0;
    for (size_t found; (found = text.find(what, at)) != std::string::npos;
         at = found + what.size()) {
        result += text.substr(at, found - at) + with;
    }
    return result + text.substr(at);
}

// "0x05035065 ConnLastOctetRange at 4:16"
std::string describeRefusal(SDPResult result) {
    SDPFailure failure = {};
    SDPResultText text = {};
    SdpLibGetLastFailure(&failure);
    EXPECT_EQ(SdpLibDescribeResult(result, &text), 0u);
    EXPECT_EQ(failure.ulResult, result);
    EXPECT_STREQ(failure.pcCheck, text.pcCheck);
    return code(result) + ' ' + text.pcCheck + " at " + std::to_string(failure.ulLine) + ':' +
           std::to_string(failure.ulColumn);
}

class CaseTest : public testing::Test {
public:
    explicit CaseTest(const Case &current) : case_(current) {}

    void SetUp() override {
        SdpSetSupMedProtoRtpAvpf(case_.avpf ? 1 : 0);
        SdpSetSupMedProtoRtpFamily(case_.family ? 1 : 0);
        ASSERT_EQ(SdpSetMaxBodySize(case_.maxBody), 0u);
        SdpSetT38OptCfg(case_.t38Style);
        uint32_t lineEnd = case_.lineEnd;
        ASSERT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
        Allocations::reset();
        Appends::off();
        held_ = Held::now();
    }

    void TearDown() override {
        EXPECT_EQ(Held::now(), held_) << "something leaked";
        SdpSetSupMedProtoRtpAvpf(0);
        SdpSetSupMedProtoRtpFamily(0);
        SdpSetMaxBodySize(SDP_MAX_BODY);
        SdpSetT38OptCfg(SDP_T38_STYLE_FLAG);
        uint32_t lineEnd = SDP_LINE_END_CRLF;
        SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd);
    }

    void TestBody() override {
        if (case_.refused) {
            runRefused();
        } else {
            runAccepted();
            runFailingAppends();
        }
        runFailingAllocations();
    }

private:
    void runRefused() {
        SCOPED_TRACE(place(*case_.refused));
        const Decoded decoded = decode(case_.body);
        EXPECT_EQ(decoded.body, nullptr);
        const auto &expected = case_.refused->lines;
        ASSERT_FALSE(expected.empty());
        EXPECT_EQ(describeRefusal(decoded.result), expected.front());
        std::string logs;
        std::string expectedLogs;
        for (size_t i = 0; i < decoded.logs.size(); ++i) {
            const bool lineStated =
                i + 1 < expected.size() && expected[i + 1] == decoded.logsWithLines[i];
            logs += (lineStated ? decoded.logsWithLines[i] : decoded.logs[i]) + '\n';
        }
        for (size_t i = 1; i < expected.size(); ++i) {
            expectedLogs += expected[i] + '\n';
        }
        EXPECT_EQ(logs, expectedLogs);
        runOtherSpellings();
    }

    // The same text with other line ends, and with dropped bytes at its line starts: the check and
    // the line are the same, the column moves with the bytes before it.
    void runOtherSpellings() {
        SDPFailure plain = {};
        SdpLibGetLastFailure(&plain);
        if (plain.ulLine == 0) {
            return; // no place in the text
        }
        const uint32_t shift = plain.ulLine > 1 ? 1 : 0;
        expectPlace(replaced(case_.body, "\n", std::string("\n\0", 2)), plain, shift);
        expectPlace(replaced(case_.body, "\n", "\n "), plain, shift);
        if (case_.body.find("\r\r\n") == std::string::npos) {
            expectPlace(replaced(case_.body, "\r\n", "\n"), plain, 0);
        }
    }

    void expectPlace(const std::string &body, const SDPFailure &plain, uint32_t shift) {
        if (body.size() > case_.maxBody) {
            return;
        }
        SDPFailure failure = {};
        EXPECT_EQ(decode(body).result, plain.ulResult);
        SdpLibGetLastFailure(&failure);
        EXPECT_EQ(failure.ulLine, plain.ulLine);
        EXPECT_EQ(failure.ulColumn, plain.ulColumn + shift);
    }

    void runAccepted() {
        const Decoded decoded = decode(case_.body);
        ASSERT_EQ(decoded.result, 0u) << code(decoded.result);
        EXPECT_TRUE(decoded.logs.empty());
        compareTree(cli::describeTree(*decoded.body));
        const std::string written = support::encoded(*decoded.body);
        {
            SCOPED_TRACE(place(*case_.text));
            EXPECT_EQ(visible(written),
                      case_.text->has("same") ? visible(case_.body) : case_.text->joined());
        }
        const Decoded again = decode(written);
        ASSERT_EQ(again.result, 0u) << "what is written back is refused";
        const bool equal = cli::describeTree(*again.body) == cli::describeTree(*decoded.body);
        EXPECT_EQ(equal, !case_.text->has("once")) << cli::describeTree(*again.body);
    }

    void compareTree(const std::string &tree) {
        SCOPED_TRACE(place(*case_.tree));
        if (!case_.tree->has("part")) {
            EXPECT_EQ(tree, case_.tree->joined());
            return;
        }
        size_t at = 0;
        for (const std::string &line : case_.tree->lines) {
            const size_t found = ('\n' + tree).find('\n' + line + '\n', at);
            ASSERT_NE(found, std::string::npos) << line << "\nis not in its place in\n" << tree;
            at = found + 1;
        }
    }

    // The result is success or a failure of memory, and everything is freed.
    void runFailingAllocations() {
        const Held before = Held::now();
        for (uint32_t n = 1;; ++n) {
            Allocations::failAt(n);
            const Decoded decoded = decode(case_.body);
            const bool failed = Allocations::failed();
            Allocations::reset();
            if (!failed) {
                break;
            }
            if (decoded.result != 0) {
                SDPResultText text = {};
                ASSERT_EQ(SdpLibDescribeResult(decoded.result, &text), 0u);
                const std::string sentence = text.pcSentence;
                const bool ofMemory =
                    sentence.starts_with("no memory") || sentence.starts_with("the memory block");
                ASSERT_TRUE(ofMemory || case_.refused)
                    << "allocation " << n << ": " << code(decoded.result) << ' ' << sentence;
                ASSERT_EQ(decoded.body, nullptr);
            }
        }
        EXPECT_EQ(Held::now(), before) << "a failed allocation leaked";
    }

    // The result is success, where the results of appends are ignored, or a failure of the encoder.
    void runFailingAppends() {
        const Decoded decoded = decode(case_.body);
        ASSERT_NE(decoded.body, nullptr);
        Appends::reset();
        support::encoded(*decoded.body);
        const uint32_t appends = Appends::count();
        for (uint32_t n = 1; n <= appends; ++n) {
            Appends::reset();
            Appends::failAt(n);
            SipStringBuffer *buffer = nullptr;
            const SDPResult result = SdpLibEncodeSdp(decoded.body.get(), &buffer);
            ASSERT_EQ(result == 0, buffer != nullptr);
            if (result != 0) {
                SDPResultText text = {};
                ASSERT_EQ(SdpLibDescribeResult(result, &text), 0u) << code(result);
                ASSERT_STREQ(text.pcFunction, "SdpLibEncodeSdpInt");
            }
            SipSbReleaseStringBuffer(buffer);
        }
        Appends::off();
    }

    std::string place(const support::Block &block) const {
        return case_.file + ':' + std::to_string(block.at);
    }

    const Case &case_;
    Held held_ = {};
};

const std::vector<Case> cases = support::readCases(SDPLINE_CASES);
[[maybe_unused]] const bool registered = support::registerCases<CaseTest>("Cases_", cases);

} // namespace

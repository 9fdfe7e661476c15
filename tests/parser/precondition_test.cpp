// a=curr, a=des and a=conf by the parser called alone, and its word classifiers.
#include "parser/parsing.hpp"

namespace {

using support::named;
using support::TextAndResult;
using support::textOf;

class ParserPrecondition : public support::ParsingTest {
protected:
    static std::string otherOf(const SDPRsrcMgmtStatus &status) {
        const SipString *const other = status.stPrecondition.pstrOtherPrecondition;
        return textOf(other);
    }
};

TEST_F(ParserPrecondition, LineWithoutEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"a=curr", "StatusColon 101"},
        {"a=curr:", "StatusPrecondition 101"},
        {"a=curr:qos", "StatusSpace 101"},
        {"a=curr:qos ", "StatusToken 101"},
        {"a=curr:qos e2e", "DirectionSpace 101"},
        {"a=curr:qos e2e ", "DirectionToken 101"},
        {"a=curr:qos e2e send", "StatusEnd 101"},
        {"a=conf:qos e2e send", "StatusEnd 101"},
        {"a=des:qos", "StrengthSpace 101"},
        {"a=des:qos ", "StrengthToken 101"},
        {"a=des:qos none", "StatusSpace 101"},
        {"a=des:qos none ", "StatusToken 101"},
        {"a=des:qos none e2e send", "StatusEnd 101"},
        {"a=des:qos none e2e send\n", "ok"},
    };
    expectResults(sdpAttributeField, rows);
    EXPECT_TRUE(log.entries().empty());
}

// ---- Word classifiers

TEST_F(ParserPrecondition, StrengthWords) {
    expectWords(sdpResourceStatusExtractStrengthTag, &SDPRsrcMgmtStatus::enStrengthTag,
                {{"mandatory", 0},
                 {"optional", 1},
                 {"none", 2},
                 {"failure", 3},
                 {"unknown", 4},
                 {"Mandatory", kNoWord},
                 {"", kNoWord}},
                "StrengthWord 101", "3 sdpparser sdpResourceStatusExtractStrengthTag 3");
}

TEST_F(ParserPrecondition, StatusWords) {
    expectWords(sdpResourceExtractStatusType, &SDPRsrcMgmtStatus::enStatusType,
                {{"e2e", 0}, {"local", 1}, {"remote", 2}, {"E2E", kNoWord}, {"loca", kNoWord}},
                "StatusWord 101", "3 sdpparser sdpResourceExtractStatusType 3");
}

TEST_F(ParserPrecondition, DirectionWords) {
    expectWords(sdpResourceStatusExtractDirTag, &SDPRsrcMgmtStatus::enDirTag,
                {{"none", 0},
                 {"send", 1},
                 {"recv", 2},
                 {"sendrecv", 3},
                 {"sendonly", kNoWord},
                 {"SEND", kNoWord}},
                "DirectionWord 101", "3 sdpparser sdpResourceStatusExtractDirTag 3");
}

TEST_F(ParserPrecondition, QosIsKnownAndOtherWordsAreKept) {
    SipString before = {};
    SDPRsrcMgmtStatus status = {};
    status.stPrecondition = {77, &before};
    EXPECT_EQ(named(sdpResourceStatusExtractPrecondition(&status, "qos")), "ok");
    EXPECT_EQ(status.stPrecondition.enPreconditionType, uint32_t{SDP_PRECONDITION_QOS});
    const SipString *const other = status.stPrecondition.pstrOtherPrecondition;
    EXPECT_EQ(other, nullptr);
    EXPECT_TRUE(sizesAskedFor().empty());

    for (const char *const word : {"Qos", "qo", "bw", "qos2"}) {
        EXPECT_EQ(named(sdpResourceStatusExtractPrecondition(&status, word)), "ok");
        EXPECT_EQ(status.stPrecondition.enPreconditionType, uint32_t{SDP_PRECONDITION_OTHER});
        EXPECT_EQ(otherOf(status), word);
    }
}

TEST_F(ParserPrecondition, OtherWordWithoutMemory) {
    struct Row {
        const char *result;
        const char *logged;
    };
    constexpr Row rows[] = {
        {"StatusPreconditionAlloc 1", "5 sdpparser sdpResourceStatusExtractPrecondition 1"},
        {"StatusPreconditionStore 1", "3 sdpparser sdpResourceStatusExtractPrecondition 3"},
    };
    uint32_t n = 0;
    for (const Row &row : rows) {
        log.clear();
        start("a=curr:bw e2e send\n");
        failAllocation(++n);
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpAttributeField(&attr)), row.result);
        EXPECT_EQ(log.texts(), std::vector<std::string>{row.logged});
    }
}

// ---- Records

TEST_F(ParserPrecondition, StrengthIsZeroOutsideDes) {
    for (const char *const text : {"a=curr:qos local none\n", "a=conf:qos local none\n"}) {
        start(text);
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpAttributeField(&attr)), "ok");
        EXPECT_EQ(attr.unAttrValue.stRsrcMgmtStatus.enStrengthTag, 0u);
    }
}

TEST_F(ParserPrecondition, AKnownTypeHasNoOtherWord) {
    startValue("des:qos unknown remote sendrecv\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpResourceStatus(&attr, SDP_ATTR_DES)), "ok");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_DES});
    EXPECT_EQ(otherOf(attr.unAttrValue.stRsrcMgmtStatus), "(null)");
}

// The first word must be there before the attribute has its type.
TEST_F(ParserPrecondition, TypeIsStoredAfterTheFirstWord) {
    SDPAttr attr = {};
    start("a=curr:\n");
    EXPECT_EQ(named(sdpAttributeField(&attr)), "StatusPrecondition 101");
    EXPECT_EQ(attr.ulAttrType, 0u);
    start("a=curr:qos\n");
    EXPECT_EQ(named(sdpAttributeField(&attr)), "StatusSpace 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_CURR});
}

TEST_F(ParserPrecondition, FieldsBeforeAFailureStay) {
    start("a=des:bw failure remote x\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeField(&attr)), "DirectionWord 101");
    const SDPRsrcMgmtStatus &status = attr.unAttrValue.stRsrcMgmtStatus;
    EXPECT_EQ(otherOf(status), "bw");
    EXPECT_EQ(status.enStrengthTag, uint32_t{SDP_STRENGTH_FAILURE});
    EXPECT_EQ(status.enStatusType, uint32_t{SDP_STATUS_REMOTE});
}

} // namespace

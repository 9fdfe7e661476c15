// a=curr, a=des and a=conf.
#include "encoder/encodetest.hpp"

namespace {

using namespace support;

class EncodePrecondition : public EncodeTest {
protected:
    SDPResult encode(uint32_t type) { return sdpLibEncodeStatusAttribField(&status, type, buffer); }

    std::string encoded(uint32_t type) {
        startAnew();
        EXPECT_EQ(encode(type), 0u);
        return text();
    }

    // A word that fails: the text that remains, and the log entries of the word and of the line.
    void expectRefused(SDPResult result, const char *left, const std::string &wordFunction,
                       const std::string &message) {
        startAnew();
        EXPECT_EQ(encode(SDP_ATTR_DES), result);
        EXPECT_EQ(text(), left);
        EXPECT_EQ(log.texts(),
                  (Lines{"3 sdpencode " + wordFunction + " 21 " + message,
                         "3 sdpencodeattribute sdpLibEncodeStatusAttribField 21 " + message}));
        EXPECT_EQ(g_gSipCodePoint, 731u << 16 | log.entries().at(1).line);
    }

    SDPRsrcMgmtStatus status = {{SDP_PRECONDITION_QOS, nullptr},
                                SDP_STATUS_LOCAL,
                                SDP_STRENGTH_MANDATORY,
                                SDP_DIR_SENDRECV};
    SipString bw = str("bw");
};

TEST_F(EncodePrecondition, OnlyDesHasAStrength) {
    EXPECT_EQ(encoded(SDP_ATTR_DES), "des:qos mandatory local sendrecv");
    status.enStatusType = SDP_STATUS_E2E;
    status.enDirTag = SDP_DIR_SEND;
    EXPECT_EQ(encoded(SDP_ATTR_CURR), "curr:qos e2e send");
    status.enStatusType = SDP_STATUS_REMOTE;
    status.enDirTag = SDP_DIR_RECV;
    status.enStrengthTag = 99;
    EXPECT_EQ(encoded(SDP_ATTR_CONF), "conf:qos remote recv") << "the strength is not looked at";
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodePrecondition, OtherPreconditionsAreWrittenByTheirText) {
    status.stPrecondition = {SDP_PRECONDITION_OTHER, &bw};
    EXPECT_EQ(encoded(SDP_ATTR_CURR), "curr:bw local sendrecv");
    status.stPrecondition.pstrOtherPrecondition = nullptr;
    EXPECT_EQ(encoded(SDP_ATTR_CURR), "curr: local sendrecv");
    EXPECT_EQ(Appends::count(), 5u) << "a text that is missing is no append";
    status.stPrecondition = {2, &bw};
    EXPECT_EQ(encoded(SDP_ATTR_CURR), "curr: local sendrecv");
}

TEST_F(EncodePrecondition, RefusesNullArguments) {
    EXPECT_EQ(sdpLibEncodeStatusAttribField(nullptr, SDP_ATTR_DES, buffer), 0xDB023001u);
    EXPECT_EQ(sdpLibEncodeStatusAttribField(&status, SDP_ATTR_DES, nullptr), 0xDB023001u);
    EXPECT_EQ(log.texts(), Lines(2, "3 sdpencodeattribute sdpLibEncodeStatusAttribField 0"));
    EXPECT_EQ(Appends::count(), 0u);
}

TEST_F(EncodePrecondition, RefusesANullBufferAsAnAttributeToo) {
    SDPAttr attr = {};
    attr.unAttrValue.stRsrcMgmtStatus = status;
    for (const uint32_t type : {SDP_ATTR_DES, SDP_ATTR_CURR, SDP_ATTR_CONF}) {
        startAnew();
        attr.ulAttrType = type;
        EXPECT_EQ(sdpLibEncodeAttribField(&attr, nullptr), 0xDB023001u);
        EXPECT_EQ(log.texts(), Lines{"3 sdpencodeattribute sdpLibEncodeStatusAttribField 0"});
        EXPECT_EQ(Appends::count(), 0u);
    }
}

TEST_F(EncodePrecondition, RefusesAnAttributeThatIsNone) {
    EXPECT_EQ(encode(SDP_ATTR_IPBCP), 0xDB024001u);
    const std::string message = " 21 \"Attribute type = 39\"";
    EXPECT_EQ(log.texts(),
              (Lines{"3 sdpencodeattribute sdpLibEncodeStatusAttribFieldAttrType" + message,
                     "3 sdpencodeattribute sdpLibEncodeStatusAttribField" + message}));
    EXPECT_EQ(text(), "");
    EXPECT_EQ(sdpLibEncodeStatusAttribFieldAttrType(0, buffer), 1u);
}

TEST_F(EncodePrecondition, AnUnknownStrengthLeavesThePreconditionAndABlank) {
    status.enStrengthTag = 5;
    expectRefused(0xDB028001, "des:qos ", "sdpLibEncodeStatusStrengthTag", "\"Strength tag = 5\"");
}

TEST_F(EncodePrecondition, AnUnknownStatusTypeLeavesTheStrength) {
    status.enStatusType = 3;
    expectRefused(0xDB02B001, "des:qos mandatory ", "sdpLibEncodeStatusType",
                  "\"Status type = 3\"");
}

TEST_F(EncodePrecondition, AnUnknownDirectionLeavesAllButItself) {
    status.enDirTag = 4;
    expectRefused(0xDB02D001, "des:qos mandatory local ", "sdpLibEncodeStatusDirTag",
                  "\"DIr tag = 4\"");
}

TEST_F(EncodePrecondition, IsAnAttributesResult) {
    SDPAttr attr = {};
    attr.ulAttrType = SDP_ATTR_DES;
    attr.unAttrValue.stRsrcMgmtStatus = status;
    attr.unAttrValue.stRsrcMgmtStatus.enStrengthTag = 5;
    EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0xDB028001u);
    EXPECT_EQ(log.texts().size(), 2u) << "the attribute itself logs nothing";

    startAnew();
    SDPAttr *items[] = {&attr};
    SDPAttrList list = {1, items};
    EXPECT_EQ(sdpLibEncodeAttribFields(&prefixed, &list, buffer), 0u);
    EXPECT_EQ(text(), "a=des:qos \r\n");
}

TEST_F(EncodePrecondition, TestsItsWordsAndNotTheBlanksBetween) {
    EXPECT_EQ(trace([this] { return encode(SDP_ATTR_DES); }), R"("des:" StatusAttrFailed ""
"qos" ok "des: mandatory local sendrecv"
" " ok "des:qosmandatory local sendrecv"
"mandatory" StatusStrengthFailed "des:qos "
" " ok "des:qos mandatorylocal sendrecv"
"local" StatusTypeFailed "des:qos mandatory "
" " ok "des:qos mandatory localsendrecv"
"sendrecv" StatusDirectionFailed "des:qos mandatory local "
)");
}

TEST_F(EncodePrecondition, LogsARefusedWordOnceForTheWhole) {
    const std::pair<uint32_t, const char *> words[] = {
        {1, "\"Attribute type = 36\""},
        {4, "\"Strength tag = 0\""},
        {6, "\"Status type = 1\""},
        {8, "\"DIr tag = 3\""},
    };
    for (const auto &[n, message] : words) {
        startAnew();
        Appends::failAt(n);
        EXPECT_NE(encode(SDP_ATTR_DES), 0u);
        EXPECT_EQ(log.texts(), Lines{"3 sdpencodeattribute sdpLibEncodeStatusAttribField 21 " +
                                     std::string(message)});
    }
}

} // namespace

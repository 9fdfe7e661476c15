// The words of a precondition.
#include "encoder/encodetest.hpp"

namespace {

using namespace support;

using WordWriter = SDPResult (*)(SDPRsrcMgmtStatus *, SipStringBuffer *);

class EncodeStatusWord : public EncodeTest {
protected:
    // The words of the codes 0, 1, ... up to the first one without a word.
    Lines words(WordWriter write, uint32_t SDPRsrcMgmtStatus::*field) {
        Lines found;
        SDPRsrcMgmtStatus status = {};
        for (uint32_t code = 0; code < 100; ++code) {
            startAnew();
            status.*field = code;
            if (write(&status, buffer) != 0) {
                break;
            }
            found.push_back(text());
        }
        return found;
    }

    // An unknown code, and a refused append: a bare 1 with a log, the failure without one.
    void expectFailures(WordWriter write, uint32_t SDPRsrcMgmtStatus::*field,
                        const std::string &logged) {
        SDPRsrcMgmtStatus status = {};
        startAnew();
        status.*field = 4294967295;
        EXPECT_EQ(write(&status, buffer), 1u);
        EXPECT_EQ(log.texts(), Lines{logged});
        EXPECT_EQ(g_gSipCodePoint, 3u << 16 | log.entries().at(0).line);
        EXPECT_EQ(Appends::count(), 0u);

        startAnew();
        status.*field = 0;
        Appends::failAt(1);
        EXPECT_EQ(write(&status, buffer), Appends::kRefused);
        EXPECT_EQ(Appends::count(), 1u);
        EXPECT_EQ(log.texts(), Lines());
    }
};

TEST_F(EncodeStatusWord, StatusTypeHasThree) {
    EXPECT_EQ(words(sdpLibEncodeStatusType, &SDPRsrcMgmtStatus::enStatusType),
              (Lines{"e2e", "local", "remote"}));
    expectFailures(sdpLibEncodeStatusType, &SDPRsrcMgmtStatus::enStatusType,
                   "3 sdpencode sdpLibEncodeStatusType 21 \"Status type = 4294967295\"");
}

TEST_F(EncodeStatusWord, StrengthHasFive) {
    EXPECT_EQ(words(sdpLibEncodeStatusStrengthTag, &SDPRsrcMgmtStatus::enStrengthTag),
              (Lines{"mandatory", "optional", "none", "failure", "unknown"}));
    expectFailures(sdpLibEncodeStatusStrengthTag, &SDPRsrcMgmtStatus::enStrengthTag,
                   "3 sdpencode sdpLibEncodeStatusStrengthTag 21 \"Strength tag = 4294967295\"");
}

TEST_F(EncodeStatusWord, DirectionHasFour) {
    EXPECT_EQ(words(sdpLibEncodeStatusDirTag, &SDPRsrcMgmtStatus::enDirTag),
              (Lines{"none", "send", "recv", "sendrecv"}));
    expectFailures(sdpLibEncodeStatusDirTag, &SDPRsrcMgmtStatus::enDirTag,
                   "3 sdpencode sdpLibEncodeStatusDirTag 21 \"DIr tag = 4294967295\"");
}

} // namespace

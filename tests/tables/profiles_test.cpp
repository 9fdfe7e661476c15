// The table of static payload profiles, and its accessor functions.
#include <gtest/gtest.h>

#include <string>

#include "sdpline/sdpline.h"
#include "support/appends.hpp"

namespace {

using support::Appends;

struct Profile {
    const char *name;
    uint32_t clockRate;
};

constexpr Profile kProfiles[36] = {
    {"PCMU", 8000},    {"GSM", 8000},   {"G723", 8000},    {"DVI4", 8000},    {"DVI4", 16000},
    {"LPC", 8000},     {"PCMA", 8000},  {"G722", 8000},    {"L16", 44100},    {"L16", 44100},
    {"QCELP", 8000},   {"CN", 8000},    {"MPA", 90000},    {"G728", 8000},    {"DVI4", 11025},
    {"DVI4", 22050},   {"G729", 8000},  {"G726-40", 8000}, {"G726-32", 8000}, {"G726-24", 8000},
    {"G726-16", 8000}, {"G729D", 8000}, {"G729E", 8000},   {"GSM-EFR", 8000}, {"L8", 0},
    {"RED", 0},        {"VDVI", 0},     {"CelB", 90000},   {"JPEG", 90000},   {"nv", 90000},
    {"H261", 90000},   {"MPV", 90000},  {"MP2", 90000},    {"H263", 90000},   {"H263-1998", 90000},
    {"", 0},
};

std::string textOf(const SipString &text) {
    return {text.pcData, text.ulLen};
}

TEST(RtpProfiles, EveryRowOfTheTables) {
    for (uint16_t row = 0; row < 36; ++row) {
        EXPECT_EQ(textOf(g_aStrRtpmapProfiles[row]), kProfiles[row].name) << row;
        EXPECT_EQ(g_aulRtpmapClockRates[row], kProfiles[row].clockRate) << row;
    }
}

TEST(RtpProfiles, EveryRowByTheAccessors) {
    for (uint16_t row = 0; row < 36; ++row) {
        EXPECT_EQ(textOf(SdpGetRtpmapProfile(row)), kProfiles[row].name) << row;
        EXPECT_EQ(SdpGetRtpmapClockRates(row), kProfiles[row].clockRate) << row;
    }
}

TEST(RtpProfiles, NameIsAppendedInOneCall) {
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 16, 16, &buffer), 0u);
    Appends::reset();
    for (uint16_t row = 0; row < 36; ++row) {
        EXPECT_EQ(SdpCopyRtpmapProfile(buffer, row), 0u);
        ASSERT_EQ(Appends::count(), row + 1u);
        EXPECT_EQ(Appends::texts().back(), kProfiles[row].name);
    }
    Appends::off();
    SipSbReleaseStringBuffer(buffer);
}

TEST(RtpProfiles, FailureOfTheAppendIsPassedUp) {
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 16, 16, &buffer), 0u);
    Appends::reset();
    Appends::failAt(1);
    EXPECT_EQ(SdpCopyRtpmapProfile(buffer, 0), Appends::kRefused);
    Appends::off();
    SipSbReleaseStringBuffer(buffer);
}

} // namespace

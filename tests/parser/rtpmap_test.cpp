// a=rtpmap by the parser called alone, and the static profile of a name.
#include "parser/parsing.hpp"
#include "support/each.hpp"
#include "support/securefaults.hpp"

namespace {

using support::named;
using support::SecureFaults;
using support::TextAndResult;
using support::textOf;

class ParserRtpmap : public support::ParsingTest {
protected:
    // The profile of a name with that clock rate and those channels.
    static uint32_t profileOf(std::string name, uint32_t clock = 8000, uint32_t channels = 1) {
        SDPRtpMapAttr map = {};
        map.ulEncodingId = 99;
        map.strEncodingName = {static_cast<uint32_t>(name.size()), name.data()};
        map.ulClockRate = clock;
        map.ulEncodingParams = channels;
        EXPECT_EQ(named(sdpRtpmapAttrLocateStdRtpProfile(&map)), "ok");
        return map.ulEncodingId;
    }

    // The profile 77 after an operation that chooses among those of one name.
    static uint32_t refined(SDPResult (*refine)(SDPRtpMapAttr *), uint32_t clock,
                            uint32_t channels) {
        SDPRtpMapAttr map = {};
        map.ulEncodingId = 77;
        map.ulClockRate = clock;
        map.ulEncodingParams = channels;
        EXPECT_EQ(refine(&map), 0u);
        return map.ulEncodingId;
    }
};

TEST_F(ParserRtpmap, LineWithoutEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"a=rtpmap", "RtpmapColon 101"},
        {"a=rtpmap:", "RtpmapPayload 101"},
        {"a=rtpmap:0", "RtpmapSpace 101"},
        {"a=rtpmap:0 ", "RtpmapNameTooLong 1"},
        {"a=rtpmap:0 PCMU", "RtpmapNameTooLong 1"},
        {"a=rtpmap:0 PCMU/", "RtpmapClock 101"},
        {"a=rtpmap:0 PCMU/8000", "RtpmapEnd 101"},
        {"a=rtpmap:0 PCMU/8000/", "RtpmapParams 101"},
        {"a=rtpmap:0 PCMU/8000/1", "RtpmapParamsEnd 101"},
        {"a=rtpmap:0 PCMU/8000/1\n", "ok"},
    };
    expectResults(sdpAttributeField, rows);
}

// A name that neither "/" nor a line end stops is too long, whatever its length.
TEST_F(ParserRtpmap, NameCutByTheEndOfInputIsTooLong) {
    for (const uint32_t length : {0u, 1u, 254u, 255u, 256u, 1000u}) {
        startValue("rtpmap:0 " + std::string(length, 'n'));
        log.clear();
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "RtpmapNameTooLong 1") << length;
        EXPECT_EQ(log.texts(), std::vector<std::string>{"3 sdpparser sdpRtpmapAttr 3"});
    }
}

TEST_F(ParserRtpmap, NameOf255Bytes) {
    const std::string name(255, 'n');
    startValue("rtpmap:0 " + name + "/8000\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "ok");
    EXPECT_EQ(textOf(attr.unAttrValue.stRtpMap.strEncodingName), name);
}

TEST_F(ParserRtpmap, FieldsBeforeAFailureStay) {
    startValue("rtpmap:5 DVI4/8000/x\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "RtpmapParams 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_RTPMAP});
    const SDPRtpMapAttr &map = attr.unAttrValue.stRtpMap;
    EXPECT_EQ(map.ulPayloadType, 5u);
    EXPECT_EQ(map.ulEncodingId, 16u);
    EXPECT_EQ(textOf(map.strEncodingName), "DVI4");
    EXPECT_EQ(map.ulClockRate, 8000u);
    EXPECT_EQ(map.ulEncodingParams, 0u);
}

TEST_F(ParserRtpmap, OneChannelIsStoredWhenTheLineEndsThere) {
    for (const char *const text : {"rtpmap:0 PCMU/8000 \n", "rtpmap:0 PCMU/8000x\n"}) {
        startValue(text);
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "RtpmapEnd 101");
        EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingParams, 0u);
    }
}

TEST_F(ParserRtpmap, TypeIsStoredBeforeTheColonIsAskedFor) {
    startValue("rtpmap\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "RtpmapColon 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_RTPMAP});
}

TEST_F(ParserRtpmap, NameWithoutMemory) {
    startValue("rtpmap:0 PCMU/8000\n");
    failAllocation(1);
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "RtpmapNameStore 1");
    EXPECT_EQ(log.texts(), std::vector<std::string>{"3 sdpparser sdpRtpmapAttr 3"});
}

// ---- Profiles

TEST_F(ParserRtpmap, LastProfileOfANameIsLocated) {
    support::expectEach<const char *, uint32_t>(
        [](const char *name) { return profileOf(name); },
        {{"PCMU", 1},       {"GSM", 2},      {"G723", 3},   {"DVI4", 16},    {"LPC", 6},
         {"PCMA", 7},       {"G722", 8},     {"L16", 10},   {"QCELP", 11},   {"CN", 12},
         {"MPA", 13},       {"G728", 14},    {"G729", 17},  {"G726-40", 18}, {"G726-32", 19},
         {"G726-24", 20},   {"G726-16", 21}, {"G729D", 22}, {"G729E", 23},   {"GSM-EFR", 24},
         {"L8", 25},        {"RED", 26},     {"VDVI", 27},  {"CelB", 28},    {"JPEG", 29},
         {"nv", 30},        {"H261", 31},    {"MPV", 32},   {"MP2", 33},     {"H263", 34},
         {"H263-1998", 35}, {"", 0},         {"pcmu", 0},   {"PCMU ", 0},    {"PCM", 0}});
    EXPECT_EQ(profileOf(std::string(1024, 'n')), 0u);
}

TEST_F(ParserRtpmap, ClockRateAndChannelsDoNotChooseAmongProfilesOfOneName) {
    for (const uint32_t clock : {0u, 8000u, 16000u, 11025u, 22050u}) {
        EXPECT_EQ(profileOf("DVI4", clock), 16u) << clock;
    }
    for (const uint32_t channels : {0u, 1u, 2u, 3u}) {
        EXPECT_EQ(profileOf("L16", 44100, channels), 10u) << channels;
    }
}

TEST_F(ParserRtpmap, NameOf1025BytesIsNotLookedUp) {
    std::string name(1025, 'n');
    SDPRtpMapAttr map = {};
    map.ulEncodingId = 99;
    map.strEncodingName = {1025, name.data()};
    EXPECT_EQ(named(sdpRtpmapAttrLocateStdRtpProfile(&map)), "ProfileNameTooLong 1");
    EXPECT_EQ(log.texts(),
              std::vector<std::string>{"3 sdpparser sdpRtpmapAttrLocateStdRtpProfile 0"});
    EXPECT_EQ(map.ulEncodingId, 99u);
}

// The name that could not be copied is empty, and no profile is called so.
TEST_F(ParserRtpmap, FailingCopyOfTheNameIsReported) {
    startValue("rtpmap:0 PCMU/8000/2\n");
    SecureFaults::reset();
    SecureFaults::failAt(7); // after the texts of the payload, four letters and the clock rate
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpRtpmapAttr(&attr, SDP_ATTR_RTPMAP)), "ok");
    EXPECT_EQ(SecureFaults::count(), 8u) << "and that of the channels";
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingId, 0u);
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingParams, 2u);
    ASSERT_EQ(SecureFaults::reports().size(), 1u);
    EXPECT_FALSE(SecureFaults::reports()[0].ex);
    EXPECT_EQ(SecureFaults::reports()[0].name, "sdpRtpmapAttrLocateStdRtpProfile");
    SecureFaults::reset();
}

TEST_F(ParserRtpmap, Dvi4IsRefinedByClockRate) {
    support::expectEach<uint32_t, uint32_t>(
        [](uint32_t clock) { return refined(sdpRtpmapAttrPayloadDvi4For8K, clock, 0); },
        {{8000, 4}, {16000, 5}, {11025, 15}, {22050, 16}, {0, 77}, {44100, 77}, {8001, 77}});
}

TEST_F(ParserRtpmap, L16IsRefinedByChannels) {
    support::expectEach<uint32_t, uint32_t>(
        [](uint32_t channels) { return refined(sdpRtpmapAttrPayloadL16For2C, 0, channels); },
        {{1, 10}, {2, 9}, {0, 77}, {3, 77}});
}

TEST_F(ParserRtpmap, AttributeNameIsAWritableText) {
    EXPECT_STREQ(sdpGetRtpmapVar(), "rtpmap");
    EXPECT_EQ(sdpGetRtpmapVar(), sdpGetRtpmapVar());
}

} // namespace

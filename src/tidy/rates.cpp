#include "tidy/rates.hpp"

namespace sdpline::tidy {

namespace {

// Payload formats that are not profiles of the library, and whose registration has one clock rate
// or a default rate.
struct Registered {
    std::string_view name; // in small letters
    std::string_view rate;
};

constexpr Registered kRegistered[] = {
    {"amr", "8000"},             // RFC 4867 8.1
    {"amr-wb", "16000"},         // RFC 4867 8.2
    {"amr-wb+", "72000"},        // RFC 4352 7
    {"bv16", "8000"},            // RFC 4298
    {"bv32", "16000"},           // RFC 4298
    {"clearmode", "8000"},       // RFC 4040
    {"evrc", "8000"},            // RFC 3558
    {"evrc0", "8000"},           // RFC 3558
    {"evrc1", "8000"},           // RFC 4788
    {"evrcb", "8000"},           // RFC 4788
    {"evrcb0", "8000"},          // RFC 4788
    {"evrcb1", "8000"},          // RFC 4788
    {"evrcwb", "16000"},         // RFC 5188
    {"evrcwb0", "16000"},        // RFC 5188
    {"evrcwb1", "16000"},        // RFC 5188
    {"evrcnw", "16000"},         // RFC 6884
    {"evrcnw0", "16000"},        // RFC 6884
    {"evrcnw1", "16000"},        // RFC 6884
    {"g719", "48000"},           // RFC 5404
    {"g7291", "16000"},          // RFC 4749
    {"gsm-hr-08", "8000"},       // RFC 5993
    {"ilbc", "8000"},            // RFC 3952 4.1
    {"melp", "8000"},            // RFC 8130
    {"melp600", "8000"},         // RFC 8130
    {"melp1200", "8000"},        // RFC 8130
    {"melp2400", "8000"},        // RFC 8130
    {"mpa-robust", "90000"},     // RFC 5219
    {"opus", "48000/2"},         // RFC 7587 7
    {"pcma-wb", "16000"},        // RFC 5391
    {"pcmu-wb", "16000"},        // RFC 5391
    {"smv", "8000"},             // RFC 3558
    {"smv0", "8000"},            // RFC 3558
    {"vmr-wb", "16000"},         // RFC 4348
    {"t140", "1000"},            // RFC 4103
    {"telephone-event", "8000"}, // RFC 4733 7.1.1, where none is said
    {"tone", "8000"},            // RFC 4733 7.1.2, where none is said
    {"bmpeg", "90000"},          // RFC 3551 6
    {"bt656", "90000"},          // RFC 3551 6
    {"mp1s", "90000"},           // RFC 3551 6
    {"mp2p", "90000"},           // RFC 3551 6
    {"mp2t", "90000"},           // RFC 3551 6
    {"h263-2000", "90000"},      // RFC 4629 8.1
    {"h264", "90000"},           // RFC 6184 8.1
    {"h264-rcdo", "90000"},      // RFC 6185
    {"h264-svc", "90000"},       // RFC 6190 7.1
    {"h265", "90000"},           // RFC 7798 7.1
    {"h266", "90000"},           // RFC 9328 7.1
    {"mp4v-es", "90000"},        // RFC 6416, where none is said
    {"vc1", "90000"},            // RFC 4425
    {"vp8", "90000"},            // RFC 7741 6.1
    {"vp9", "90000"},            // RFC 9628 6.1
};

// All rows of SdpGetRtpmapProfile.
constexpr uint16_t kProfiles = 35;

// The rate of the profiles of that name (RFC 3551 section 6) if all have the same; else 0.
uint32_t profileRate(std::string_view name) {
    uint32_t rate = 0;
    for (uint16_t row = 0; row < kProfiles; ++row) {
        const SipString &profile = SdpGetRtpmapProfile(row);
        if (!sameIgnoringCase(name, {profile.pcData, profile.ulLen})) {
            continue;
        }
        const uint32_t found = SdpGetRtpmapClockRates(row);
        if (found == 0 || (rate != 0 && rate != found)) {
            return 0;
        }
        rate = found;
    }
    return rate;
}

} // namespace

std::string_view registeredRate(Memory &memory, std::string_view name, std::string_view payload) {
    if (name.empty()) {
        return {};
    }
    if (sameIgnoringCase(name,
                         "l16")) { // any rate, but for these two (RFC 3551 sections 4.5.11, 6)
        return payload == "10" ? "44100/2" : payload == "11" ? "44100" : "";
    }
    for (const Registered &format : kRegistered) {
        if (sameIgnoringCase(name, format.name)) {
            return format.rate;
        }
    }
    const uint32_t rate = profileRate(name);
    return rate != 0 ? decimal(memory, rate) : std::string_view();
}

} // namespace sdpline::tidy

// Any bytes are decoded, or refused with a reason and a place inside the text, and the memory is at
// most a small multiple of the greatest size of a body. The three entry points of the decoder
// agree.
#include <algorithm>

#include "fuzz.hpp"
#include "output/tree.hpp"

namespace {

using fuzz::Body;
using fuzz::require;

uint64_t mostMemory() {
    return 64 * uint64_t{SdpGetMaxBodySize()};
}

// The place of the refusal is in the text, and its line and column are those of its offset.
void requirePlaceIn(std::string_view text, const SDPFailure &failure) {
    if (failure.ulLine == 0) {
        require(text.empty() || text.size() > SdpGetMaxBodySize(),
                "a text that was read has a place");
        require(failure.ulColumn == 0 && failure.ulOffset == 0, "without line there is no column");
        return;
    }
    require(failure.ulOffset <= text.size(), "the place lies inside the text");
    const std::string_view before = text.substr(0, failure.ulOffset);
    require(!before.ends_with('\r') || !text.substr(failure.ulOffset).starts_with('\n'),
            "a line ends where its CR LF begins");
    const size_t lineStart = before.rfind('\n') + 1;
    const auto feeds = std::count(before.begin(), before.end(), '\n');
    require(failure.ulLine == static_cast<uint64_t>(feeds) + 1, "the line is that of the offset");
    require(failure.ulColumn == failure.ulOffset - lineStart + 1,
            "the column is that of the offset");
}

void requireReason(std::string_view text, SDPResult result) {
    const std::string_view check = fuzz::checkOf(result);
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    require(failure.ulResult == result, "the last failure is this one");
    require(failure.pcCheck != nullptr, "a failure names its check");
    require(check.empty() || check == failure.pcCheck, "both descriptions name one check");
    requirePlaceIn(text, failure);
}

Body deserialize(std::string_view text, SDPResult &result) {
    fuzz::Exact bytes(text);
    SdpLine *line = nullptr;
    result = SdpLibDeSerializeSdp(bytes.data(), bytes.size(), &line);
    require((result == 0) == (line != nullptr), "a decode gives a body or a reason");
    return Body(line);
}

Body decodeFromBuffer(std::string_view text, SDPResult &result) {
    SipStringBuffer *buffer = nullptr;
    require(SipSbCreateStringBufferNew(gSipSystemMemCp, 16, 16, &buffer) == 0, "there is memory");
    SipSbCopyConstString(buffer, text.data(), static_cast<uint32_t>(text.size()));
    SdpLine *line = nullptr;
    result = SdpLibDecodeSipBodyAsSdp(buffer, &line);
    SipSbReleaseStringBuffer(buffer);
    require((result == 0) == (line != nullptr), "a decode gives a body or a reason");
    return Body(line);
}

// Checks that fewer bytes than the limit are allocated from the process heap during its life.
class LittleMemory {
public:
    LittleMemory() : before_(statistics().ulHeapBytes) { SipMmResetPeak(); }

    void check() const {
        require(statistics().ulHeapBytesPeak - before_ <= mostMemory(),
                "a decode takes little memory");
    }

private:
    static SipMmStatistics statistics() {
        SipMmStatistics now = {};
        SipMmGetStatistics(&now);
        return now;
    }

    uint64_t before_;
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    fuzz::Configuration::of(input.byte()).apply();
    const std::string_view text = input.rest();
    const fuzz::NothingLeaks nothingLeaks;
    const LittleMemory littleMemory;
    SDPResult result = 0;
    const Body body = fuzz::decode(text, &result);
    littleMemory.check();
    require(result != 0 || (!text.empty() && text.size() <= SdpGetMaxBodySize()),
            "a body's length fits");
    if (result != 0) {
        requireReason(text, result);
    }
    for (const auto other : {deserialize, decodeFromBuffer}) {
        SDPResult otherResult = 0;
        const Body otherBody = other(text, otherResult);
        require((result == 0) == (otherResult == 0), "every way in takes the same texts");
        require(result == 0 || text.empty() || result == otherResult,
                "every way in refuses for the same reason");
        require(result != 0 || cli::describeTree(*body) == cli::describeTree(*otherBody),
                "every way in gives the same body");
    }
    return 0;
}

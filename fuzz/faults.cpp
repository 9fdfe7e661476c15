// With any allocation and any append failing, operations return success or the reason of that
// failure, nothing is leaked, and the results can be used.
#include "copy/linesamples.hpp"
#include "fuzz.hpp"
#include "support/allocations.hpp"
#include "support/appends.hpp"
#include "support/bodylines.hpp"

namespace {

using fuzz::Body;
using fuzz::require;
using support::Allocations;
using support::Appends;
using support::BodyLine;

// A decode with its n-th allocation failing. The body may lack the text of an unknown protocol.
Body decodeShort(std::string_view text, uint32_t n) {
    SDPResult whole = 0;
    Allocations::reset();
    fuzz::decode(text, &whole);
    SDPResult result = 0;
    Allocations::failAt(1 + n % (Allocations::count() + 1));
    Body body = fuzz::decode(text, &result);
    const bool failed = Allocations::failed();
    Allocations::reset();
    require(failed || result == whole, "without a failure it is a decode like any other");
    if (failed && result != 0 && result != whole) {
        SDPResultText words = {};
        SdpLibDescribeResult(result, &words);
        const std::string_view sentence = words.pcSentence;
        require(sentence.starts_with("no memory") || sentence.starts_with("the memory block"),
                "a failed allocation is said to be one", sentence);
    }
    return body;
}

// The written text consists of the successful appends in their order.
void encodeShort(SdpLine &body, uint32_t n, bool allFollowing) {
    Appends::reset();
    require(fuzz::encode(body).has_value(), "what decodes encodes");
    const uint32_t failing = 1 + n % Appends::count();
    Appends::reset();
    allFollowing ? Appends::failFrom(failing) : Appends::failAt(failing);
    SDPResult result = 0;
    const auto text = fuzz::encode(body, &result);
    require(!text || *text == Appends::written(), "what could be written is written");
    if (!text) {
        SDPResultText words = {};
        require(SdpLibDescribeResult(result, &words) == 0, "every result has a description");
        require(words.pcFunction == std::string_view("SdpLibEncodeSdpInt"),
                "a failed append is the encoder's failure");
    }
    Appends::off();
}

// Clones in a block, where an allocation may fail, and in memory that counts every allocation.
void cloneShort(const SdpLine &body, uint32_t n) {
    SDPMemCp *block = nullptr;
    require(SipMmCreateBufMem(64, 64, &block) == 0, "there is memory");
    Allocations::failAt(1 + n);
    for (const BodyLine &line : support::linesOf(body)) {
        void *clone = nullptr;
        const SDPResult result = SdpCloneLine(block, line.lineType, line.record, &clone);
        require((result == 0) == (clone != nullptr), "a clone is made or it is not");
        require(result == 0 || Allocations::failed(), "a clone is made while there is memory");
        if (clone == nullptr) {
            continue;
        }
        require(dsmtest::lookAt(line.lineType, clone).text ==
                    dsmtest::lookAt(line.lineType, line.record).text,
                "a clone equals its source");
        require(SdpFreeLine(block, line.lineType, &clone) == 0, "a clone is freed");
    }
    Allocations::reset();
    SipMmReleaseBufMem(&block);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const uint8_t choice = input.byte();
    fuzz::Configuration::of(choice).apply();
    const uint32_t allocation = input.below(65536);
    const uint32_t append = input.below(65536);
    Allocations::reset();
    Appends::off();
    const fuzz::NothingLeaks nothingLeaks;
    const Body body = decodeShort(input.rest(), allocation);
    if (body != nullptr) {
        encodeShort(*body, append, choice >= 128);
        cloneShort(*body, append);
    }
    return 0;
}

// Copies and clones every line of a decoded body. The copies equal the line, share nothing with it,
// outlive it, and free everything that they allocated.
#include <algorithm>
#include <deque>
#include <vector>

#include "copy/linesamples.hpp"
#include "fuzz.hpp"
#include "support/bodylines.hpp"

namespace {

using dsmtest::Look;
using dsmtest::lookAt;
using fuzz::require;
using support::BodyLine;

std::string encodeLine(uint32_t lineType, void *record) {
    uint32_t withPrefix = 1;
    SipRefString *text = nullptr;
    require(SdpLibEncodeSdpLine(&withPrefix, lineType, record, &text) == 0, "a line is written");
    return fuzz::take(text);
}

uint64_t heapBlocks() {
    SipMmStatistics now = {};
    SipMmGetStatistics(&now);
    return now.ulHeapBlocks;
}

// A record of this kind, made by one of the two operations with one memory control.
class Twin {
public:
    // A copy into memory with arbitrary content, at any multiple of 4; or a clone.
    Twin(SDPMemCp *memory, const BodyLine &source, bool copied)
        : memory_(memory), lineType_(source.lineType), copied_(copied),
          room_(std::string(dsmtest::recordSize(source.lineType) + 4, '\xA5')) {
        const uint64_t before = heapBlocks();
        if (copied) {
            record_ = room_.data() + 4;
            require(SdpCopyLine(memory, lineType_, source.record, record_) == 0,
                    "a line is copied");
        } else {
            require(SdpCloneLine(memory, lineType_, source.record, &record_) == 0,
                    "a line is cloned");
        }
        const uint64_t owned = allocations().size() + (copied ? 0 : 1);
        require(memory != gSipSystemMemCp || heapBlocks() == before + owned,
                "what a line takes, it points to");
    }

    void requireLike(const Look &look, const std::string &text) const {
        require(lookAt(lineType_, record_).text == look.text, "it equals its source", text);
        require(encodeLine(lineType_, record_) == text, "it is written like its source", text);
    }

    std::vector<const void *> allocations() const { return lookAt(lineType_, record_).allocations; }

    void giveBack() {
        if (!copied_) {
            require(SdpFreeLine(memory_, lineType_, &record_) == 0, "a line is freed");
            require(record_ == nullptr, "a freed line is gone");
            return;
        }
        require(SdpClearLine(memory_, lineType_, record_) == 0, "a line is cleared");
        // A version and a connection own nothing; an m= line and an attribute become all zero.
        require(lineType_ == SDP_LINE_CONNECTION || allocations().empty(),
                "a cleared line has nothing");
        if (lineType_ == SDP_LINE_MEDIA || lineType_ == SDP_LINE_ATTRIBUTE) {
            const std::string_view bytes = room_.view().substr(4);
            require(bytes.find_first_not_of('\0') == bytes.npos, "a cleared line is all zero");
        }
    }

private:
    SDPMemCp *memory_;
    uint32_t lineType_;
    bool copied_;
    fuzz::Exact room_;
    void *record_ = nullptr;
};

struct Line {
    Look look;
    std::string text;
    std::deque<Twin> twins;
};

void requireNothingShared(std::vector<const void *> allocations) {
    std::sort(allocations.begin(), allocations.end());
    require(std::adjacent_find(allocations.begin(), allocations.end()) == allocations.end(),
            "no two lines share memory");
}

std::deque<Line> twinsOf(const SdpLine &body, SDPMemCp *memory) {
    std::deque<Line> lines;
    std::vector<const void *> allocations;
    for (const BodyLine &source : support::linesOf(body)) {
        Line &line = lines.emplace_back();
        line.text = encodeLine(source.lineType, const_cast<void *>(source.record));
        line.look = lookAt(source.lineType, source.record);
        // The r= lines of a t= line are copied again by themselves.
        if (source.lineType != SDP_LINE_REPEAT) {
            allocations.insert(allocations.end(), line.look.allocations.begin(),
                               line.look.allocations.end());
        }
        for (const bool copied : {true, false}) {
            const auto more = line.twins.emplace_back(memory, source, copied).allocations();
            allocations.insert(allocations.end(), more.begin(), more.end());
        }
    }
    requireNothingShared(std::move(allocations));
    return lines;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const uint8_t choice = input.byte();
    fuzz::Configuration::of(choice).apply();
    const fuzz::NothingLeaks nothingLeaks;
    fuzz::Body body = fuzz::decode(input.rest());
    if (body == nullptr) {
        return 0;
    }
    SDPMemCp *block = nullptr;
    if (choice >= 128) {
        require(SipMmCreateBufMem(512, 512, &block) == 0, "there is memory");
    }
    std::deque<Line> lines = twinsOf(*body, block != nullptr ? block : gSipSystemMemCp);
    body.reset();
    for (Line &line : lines) {
        for (Twin &twin : line.twins) {
            twin.requireLike(line.look, line.text);
            twin.giveBack();
        }
    }
    SipMmReleaseBufMem(&block);
    return 0;
}

// Lines and bodies that the library copies itself instead of calling the services: the same records
// in the same memory, the same results, log entries and statistics.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "copy/linesamples.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpline.h"
#include "services/builtin.hpp"
#include "support/bodies.hpp"
#include "support/cases.hpp"
#include "support/generator.hpp"
#include "support/logs.hpp"

namespace {

using dsmtest::lookAt;
using support::Body;
using support::BodyLine;

uint64_t heapAllocations() {
    SipMmStatistics statistics;
    SipMmGetStatistics(&statistics);
    return statistics.ulHeapAllocations;
}

constexpr uint32_t kOneChunk = 1 << 22; // holds all copies of a test

// The outcome of copies as text for comparison: results, records, and where each allocation
// lies in its block, as long as that has one chunk.
class Trace {
public:
    explicit Trace(uint32_t chunk) : withPlaces_(chunk == kOneChunk) {
        EXPECT_EQ(SipMmCreateBufMem(chunk, chunk, &block_), 0u);
        before_ = heapAllocations();
    }
    ~Trace() { SipMmReleaseBufMem(&block_); }
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;

    SDPMemCp *block() const { return block_; }

    void note(uint32_t type, SDPResult result, const void *record) {
        text_ += std::to_string(result) + ' ';
        if (result != 0) {
            return;
        }
        const dsmtest::Look look = lookAt(type, record);
        text_ += look.text;
        for (const void *const allocation : look.allocations) {
            place(allocation);
        }
    }
    // A text that a copy shares with its source is outside the block, at the same address in every
    // trace.
    void place(const void *allocation) {
        const auto address = reinterpret_cast<uintptr_t>(allocation);
        const uintptr_t offset = address - reinterpret_cast<uintptr_t>(block_);
        if (withPlaces_) {
            text_ += offset < 2 * kOneChunk ? '@' + std::to_string(offset) + ' '
                                            : "outside " + std::to_string(address) + ' ';
        }
    }

    std::string take() {
        text_ += "heap " + std::to_string(heapAllocations() - before_);
        for (const std::string &entry : logs_.textsWithLines()) {
            text_ += '\n' + entry;
        }
        return text_;
    }

private:
    bool withPlaces_;
    SDPMemCp *block_ = nullptr;
    uint64_t before_ = 0;
    support::LogRecorder logs_;
    std::string text_;
};

// Copies and clones every line, frees each third one, and clones all again into the free memory.
std::string copiesOf(const std::vector<BodyLine> &lines, uint32_t chunk) {
    Trace trace(chunk);
    alignas(8) unsigned char target[sizeof(SDPOrigin)];
    for (int round = 0; round < 2; ++round) {
        for (size_t i = 0; i < lines.size(); ++i) {
            const auto [type, record] = lines[i];
            std::memset(target, 0xA5, sizeof target);
            trace.note(type, SdpCopyLine(trace.block(), type, record, target), target);
            void *clone = nullptr;
            const SDPResult result = SdpCloneLine(trace.block(), type, record, &clone);
            trace.note(type, result, clone);
            trace.place(clone != nullptr ? clone : trace.block());
            if (i % 3 == 0) {
                SdpFreeLine(trace.block(), type, &clone);
            }
        }
    }
    return trace.take();
}

void expectTheSameCopies(const std::vector<BodyLine> &lines) {
    for (const uint32_t chunk : {kOneChunk, 1032u, 64u}) {
        const std::string inPlace = copiesOf(lines, chunk);
        const sdpline::EveryServiceCalled everyService;
        EXPECT_TRUE(copiesOf(lines, chunk) == inPlace) << "chunks of " << chunk;
    }
}

// The clone, its heap and its log entries; the changes of `spoil` remain.
std::string cloneOf(SdpLine &body) {
    support::LogRecorder logs;
    const uint64_t before = heapAllocations();
    SdpLine *line = nullptr;
    std::string text = std::to_string(SdpLibCloneSdp(&body, &line)) + ' ';
    text += "heap " + std::to_string(heapAllocations() - before) + ' ';
    const Body clone(line);
    if (clone != nullptr) {
        for (const BodyLine &each : support::linesOf(*clone)) {
            text += lookAt(each.lineType, each.record).text;
        }
        EXPECT_EQ(support::encoded(*clone), support::encoded(body));
    }
    for (const std::string &entry : logs.textsWithLines()) {
        text += '\n' + entry;
    }
    return text;
}

void expectTheSameClone(SdpLine &body) {
    const std::string inPlace = cloneOf(body);
    const sdpline::EveryServiceCalled everyService;
    EXPECT_EQ(cloneOf(body), inPlace);
}

TEST(CopyInPlace, isWhatAProgramOfTheLibrariesAloneGets) {
    EXPECT_NE(sdpline::builtin.lineAlloc, nullptr);
}

TEST(CopyInPlace, makesWhatTheCallsMakeOfEveryCase) {
    for (const support::Case &current : support::readCases(SDPLINE_CASES)) {
        const support::Configured configured(current);
        SCOPED_TRACE(current.file + ": " + current.title);
        if (const Body body = support::decoded(current.body)) {
            expectTheSameCopies(support::linesOf(*body));
            expectTheSameClone(*body);
        }
    }
}

TEST(CopyInPlace, makesWhatTheCallsMakeOfBodiesMadeByChance) {
    std::mt19937 engine(20261122);
    for (int i = 0; i < 300; ++i) {
        const Body body = support::decoded(support::generateBody(engine));
        ASSERT_TRUE(body);
        expectTheSameCopies(support::linesOf(*body));
        expectTheSameClone(*body);
    }
}

// ---- Records that no decode returns

char letters[300] = "a text";
SipString someText = {6, letters};
SipString lostText = {6, nullptr};
SipString longText = {300, letters};

// Connections with every address type, and with types that do not exist.
std::vector<SDPConnection> unusualConnections() {
    SDPConnection connection = {
        {SDP_NETTYPE_IN, &someText}, {SDP_ADDRTYPE_OTHER, &someText}, {}, 1, 2};
    std::memset(&connection.stTptAddr.unTptAddr, 7, sizeof connection.stTptAddr.unTptAddr);
    std::vector<SDPConnection> connections(5, connection);
    for (uint32_t code = 0; code < 5; ++code) {
        connections[code].stTptAddr.enTptAddrType = code;
    }
    return connections;
}

// The maximum number of payloads, one more, and a count without payloads.
std::vector<SDPMediaField> unusualMedia(std::vector<uint32_t> &numbers) {
    std::vector<SDPMediaField> media(4);
    for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t count[] = {0, 100, 101, 3};
        media[i] = {{SDP_MEDIA_OTHER, nullptr}, 1, 2, {SDP_PROTO_OTHER, &someText}, {i, {}}};
        media[i].stMediaFmt.unMediaFmt.stRtpPayLoads = {count[i],
                                                        i == 3 ? nullptr : numbers.data()};
    }
    return media;
}

// Attributes of every type, and of types that do not exist.
std::vector<SDPAttr> unusualAttributes() {
    std::vector<SDPAttr> attributes(60);
    for (uint32_t type = 0; type < attributes.size(); ++type) {
        attributes[type] = {type, {}, type % 2 == 0 ? &someText : nullptr};
        const bool isText =
            (type >= SDP_ATTR_FMTP && type <= SDP_ATTR_LANG) || type == SDP_ATTR_UNREC_VALUE;
        if (isText) {
            attributes[type].unAttrValue.strValue = type % 3 == 0 ? lostText : someText;
        }
    }
    attributes[SDP_ATTR_DES].unAttrValue.stRsrcMgmtStatus = {
        {SDP_PRECONDITION_OTHER, nullptr}, 1, 1, 1};
    attributes[SDP_ATTR_CURR].unAttrValue.stRsrcMgmtStatus = {
        {SDP_PRECONDITION_QOS, &someText}, 1, 1, 1};
    return attributes;
}

template <class Record>
void addLines(std::vector<BodyLine> &lines, uint32_t type, const std::vector<Record> &records) {
    for (const Record &record : records) {
        lines.push_back({type, &record});
    }
}

// What a service refuses or repairs is refused or repaired in place too.
TEST(CopyInPlace, makesWhatTheCallsMakeOfUnusualRecords) {
    SDPRepeatField repeat = {3, nullptr};
    SDPRepeatField *repeats[] = {&repeat, nullptr, &repeat};
    SDPRepeatFieldSet repeatSet = {3, repeats};
    const SDPTimeField time = {1, 2, &repeatSet};
    const auto connections = unusualConnections();
    std::vector<uint32_t> numbers(101, 8);
    const auto media = unusualMedia(numbers);
    const auto attributes = unusualAttributes();

    std::vector<BodyLine> lines = {{SDP_LINE_INFO, &lostText},
                                   {SDP_LINE_NAME, &longText},
                                   {SDP_LINE_TIME, &time},
                                   {SDP_LINE_REPEAT, &repeat}};
    addLines(lines, SDP_LINE_CONNECTION, connections);
    addLines(lines, SDP_LINE_MEDIA, media);
    addLines(lines, SDP_LINE_ATTRIBUTE, attributes);
    expectTheSameCopies(lines);
}

// The services refuse a record that is also the target of its copy.
TEST(CopyInPlace, refusesARecordThatIsItsOwnTargetAsTheCallsDo) {
    const auto outcome = [] {
        Trace trace(1032);
        SDPOrigin origin = {};
        trace.note(SDP_LINE_ORIGIN, SdpCopyLine(trace.block(), SDP_LINE_ORIGIN, &origin, &origin),
                   &origin);
        return trace.take();
    };
    const std::string inPlace = outcome();
    EXPECT_NE(inPlace.substr(0, 2), "0 ");
    const sdpline::EveryServiceCalled everyService;
    EXPECT_EQ(outcome(), inPlace);
}

// A program that counts the calls of one function of a control counts every request of a copy.
TEST(CopyInPlace, callsTheFunctionsOfAControlWhereOneIsThePrograms) {
    static uint32_t calls;
    static SDPMemCp functions;
    SipString text = {1, const_cast<char *>("x")};
    SDPAttr attribute = {SDP_ATTR_UNREC_VALUE, {}, &text};
    attribute.unAttrValue.strValue = text;
    Trace trace(1032);
    functions = *trace.block();
    trace.block()->pfnAlloc = [](SDPMemCp *memCp, uint32_t size) {
        return ++calls, functions.pfnAlloc(memCp, size);
    };
    void *clone = nullptr;
    EXPECT_EQ(SdpCloneLine(trace.block(), SDP_LINE_ATTRIBUTE, &attribute, &clone), 0u);
    EXPECT_EQ(calls, 4u) << "the record, its name as a record, two texts";
}

} // namespace

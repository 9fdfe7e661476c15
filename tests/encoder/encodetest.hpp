// What the encoder's tests share: a string buffer to write into, the recorded log, and a trace of
// what a refused append does to a line.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "support/appends.hpp"
#include "support/logs.hpp"

namespace support {

using Lines = std::vector<std::string>;

// A counted string over a literal.
SipString str(std::string_view text);

// CR, LF and other control bytes made visible.
std::string escaped(std::string_view text);

// "ok", "refused" (the append's own failure), the name of the check that composes the code, or
// the number.
std::string resultName(SDPResult result);

class EncodeTest : public testing::Test {
protected:
    using Encode = std::function<SDPResult()>;

    EncodeTest();
    ~EncodeTest() override;

    // An empty buffer, an empty log, no append counted, none to fail.
    void startAnew();

    // What the buffer holds.
    std::string text() const;

    // Encodes with codes that have no word in `field`: 0, `past` and the greatest number. What is
    // returned, what is left of the line, and the log, where {} is the code.
    void expectCodesRefused(const Encode &encode, uint32_t &field, uint32_t past, SDPResult result,
                            const std::string &left, const std::vector<std::string> &logged);

    // Runs `encode` once for each of its appends, with that one alone refused. One row each: the
    // append, the result, and the text that is left:
    //
    //     "=" refused "s"
    std::string trace(const Encode &encode);

    // Runs `encode` once for each of its appends, with that one and all later ones refused: what
    // is left must be what fitted. The result of each run.
    std::vector<SDPResult> resultsWhenFull(const Encode &encode);

    SipStringBuffer *buffer = nullptr;
    uint32_t prefixed = 1;
    uint32_t bare = 0;
    LogRecorder log;
};

// A body with every line, the media lines twice, and the records it is made of. It may not move.
struct FullBody {
    FullBody();
    FullBody(const FullBody &) = delete;
    FullBody &operator=(const FullBody &) = delete;

    SipString info, uri, zone, emails[2], phones[1], bandwidths[2];
    SipString *emailItems[2], *phoneItems[1], *bandwidthItems[2];
    SDPStringList emailList, phoneList, bandwidthList;
    SDPConnection connection;
    SDPTimeUnit units[4];
    SDPTimeUnit *unitItems[4];
    SDPRepeatField repeat;
    SDPRepeatField *repeatItems[1];
    SDPRepeatFieldSet repeats;
    SDPTimeField time;
    SDPTimeField *timeItems[1];
    SDPKey key;
    SDPAttr attrs[3];
    SDPAttr *attrItems[3];
    SDPAttrList attrList;
    uint32_t payloads[3];
    SDPMediaDesc medias[2];
    SDPMediaDesc *mediaItems[2];
    SdpLine line;

private:
    void fillTexts();
    void fillTimes();
    void fillAttributes();
    void fillMedia();
    void fillLine();
};

// The body's text, with CR LF.
extern const char *const kFullBodyText;

} // namespace support

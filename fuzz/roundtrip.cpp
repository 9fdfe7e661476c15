// A decoded body can be encoded, and decodes again to the same tree.
//
// Not everything is written; what is not is changed below in the expected tree, or ends the test:
//  - of several t= lines only the first is written, and "0 0" for a body that has none; the count
//    of t= lines has 8 bits, so that 256 of them count as none (likewise 256 m= lines);
//  - a number of ports or of channels is written only above 1, so that 0 is read back as 1;
//  - a time to live of SDP_NOT_GIVEN is not written, and then neither is the number of addresses;
//  - in the styles that write T.38 flags as names, 0 has no line, and other values are read back as
//  1;
//  - "m=audio 5004 RTP/AVP " is accepted without payload numbers because of its blank; without the
//  blank it
//    is not;
//  - the written text may be longer, by units, addresses or the t= line, and then too long;
//  - a text that ends in CR loses it where lines are written with LF alone.
#include <string>

#include "fuzz.hpp"
#include "output/tree.hpp"

namespace {

using fuzz::Body;
using fuzz::Configuration;
using fuzz::require;

bool isT38Flag(uint32_t type) {
    return type >= SDP_ATTR_T38_FILL_BIT_REMOVAL && type <= SDP_ATTR_T38_TRANSCODING_JBIG;
}

void changeConnection(SDPConnection *connection) {
    if (connection != nullptr && connection->ulTtl == SDP_NOT_GIVEN) {
        connection->ulNoOfAddrs = SDP_NOT_GIVEN;
    }
}

// The remaining list; null where it is empty.
SDPAttrList *changeAttributes(SDPAttrList *list, uint32_t style) {
    if (list == nullptr) {
        return nullptr;
    }
    uint32_t kept = 0;
    for (uint32_t i = 0; i < list->ulNoOfAttrs; ++i) {
        SDPAttr *const attr = list->ppstAttrs[i];
        auto &value = attr->unAttrValue;
        if (attr->ulAttrType == SDP_ATTR_RTPMAP && value.stRtpMap.ulEncodingParams == 0) {
            value.stRtpMap.ulEncodingParams = 1;
        }
        if (isT38Flag(attr->ulAttrType) && style != SDP_T38_STYLE_VALUE) {
            if (value.ulValue == 0) {
                continue;
            }
            value.ulValue = 1;
        }
        list->ppstAttrs[kept++] = attr;
    }
    list->ulNoOfAttrs = kept;
    return kept != 0 ? list : nullptr;
}

// The body that is expected after the round trip.
class Expected {
public:
    Expected(SdpLine &line, uint32_t style) : line_(line), field_(&unbounded_) {
        SDPTimeSet &times = line_.stTimeSet;
        field_ = times.ulNoOfTimeFields != 0 ? times.ppstTimeFields[0] : &unbounded_;
        times = {1, &field_};
        changeConnection(line_.pstConnection);
        line_.pstAttrList = changeAttributes(line_.pstAttrList, style);
        for (uint32_t i = 0; i < line_.stMediaSet.ulNoOfMediaDescs; ++i) {
            changeMedia(*line_.stMediaSet.ppstMediaDescs[i], style);
        }
    }

    std::string tree() const { return cli::describeTree(line_); }
    bool isReadable() const { return readable_; }

private:
    void changeMedia(SDPMediaDesc &desc, uint32_t style) {
        SDPMediaField &field = desc.stMediaField;
        const SDPMediaFmt &format = field.stMediaFmt;
        if (format.enFmtType == SDP_FMT_RTP_PAYLOADS && field.ulPort != 0 &&
            format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads == 0) {
            readable_ = false;
        }
        field.ulNoOfPorts = field.ulNoOfPorts == 0 ? 1 : field.ulNoOfPorts;
        changeConnection(desc.pstConnection);
        desc.pstAttrList = changeAttributes(desc.pstAttrList, style);
    }

    SdpLine &line_;
    SDPTimeField unbounded_ = {0, 0, nullptr};
    SDPTimeField *field_;
    bool readable_ = true;
};

// The t= line that is written for a body without one ends in CR LF under every configuration.
bool losesCr(std::string text) {
    const size_t given = text.find("\nt=0 0\r\n");
    if (given != std::string::npos) {
        text.erase(given + std::string_view("\nt=0 0").size(), 1);
    }
    return text.find("\r\n") != std::string::npos;
}

void requireSameAgain(std::string_view text, Configuration configuration) {
    const Body body = fuzz::decode(text);
    if (body == nullptr) {
        return;
    }
    const auto written = fuzz::encode(*body);
    require(written.has_value(), "what decodes encodes");
    SDPResult refused = 0;
    const Body again = fuzz::decode(*written, &refused);
    if (written->size() > SdpGetMaxBodySize()) {
        require(again == nullptr, "a longer body is refused");
        return;
    }
    if (configuration.lineEnd == SDP_LINE_END_LF && losesCr(*written)) {
        return;
    }
    const Expected expected(*body, configuration.t38Style);
    if (!expected.isReadable()) {
        require(again == nullptr && fuzz::checkOf(refused) == "PayloadsMissing",
                "payload numbers are missed");
        return;
    }
    require(again != nullptr, "what is written decodes", *written);
    const std::string tree = expected.tree();
    require(cli::describeTree(*again) == tree, "it decodes to the same tree", *written);
    const auto last = fuzz::encode(*again);
    const Body lastBody = fuzz::decode(*last);
    require(lastBody != nullptr && cli::describeTree(*lastBody) == tree, "and so on", *last);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    Configuration configuration = Configuration::of(input.byte());
    if (configuration.lineEnd == SDP_LINE_END_CR) {
        configuration.lineEnd = SDP_LINE_END_LF; // a body of CRs alone is written, but never read
    }
    configuration.apply();
    const fuzz::NothingLeaks nothingLeaks;
    requireSameAgain(input.rest(), configuration);
    return 0;
}

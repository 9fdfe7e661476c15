#include "support/bodylines.hpp"

namespace support {

namespace {

class LineCollector {
public:
    std::vector<BodyLine> take() { return std::move(lines_); }

    void body(const SdpLine &line) {
        add(SDP_LINE_VERSION, &line.ulProtoVersion);
        add(SDP_LINE_ORIGIN, &line.stOrigin);
        add(SDP_LINE_NAME, &line.strSessionName);
        add(SDP_LINE_INFO, line.pstrSessionInfo);
        add(SDP_LINE_URI, line.pstrUri);
        texts(SDP_LINE_EMAIL, line.pstEmailList);
        texts(SDP_LINE_PHONE, line.pstPhoneList);
        add(SDP_LINE_CONNECTION, line.pstConnection);
        texts(SDP_LINE_BANDWIDTH, line.pstBandwidthList);
        for (uint32_t i = 0; i < line.stTimeSet.ulNoOfTimeFields; ++i) {
            time(*line.stTimeSet.ppstTimeFields[i]);
        }
        add(SDP_LINE_ZONE, line.pstrTimeZone);
        add(SDP_LINE_KEY, line.pstKey);
        attributes(line.pstAttrList);
        for (uint32_t i = 0; i < line.stMediaSet.ulNoOfMediaDescs; ++i) {
            media(*line.stMediaSet.ppstMediaDescs[i]);
        }
    }

private:
    void add(uint32_t lineType, const void *record) {
        if (record != nullptr) {
            lines_.push_back({lineType, record});
        }
    }

    void texts(uint32_t lineType, const SDPStringList *list) {
        for (uint32_t i = 0; list != nullptr && i < list->ulNoOfStrings; ++i) {
            add(lineType, list->ppstStrings[i]);
        }
    }

    void attributes(const SDPAttrList *list) {
        for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
            add(SDP_LINE_ATTRIBUTE, list->ppstAttrs[i]);
        }
    }

    void time(const SDPTimeField &field) {
        add(SDP_LINE_TIME, &field);
        const SDPRepeatFieldSet *set = field.pstRepeatFieldSet;
        for (uint32_t i = 0; set != nullptr && i < set->ulNoOfRepeatFields; ++i) {
            add(SDP_LINE_REPEAT, set->ppstRepeatFields[i]);
        }
    }

    void media(const SDPMediaDesc &desc) {
        add(SDP_LINE_MEDIA, &desc.stMediaField);
        add(SDP_LINE_INFO, desc.pstrMediaInfo);
        add(SDP_LINE_CONNECTION, desc.pstConnection);
        texts(SDP_LINE_BANDWIDTH, desc.pstBandwidthList);
        add(SDP_LINE_KEY, desc.pstKey);
        attributes(desc.pstAttrList);
    }

    std::vector<BodyLine> lines_;
};

} // namespace

std::vector<BodyLine> linesOf(const SdpLine &line) {
    LineCollector collector;
    collector.body(line);
    return collector.take();
}

} // namespace support

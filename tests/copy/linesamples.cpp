#include "copy/linesamples.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <memory>
#include <span>

namespace dsmtest {

namespace {

constexpr SDPResult kGeneric = 1; // whatever the generic service returned
constexpr SDPResult kService = SIP_NO_MEMORY;
constexpr SDPResult kMedia = 0x020f6001;
constexpr SDPResult kProto = 0x020f9001;
constexpr SDPResult kFormat = 0x020fc001;

// Keeps everything that the samples consist of.
class Shelf {
public:
    template <class T>
    T *keep(const T &value) {
        auto kept = std::make_shared<T>(value);
        kept_.push_back(kept);
        return kept.get();
    }

    SipString *text(const char *literal) { return keep(textOf(literal)); }

    template <class T>
    T *array(std::span<const T> values) {
        auto kept = std::make_shared<std::vector<T>>(values.begin(), values.end());
        kept_.push_back(kept);
        return kept->data();
    }

    template <class T>
    T **pointers(std::span<const T> values) {
        std::vector<T *> slots;
        for (const T &value : values) {
            slots.push_back(keep(value));
        }
        return array<T *>(slots);
    }

    template <class T>
    void add(std::string name, uint32_t lineType, const T &record,
             std::vector<SDPResult> refusals) {
        samples_.push_back({std::move(name), lineType, keep(record), std::move(refusals)});
    }

    std::vector<Sample> take() { return std::move(samples_); }

private:
    static std::deque<std::shared_ptr<void>> kept_;
    std::vector<Sample> samples_;
};

std::deque<std::shared_ptr<void>> Shelf::kept_;

std::vector<SDPResult> times(size_t count, SDPResult result) {
    return std::vector<SDPResult>(count, result);
}

SDPConnection connectionIn(uint32_t addrType, uint32_t tptAddrType) {
    SDPConnection record = {};
    record.stNetType.enNetType = SDP_NETTYPE_IN;
    record.stAddrType.enAddrType = addrType;
    record.stTptAddr.enTptAddrType = tptAddrType;
    for (uint8_t i = 0; i < (tptAddrType == SDP_TPTADDR_IPV4 ? 4 : 16); ++i) {
        record.stTptAddr.unTptAddr.aucIpv6[i] = static_cast<uint8_t>(0xF0 + i);
    }
    record.ulTtl = 127;
    record.ulNoOfAddrs = SDP_NOT_GIVEN;
    return record;
}

void addConnections(Shelf &shelf) {
    shelf.add("c= IPv4", SDP_LINE_CONNECTION, connectionIn(SDP_ADDRTYPE_IP4, SDP_TPTADDR_IPV4), {});
    shelf.add("c= IPv6", SDP_LINE_CONNECTION, connectionIn(SDP_ADDRTYPE_IP6, SDP_TPTADDR_IPV6), {});
    SDPConnection other = {};
    other.stNetType = {SDP_NETTYPE_OTHER, shelf.text("ATM")};
    other.stAddrType = {SDP_ADDRTYPE_OTHER, shelf.text("NSAP")};
    shelf.add("c= other types", SDP_LINE_CONNECTION, other, times(4, kGeneric));
    other.stNetType.pstrOtherNetType = nullptr;
    shelf.add("c= other type without its text", SDP_LINE_CONNECTION, other, times(2, kGeneric));
}

void addOrigins(Shelf &shelf) {
    SDPOrigin record = {textOf("jdoe"),
                        textOf("2890844526"),
                        textOf("2890842807"),
                        {SDP_NETTYPE_IN, nullptr},
                        {SDP_ADDRTYPE_IP4, nullptr},
                        textOf("10.47.16.5")};
    shelf.add("o= IN IP4", SDP_LINE_ORIGIN, record, times(4, kGeneric));
    record.strUserName = {};
    record.stNetType = {SDP_NETTYPE_OTHER, shelf.text("ATM")};
    record.stAddrType = {SDP_ADDRTYPE_OTHER, shelf.text("NSAP")};
    shelf.add("o= other types, no user", SDP_LINE_ORIGIN, record, times(7, kGeneric));
}

SDPMediaField mediaLine(uint32_t mediaType, uint32_t proto, uint32_t fmtType) {
    SDPMediaField record = {};
    record.stMedia.enMediaType = mediaType;
    record.ulPort = 49170;
    record.ulNoOfPorts = 2;
    record.stProto.enProto = proto;
    record.stMediaFmt.enFmtType = fmtType;
    return record;
}

SDPMediaField withPayLoads(Shelf &shelf, uint32_t count) {
    std::vector<uint32_t> numbers;
    for (uint32_t i = 0; i < count; ++i) {
        numbers.push_back(i * 3);
    }
    SDPMediaField record = mediaLine(SDP_MEDIA_AUDIO, SDP_PROTO_RTP_AVP, SDP_FMT_RTP_PAYLOADS);
    record.stMediaFmt.unMediaFmt.stRtpPayLoads = {count, shelf.array<uint32_t>(numbers)};
    return record;
}

void addMedia(Shelf &shelf) {
    SDPMediaField three = withPayLoads(shelf, 3);
    shelf.add("m= three payloads", SDP_LINE_MEDIA, three, {kFormat});
    shelf.add("m= a hundred payloads", SDP_LINE_MEDIA, withPayLoads(shelf, 100), {kFormat});
    three.stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads = nullptr;
    shelf.add("m= a count without numbers", SDP_LINE_MEDIA, three, {});
    shelf.add("m= no payloads", SDP_LINE_MEDIA,
              mediaLine(SDP_MEDIA_VIDEO, SDP_PROTO_RTP_SAVP, SDP_FMT_RTP_PAYLOADS), {});
    shelf.add("m= t38", SDP_LINE_MEDIA, mediaLine(SDP_MEDIA_IMAGE, SDP_PROTO_UDPTL, SDP_FMT_T38),
              {});

    SDPMediaField other = mediaLine(SDP_MEDIA_OTHER, SDP_PROTO_OTHER, SDP_FMT_OTHER);
    shelf.add("m= other without texts", SDP_LINE_MEDIA, other, {});
    other.stMedia.pstrOtherMedia = shelf.text("message");
    other.stProto.pstrOtherProto = shelf.text("TCP/MSRP");
    other.stMediaFmt.unMediaFmt.strOtherFmts = textOf("*");
    shelf.add("m= other", SDP_LINE_MEDIA, other, {kMedia, kMedia, kProto, kProto, kFormat});
    other.stMedia.enMediaType = SDP_MEDIA_AUDIO;
    other.stMedia.pstrOtherMedia = nullptr;
    shelf.add("m= other protocol", SDP_LINE_MEDIA, other, {kProto, kProto, kFormat});
}

SDPAttr attributeOf(uint32_t type) {
    SDPAttr record = {};
    record.ulAttrType = type;
    return record;
}

std::string attributeName(uint32_t type) {
    return "a= type " + std::to_string(type);
}

void addPlainAttributes(Shelf &shelf) {
    for (uint32_t type : {0u, 2u, 3u, 4u, 5u, 30u, 31u, 32u, 33u, 41u}) {
        shelf.add(attributeName(type), SDP_LINE_ATTRIBUTE, attributeOf(type), {});
    }
    for (uint32_t type : {6u, 7u, 8u, 18u, 19u, 20u, 21u, 22u, 23u, 24u, 25u, 26u, 27u, 40u}) {
        SDPAttr record = attributeOf(type);
        record.unAttrValue.ulValue = 1000 + type;
        shelf.add(attributeName(type), SDP_LINE_ATTRIBUTE, record, {});
    }
    for (uint32_t type = SDP_ATTR_FMTP; type <= SDP_ATTR_LANG; ++type) {
        SDPAttr record = attributeOf(type);
        record.unAttrValue.strValue = textOf("101 0-15,66");
        shelf.add(attributeName(type), SDP_LINE_ATTRIBUTE, record, {kService});
    }
    shelf.add("a= empty text", SDP_LINE_ATTRIBUTE, attributeOf(SDP_ATTR_TOOL), {});

    SDPAttr ipBcp = attributeOf(SDP_ATTR_IPBCP);
    ipBcp.unAttrValue.stIpBcp = {1, 0, 0, SDP_IPBCP_CONFUSED};
    shelf.add(attributeName(SDP_ATTR_IPBCP), SDP_LINE_ATTRIBUTE, ipBcp, {});
}

void addAttributesWithText(Shelf &shelf) {
    SDPAttr rtpMap = attributeOf(SDP_ATTR_RTPMAP);
    rtpMap.unAttrValue.stRtpMap = {101, 0, textOf("telephone-event"), 8000, 1};
    shelf.add(attributeName(SDP_ATTR_RTPMAP), SDP_LINE_ATTRIBUTE, rtpMap, {kService});
    SDPAttr silence = attributeOf(SDP_ATTR_SILENCE_SUPP);
    silence.unAttrValue.stSilenceSupp = {1, textOf(" - - - -")};
    shelf.add(attributeName(SDP_ATTR_SILENCE_SUPP), SDP_LINE_ATTRIBUTE, silence, {kService});
    SDPAttr ecan = attributeOf(SDP_ATTR_ECAN);
    ecan.unAttrValue.stEcan = {1, SDP_ECAN_B, textOf(" G168")};
    shelf.add(attributeName(SDP_ATTR_ECAN), SDP_LINE_ATTRIBUTE, ecan, {kService});
    for (uint32_t type : {SDP_ATTR_DES, SDP_ATTR_CURR, SDP_ATTR_CONF}) {
        SDPAttr status = attributeOf(type);
        status.unAttrValue.stRsrcMgmtStatus = {
            {SDP_PRECONDITION_QOS, nullptr}, SDP_STATUS_REMOTE, SDP_STRENGTH_FAILURE, SDP_DIR_RECV};
        shelf.add(attributeName(type), SDP_LINE_ATTRIBUTE, status, {});
        status.unAttrValue.stRsrcMgmtStatus.stPrecondition = {SDP_PRECONDITION_OTHER,
                                                              shelf.text("sec")};
        shelf.add(attributeName(type) + " other", SDP_LINE_ATTRIBUTE, status, times(2, kService));
    }

    SDPAttr named = attributeOf(SDP_ATTR_UNREC_VALUE);
    named.unAttrValue.strValue = textOf("bar");
    shelf.add("a= type 34 without its name", SDP_LINE_ATTRIBUTE, named, {kService});
    named.pstAttrName = shelf.text("foo");
    shelf.add(attributeName(SDP_ATTR_UNREC_VALUE), SDP_LINE_ATTRIBUTE, named, times(3, kService));
    SDPAttr nameOnly = attributeOf(SDP_ATTR_UNREC_NOVALUE);
    nameOnly.pstAttrName = shelf.text("foo");
    shelf.add(attributeName(SDP_ATTR_UNREC_NOVALUE), SDP_LINE_ATTRIBUTE, nameOnly,
              times(2, kService));
}

void addTimes(Shelf &shelf) {
    const SDPTimeUnit week[] = {
        {SDP_TIME_DAYS, 7}, {SDP_TIME_HOURS, 1}, {SDP_TIME_SECONDS, 0}, {SDP_TIME_HOURS, 25}};
    const SDPRepeatField fields[] = {{4, shelf.pointers<SDPTimeUnit>(week)},
                                     {2, shelf.pointers<SDPTimeUnit>({week, 2})}};
    shelf.add("r=", SDP_LINE_REPEAT, fields[0], times(1 + 4, kGeneric));
    shelf.add("r= empty", SDP_LINE_REPEAT, SDPRepeatField{0, nullptr}, {});
    const SDPRepeatFieldSet set = {2, shelf.pointers<SDPRepeatField>(fields)};
    const SDPTimeField repeated = {2873397496u, 2873404696u, shelf.keep(set)};
    shelf.add("t= with r=", SDP_LINE_TIME, repeated, times(2 + (2 + 4) + (2 + 2), kGeneric));
    shelf.add("t=", SDP_LINE_TIME, SDPTimeField{1, 2, nullptr}, {});
}

std::vector<Sample> makeSamples() {
    Shelf shelf;
    shelf.add("v=", SDP_LINE_VERSION, uint32_t{7}, {});
    addConnections(shelf);
    addOrigins(shelf);
    addMedia(shelf);
    addPlainAttributes(shelf);
    addAttributesWithText(shelf);
    addTimes(shelf);
    for (uint32_t lineType = SDP_LINE_INFO; lineType <= SDP_LINE_ZONE; ++lineType) {
        shelf.add("text of line type " + std::to_string(lineType), lineType, textOf("some words"),
                  {kGeneric});
    }
    shelf.add("s= empty", SDP_LINE_NAME, SipString{}, {});
    shelf.add("k=", SDP_LINE_KEY, SDPKey{textOf("prompt")}, {kGeneric});
    return shelf.take();
}

} // namespace

const std::vector<Sample> &samples() {
    static const std::vector<Sample> all = makeSamples();
    return all;
}

const Sample &sampleNamed(std::string_view name) {
    for (const Sample &sample : samples()) {
        if (sample.name == name) {
            return sample;
        }
    }
    ADD_FAILURE() << "no sample " << name;
    return samples().front();
}

SipString textOf(const char *literal) {
    return {static_cast<uint32_t>(std::strlen(literal)), const_cast<char *>(literal)};
}

SDPMediaFmt otherFormat(const char *literal) {
    SDPMediaFmt format = {};
    format.enFmtType = SDP_FMT_OTHER;
    format.unMediaFmt.strOtherFmts = textOf(literal);
    return format;
}

} // namespace dsmtest

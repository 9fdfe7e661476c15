// Records of any codes, counts and lengths are encoded or refused: into a growing buffer, into
// exactly enough bytes and into fewer, as a body and line by line.
#include <cstring>
#include <deque>

#include "fuzz.hpp"
#include "support/bodylines.hpp"

namespace {

using fuzz::require;

constexpr uint32_t kMostTexts = 4;
constexpr uint32_t kMostPayloads = SDP_MAX_PAYLOADS + 2;

// Makes records from the input. Their pointers refer to as many bytes or slots as the record says,
// or are null where the encoder allows it.
class Maker {
public:
    explicit Maker(fuzz::Input &input) : input_(input) {}

    void body(SdpLine &line) {
        line.ulProtoVersion = code();
        origin(line.stOrigin);
        line.strSessionName = text();
        line.pstrSessionInfo = someText();
        line.pstrUri = someText();
        line.pstEmailList = texts();
        line.pstPhoneList = texts();
        line.pstConnection = connection();
        line.pstBandwidthList = texts();
        line.stTimeSet.ppstTimeFields =
            list<SDPTimeField>(line.stTimeSet.ulNoOfTimeFields, 3, &Maker::time);
        line.pstrTimeZone = someText();
        line.pstKey = key();
        line.pstAttrList = attributes();
        line.stMediaSet.ppstMediaDescs =
            list<SDPMediaDesc>(line.stMediaSet.ulNoOfMediaDescs, 4, &Maker::media);
    }

private:
    // Mostly a defined code.
    uint32_t code() {
        const uint8_t choice = input_.byte();
        return choice < 240 ? choice % 12 : choice < 248 ? choice : input_.number();
    }

    template <class Type>
    Type *make(uint32_t count = 1) {
        const std::string zeroes(count * sizeof(Type), '\0');
        return reinterpret_cast<Type *>(memory_.emplace_back(zeroes).data());
    }

    template <class Record>
    Record **list(uint32_t &count, uint32_t most, void (Maker::*fill)(Record &)) {
        count = input_.below(most + 1);
        if (count == 0) {
            return nullptr;
        }
        Record **const slots = make<Record *>(count);
        for (uint32_t i = 0; i < count; ++i) {
            slots[i] = make<Record>();
            (this->*fill)(*slots[i]);
        }
        return slots;
    }

    SipString text() {
        const uint8_t choice = input_.byte();
        if (choice >= 240) {
            return {input_.number(), nullptr};
        }
        if (choice >= 236) { // longer than the first size of a growing buffer
            return memory_.emplace_back(std::string(input_.below(5000), 'x')).text();
        }
        return memory_.emplace_back(input_.front(choice % 24)).text();
    }

    void text(SipString &value) { value = text(); }

    SipString *someText() {
        if (input_.oneIn(4)) {
            return nullptr;
        }
        auto *const value = make<SipString>();
        *value = text();
        return value;
    }

    SDPStringList *texts() {
        if (input_.oneIn(2)) {
            return nullptr;
        }
        auto *const value = make<SDPStringList>();
        value->ppstStrings = list<SipString>(value->ulNoOfStrings, kMostTexts, &Maker::text);
        return value;
    }

    SDPKey *key() {
        if (input_.oneIn(2)) {
            return nullptr;
        }
        auto *const value = make<SDPKey>();
        value->strKey = text();
        return value;
    }

    SDPNetType netType() { return {code() % 4, someText()}; }
    SDPAddrType addrType() { return {code() % 5, someText()}; }

    void origin(SDPOrigin &value) {
        value = {text(), text(), text(), netType(), addrType(), text()};
    }

    SDPConnection *connection() {
        if (input_.oneIn(2)) {
            return nullptr;
        }
        auto *const value = make<SDPConnection>();
        value->stNetType = netType();
        value->stAddrType = addrType();
        value->stTptAddr.enTptAddrType = code() % 4;
        for (uint8_t &octet : value->stTptAddr.unTptAddr.aucIpv6) {
            octet = input_.byte();
        }
        value->ulTtl = input_.oneIn(2) ? SDP_NOT_GIVEN : code();
        value->ulNoOfAddrs = input_.oneIn(2) ? SDP_NOT_GIVEN : code();
        return value;
    }

    void unit(SDPTimeUnit &value) { value = {code() % 8, code()}; }

    // Without an array no unit is written, whatever the count; with one its first slot counts
    // always.
    void repeat(SDPRepeatField &value) {
        value.ppstTimeUnits = list<SDPTimeUnit>(value.ulNoOfTimeUnits, 4, &Maker::unit);
        if (value.ppstTimeUnits == nullptr) {
            value.ulNoOfTimeUnits = code();
        } else if (input_.oneIn(4)) {
            value.ulNoOfTimeUnits = 0;
        }
    }

    void time(SDPTimeField &value) {
        value.ulStartTime = code();
        value.ulStopTime = code();
        if (input_.oneIn(2)) {
            value.pstRepeatFieldSet = make<SDPRepeatFieldSet>();
            value.pstRepeatFieldSet->ppstRepeatFields = list<SDPRepeatField>(
                value.pstRepeatFieldSet->ulNoOfRepeatFields, 3, &Maker::repeat);
        }
    }

    SDPRsrcMgmtStatus precondition() {
        return {{code() % 4, someText()}, code() % 6, code() % 8, code() % 6};
    }

    void attribute(SDPAttr &attr) {
        attr.ulAttrType = input_.oneIn(16) ? code() : input_.below(44);
        attr.pstAttrName = someText();
        auto &value = attr.unAttrValue;
        switch (attr.ulAttrType) {
        case SDP_ATTR_RTPMAP:
            value.stRtpMap = {code(), input_.below(48), text(), code(), code() % 4};
            break;
        case SDP_ATTR_SILENCE_SUPP: value.stSilenceSupp = {code() % 3, text()}; break;
        case SDP_ATTR_ECAN: value.stEcan = {code() % 3, code() % 5, text()}; break;
        case SDP_ATTR_DES:
        case SDP_ATTR_CURR:
        case SDP_ATTR_CONF: value.stRsrcMgmtStatus = precondition(); break;
        case SDP_ATTR_IPBCP: value.stIpBcp = {input_.byte(), 0, 0, code() % 6}; break;
        case SDP_ATTR_UNREC_VALUE: value.strValue = text(); break;
        default:
            if (attr.ulAttrType >= SDP_ATTR_FMTP && attr.ulAttrType <= SDP_ATTR_LANG) {
                value.strValue = text();
            } else {
                value.ulValue = code();
            }
        }
    }

    SDPAttrList *attributes() {
        if (input_.oneIn(2)) {
            return nullptr;
        }
        auto *const value = make<SDPAttrList>();
        value->ppstAttrs = list<SDPAttr>(value->ulNoOfAttrs, 6, &Maker::attribute);
        return value;
    }

    void payloads(SDPRtpPayLoads &value) {
        value.ulNoOfPayLoads = input_.oneIn(8) ? kMostPayloads - input_.below(4) : input_.below(8);
        if (input_.oneIn(4)) { // a count without an array
            value.ulNoOfPayLoads = code();
            return;
        }
        value.pulPayLoads = make<uint32_t>(value.ulNoOfPayLoads);
        for (uint32_t i = 0; i < value.ulNoOfPayLoads; ++i) {
            value.pulPayLoads[i] = code();
        }
    }

    void mediaField(SDPMediaField &value) {
        value.stMedia = {code() % 10, someText()};
        value.ulPort = code();
        value.ulNoOfPorts = code();
        value.stProto = {code() % 10, someText()};
        value.stMediaFmt.enFmtType = code() % 7;
        if (value.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            value.stMediaFmt.unMediaFmt.strOtherFmts = text();
        } else {
            payloads(value.stMediaFmt.unMediaFmt.stRtpPayLoads);
        }
    }

    void media(SDPMediaDesc &value) {
        mediaField(value.stMediaField);
        value.pstrMediaInfo = someText();
        value.pstConnection = connection();
        value.pstBandwidthList = texts();
        value.pstKey = key();
        value.pstAttrList = attributes();
    }

    fuzz::Input &input_;
    std::deque<fuzz::Exact> memory_;
};

// Into a buffer that ends at the end of its memory.
void requireSerialized(SdpLine &line, const std::string *text, uint32_t room) {
    fuzz::Exact bytes(std::string(room, '#'));
    uint32_t written = ~0u;
    const SDPResult result = SdpLibSerializeSdp(&line, bytes.data(), room, &written);
    const bool fits = text != nullptr && text->size() <= room;
    require((result == 0) == fits, "what can be written is, where it fits");
    require(written == (fits ? text->size() : 0), "the length is that of the whole text");
    require(!fits || bytes.view().substr(0, written) == *text, "every buffer gets the same text");
}

// Each line alone, with its letter and without.
void requireLines(const SdpLine &line) {
    for (const support::BodyLine &each : support::linesOf(line)) {
        for (uint32_t withPrefix : {0u, 1u, 2u}) {
            SipRefString *text = nullptr;
            void *const record = const_cast<void *>(each.record);
            const SDPResult result = SdpLibEncodeSdpLine(&withPrefix, each.lineType, record, &text);
            require((result == 0) == (text != nullptr), "a line gives a text or a reason");
            if (text != nullptr) {
                const std::string bytes = fuzz::take(text);
                const SipString end = SdpGetCrlfString(0);
                require(bytes.ends_with(std::string_view(end.pcData, end.ulLen)), "a line ends");
                require(withPrefix != 1 || bytes[1] == '=', "a line begins with its letter");
            }
        }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    fuzz::Configuration::of(input.byte()).apply();
    const uint32_t room = 1 + input.below(8192);
    Maker maker(input);
    SdpLine line = {};
    maker.body(line);
    const fuzz::NothingLeaks nothingLeaks;
    SDPResult refused = 0;
    requireLines(line);
    const auto text = fuzz::encode(line, &refused);
    require(text || !fuzz::checkOf(refused).empty(), "a refusal has a check");
    requireSerialized(line, text ? &*text : nullptr, room);
    if (text) {
        const auto whole = static_cast<uint32_t>(text->size());
        requireSerialized(line, &*text, whole);
        requireSerialized(line, &*text, whole - 1);
        require(fuzz::encode(line) == text, "it is written the same again");
    }
    return 0;
}

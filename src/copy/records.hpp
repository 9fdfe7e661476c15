// Deep copies of records, made as a decode makes them: an allocation for each record, text and
// array, in the order of the fields. A length or a count over a null pointer is copied as it is,
// and so is a null slot of an array; a text beside a code that does not use it becomes null.
#pragma once

#include <cstdint>

#include "sdpline/sdprecords.h"
#include "services/allocation.hpp"
#include "services/copymemory.hpp"
#include "tables/attributes.hpp"

namespace sdpline {

// After the first failure it makes nothing more: what refers to it is null, and the copies may be
// cleared.
class RecordCopier {
public:
    explicit RecordCopier(CopyMemory memory) : memory_(memory) {}

    bool isInPlace() const { return memory_.isInPlace(); }
    bool failed() const { return memory_.isExhausted(); }
    bool tooManyPayLoads() const { return tooManyPayLoads_; }

    template <class Record>
    Record *clone(const Record *from) {
        if (from == nullptr) {
            return nullptr;
        }
        auto *const made = static_cast<Record *>(take(sizeof(Record)));
        if (made != nullptr) {
            copy(*from, *made);
        }
        return made;
    }

    // Holds anything.
    SDPLINE_INLINE void *take(uint32_t size) {
        void *const memory = memory_.take(size);
        if (memory == nullptr) [[unlikely]] {
            memory_ = CopyMemory::exhausted();
        }
        return memory;
    }

    // ---- Records: all of the target is written

    void copy(const SipString &from, SipString &to) { to = copyOf(from); }
    void copy(const SDPKey &from, SDPKey &to) { to = {copyOf(from.strKey)}; }
    void copy(const SDPOrigin &from, SDPOrigin &to) {
        to = {copyOf(from.strUserName), copyOf(from.strSessionId), copyOf(from.strSessionVersion),
              copyOf(from.stNetType),   copyOf(from.stAddrType),   copyOf(from.strAddress)};
    }
    void copy(const SDPConnection &from, SDPConnection &to) {
        to = {copyOf(from.stNetType), copyOf(from.stAddrType), from.stTptAddr, from.ulTtl,
              from.ulNoOfAddrs};
    }
    void copy(const SDPTimeUnit &from, SDPTimeUnit &to) { to = from; }
    void copy(const SDPTimeField &from, SDPTimeField &to) {
        to = {from.ulStartTime, from.ulStopTime, clone(from.pstRepeatFieldSet)};
    }
    void copy(const SDPAttr &from, SDPAttr &to) {
        to = {from.ulAttrType, {}, nullptr};
        copyValue(from, to);
    }
    void copy(const SDPMediaField &from, SDPMediaField &to) {
        const SDPMedia &type = from.stMedia;
        const SDPMediaProto &protocol = from.stProto;
        to = {
            {type.enMediaType, other(type.enMediaType == SDP_MEDIA_OTHER, type.pstrOtherMedia)},
            from.ulPort,
            from.ulNoOfPorts,
            {protocol.enProto, other(protocol.enProto == SDP_PROTO_OTHER, protocol.pstrOtherProto)},
            {from.stMediaFmt.enFmtType, {}}};
        auto &format = to.stMediaFmt.unMediaFmt;
        if (from.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            format.strOtherFmts = copyOf(from.stMediaFmt.unMediaFmt.strOtherFmts);
        } else {
            format.stRtpPayLoads = copyOf(from.stMediaFmt.unMediaFmt.stRtpPayLoads);
        }
    }
    void copy(const SDPMediaDesc &from, SDPMediaDesc &to) {
        copy(from.stMediaField, to.stMediaField);
        to.pstrMediaInfo = clone(from.pstrMediaInfo);
        to.pstConnection = clone(from.pstConnection);
        to.pstBandwidthList = clone(from.pstBandwidthList);
        to.pstKey = clone(from.pstKey);
        to.pstAttrList = clone(from.pstAttrList);
    }

    // But for the block.
    void copy(const SdpLine &from, SdpLine &to) {
        to.ulProtoVersion = from.ulProtoVersion;
        copy(from.stOrigin, to.stOrigin);
        copy(from.strSessionName, to.strSessionName);
        to.pstrSessionInfo = clone(from.pstrSessionInfo);
        to.pstrUri = clone(from.pstrUri);
        to.pstEmailList = clone(from.pstEmailList);
        to.pstPhoneList = clone(from.pstPhoneList);
        to.pstConnection = clone(from.pstConnection);
        to.pstBandwidthList = clone(from.pstBandwidthList);
        copy(from.stTimeSet, to.stTimeSet);
        to.pstrTimeZone = clone(from.pstrTimeZone);
        to.pstKey = clone(from.pstKey);
        to.pstAttrList = clone(from.pstAttrList);
        copy(from.stMediaSet, to.stMediaSet);
    }

    // ---- Lists

    void copy(const SDPStringList &from, SDPStringList &to) {
        to = listOf<SDPStringList>(from.ulNoOfStrings, from.ppstStrings);
    }
    void copy(const SDPRepeatField &from, SDPRepeatField &to) {
        to = listOf<SDPRepeatField>(from.ulNoOfTimeUnits, from.ppstTimeUnits);
    }
    void copy(const SDPRepeatFieldSet &from, SDPRepeatFieldSet &to) {
        to = listOf<SDPRepeatFieldSet>(from.ulNoOfRepeatFields, from.ppstRepeatFields);
    }
    void copy(const SDPTimeSet &from, SDPTimeSet &to) {
        to = listOf<SDPTimeSet>(from.ulNoOfTimeFields, from.ppstTimeFields);
    }
    void copy(const SDPAttrList &from, SDPAttrList &to) {
        to = listOf<SDPAttrList>(from.ulNoOfAttrs, from.ppstAttrs);
    }
    void copy(const SDPMediaSet &from, SDPMediaSet &to) {
        to = listOf<SDPMediaSet>(from.ulNoOfMediaDescs, from.ppstMediaDescs);
    }

    // The value of an attribute, and its name where the library keeps that; nothing else is
    // written.
    void copyValue(const SDPAttr &from, SDPAttr &to) {
        const auto &value = from.unAttrValue;
        auto &copied = to.unAttrValue;
        switch (shapeOf(from.ulAttrType)) {
        case Shape::None:
        case Shape::Flag:
        case Shape::Direction: break;
        case Shape::Number:
        case Shape::Decimal:
        case Shape::Switch:
        case Shape::Keyword: copied.ulValue = value.ulValue; break;
        case Shape::IpBcp: copied.stIpBcp = value.stIpBcp; break;
        case Shape::NamedText:
            to.pstAttrName = clone(static_cast<const SipString *>(from.pstAttrName));
            [[fallthrough]];
        case Shape::Text: copied.strValue = copyOf(value.strValue); break;
        case Shape::NameOnly:
            to.pstAttrName = clone(static_cast<const SipString *>(from.pstAttrName));
            break;
        case Shape::RtpMap:
            copied.stRtpMap = value.stRtpMap;
            copied.stRtpMap.strEncodingName = copyOf(value.stRtpMap.strEncodingName);
            break;
        case Shape::SilenceSupp:
            copied.stSilenceSupp = {value.stSilenceSupp.bOn, copyOf(value.stSilenceSupp.strParams)};
            break;
        case Shape::Ecan:
            copied.stEcan = {value.stEcan.bOn, value.stEcan.enEcanDir,
                             copyOf(value.stEcan.strParams)};
            break;
        case Shape::Precondition:
            copyStatus(value.stRsrcMgmtStatus, copied.stRsrcMgmtStatus);
            break;
        }
    }

private:
    SipString copyOf(const SipString &from) {
        if (from.ulLen == 0 || from.pcData == nullptr) {
            return {from.ulLen, nullptr};
        }
        char *const bytes = copyText(memory_, from.pcData, from.ulLen);
        if (bytes == nullptr) [[unlikely]] {
            memory_ = CopyMemory::exhausted();
            return {0, nullptr};
        }
        return {from.ulLen, bytes};
    }

    [[gnu::noinline]] static char *copyText(CopyMemory memory, const char *from, uint32_t size) {
        auto *const bytes = static_cast<char *>(memory.take(size));
        if (bytes != nullptr) {
            copyBytes(bytes, from, size);
        }
        return bytes;
    }

    SipString *other(bool isOther, const SipString *from) {
        return isOther ? clone(from) : nullptr;
    }
    SDPNetType copyOf(const SDPNetType &from) {
        return {from.enNetType, other(from.enNetType == SDP_NETTYPE_OTHER, from.pstrOtherNetType)};
    }
    SDPAddrType copyOf(const SDPAddrType &from) {
        return {from.enAddrType,
                other(from.enAddrType == SDP_ADDRTYPE_OTHER, from.pstrOtherAddrType)};
    }
    void copyStatus(const SDPRsrcMgmtStatus &from, SDPRsrcMgmtStatus &to) {
        const SDPPreconditionS &type = from.stPrecondition;
        to = from;
        to.stPrecondition.pstrOtherPrecondition =
            other(type.enPreconditionType == SDP_PRECONDITION_OTHER, type.pstrOtherPrecondition);
    }

    SDPRtpPayLoads copyOf(const SDPRtpPayLoads &from) {
        if (from.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
            tooManyPayLoads_ = true;
            memory_ = CopyMemory::exhausted();
        }
        if (from.ulNoOfPayLoads == 0 || from.pulPayLoads == nullptr) {
            return {from.ulNoOfPayLoads, nullptr};
        }
        auto *const numbers = array<uint32_t>(from.ulNoOfPayLoads);
        if (numbers == nullptr) {
            return {0, nullptr};
        }
        copyBytes(numbers, from.pulPayLoads, from.ulNoOfPayLoads * sizeof(uint32_t));
        return {from.ulNoOfPayLoads, numbers};
    }

    template <class List, class Item>
    List listOf(uint32_t count, Item *const *from) {
        if (count == 0 || from == nullptr) {
            return {count, nullptr};
        }
        Item **const items = array<Item *>(count);
        for (uint32_t i = 0; items != nullptr && i < count; ++i) {
            items[i] = clone(static_cast<const Item *>(from[i]));
        }
        return {items != nullptr ? count : 0, items};
    }

    template <class Item>
    Item *array(uint32_t count) {
        if (count > UINT32_MAX / sizeof(Item)) {
            memory_ = CopyMemory::exhausted();
            return nullptr;
        }
        return static_cast<Item *>(take(count * static_cast<uint32_t>(sizeof(Item))));
    }

    CopyMemory memory_;
    bool tooManyPayLoads_ = false;
};

} // namespace sdpline

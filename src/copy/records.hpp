// Deep copies of records. As in a decode there is one allocation for each record, text and array,
// in the order of the fields. A length or a count with a null pointer is copied as it is, and so is
// a null slot of an array; a text pointer that its code does not use becomes null.
#pragma once

#include <cstdint>

#include "copy/layout.hpp"
#include "sdpline/sdprecords.h"
#include "services/copymemory.hpp"

namespace sdpline {

// Copies records with memory of one kind (services/copymemory.hpp). After the first failure nothing
// more is allocated: the remaining pointers are null, so that the copy can be cleared.
template <class Memory>
class RecordCopier {
public:
    explicit RecordCopier(Memory memory) : memory_(memory) {}

    Memory &memory() { return memory_; }
    bool failed() const { return memory_.failed(); }
    bool tooManyPayLoads() const { return tooManyPayLoads_; }

    template <class Record>
    SDPLINE_INLINE Record *clone(const Record *from) {
        if (from == nullptr) {
            return nullptr;
        }
        auto *const made = static_cast<Record *>(memory_.take(sizeof(Record)));
        if (made != nullptr) {
            copy(*from, *made);
        }
        return made;
    }

    // ---- Records. All bytes of the target are written.

    SDPLINE_INLINE void copy(const SipString &from, SipString &to) {
        to.ulLen = from.ulLen;
        to.pcData = nullptr;
        if (from.ulLen != 0 && from.pcData != nullptr) {
            to.pcData = static_cast<char *>(memory_.copied(from.pcData, from.ulLen));
            if (to.pcData == nullptr) [[unlikely]] {
                to.ulLen = 0;
            }
        }
    }
    void copy(const SDPKey &from, SDPKey &to) { copy(from.strKey, to.strKey); }
    void copy(const SDPOrigin &from, SDPOrigin &to) {
        copy(from.strUserName, to.strUserName);
        copy(from.strSessionId, to.strSessionId);
        copy(from.strSessionVersion, to.strSessionVersion);
        copy(from.stNetType, to.stNetType);
        copy(from.stAddrType, to.stAddrType);
        copy(from.strAddress, to.strAddress);
    }
    void copy(const SDPConnection &from, SDPConnection &to) {
        copy(from.stNetType, to.stNetType);
        copy(from.stAddrType, to.stAddrType);
        to.stTptAddr = from.stTptAddr;
        to.ulTtl = from.ulTtl;
        to.ulNoOfAddrs = from.ulNoOfAddrs;
    }
    void copy(const SDPTimeUnit &from, SDPTimeUnit &to) { to = from; }
    void copy(const SDPTimeField &from, SDPTimeField &to) {
        to = {from.ulStartTime, from.ulStopTime, clone(from.pstRepeatFieldSet)};
    }
    void copy(const SDPAttr &from, SDPAttr &to) {
        const AttributeLayout &layout = layoutOf(from);
        copyKept(layout, from, to);
        if (layout.pointer == Pointer::Name) {
            to.pstAttrName = clone(static_cast<const SipString *>(from.pstAttrName));
        } else if (layout.pointer == Pointer::Precondition) {
            const SDPPreconditionS &type = from.unAttrValue.stRsrcMgmtStatus.stPrecondition;
            to.unAttrValue.stRsrcMgmtStatus.stPrecondition.pstrOtherPrecondition = other(
                type.enPreconditionType == SDP_PRECONDITION_OTHER, type.pstrOtherPrecondition);
        }
        if (layout.text != 0) {
            copy(textAt(from, layout.text), textAt(to, layout.text));
        }
    }
    void copy(const SDPMediaField &from, SDPMediaField &to) {
        const SDPMedia &type = from.stMedia;
        const SDPMediaProto &protocol = from.stProto;
        to.stMedia = {type.enMediaType,
                      other(type.enMediaType == SDP_MEDIA_OTHER, type.pstrOtherMedia)};
        to.ulPort = from.ulPort;
        to.ulNoOfPorts = from.ulNoOfPorts;
        to.stProto = {protocol.enProto,
                      other(protocol.enProto == SDP_PROTO_OTHER, protocol.pstrOtherProto)};
        to.stMediaFmt = {from.stMediaFmt.enFmtType, {}};
        auto &format = to.stMediaFmt.unMediaFmt;
        if (from.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            copy(from.stMediaFmt.unMediaFmt.strOtherFmts, format.strOtherFmts);
        } else {
            copy(from.stMediaFmt.unMediaFmt.stRtpPayLoads, format.stRtpPayLoads);
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

    // All but the memory control.
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

private:
    SipString *other(bool isOther, const SipString *from) {
        return isOther ? clone(from) : nullptr;
    }
    void copy(const SDPNetType &from, SDPNetType &to) {
        to = {from.enNetType, other(from.enNetType == SDP_NETTYPE_OTHER, from.pstrOtherNetType)};
    }
    void copy(const SDPAddrType &from, SDPAddrType &to) {
        to = {from.enAddrType,
              other(from.enAddrType == SDP_ADDRTYPE_OTHER, from.pstrOtherAddrType)};
    }

    void copy(const SDPRtpPayLoads &from, SDPRtpPayLoads &to) {
        if (from.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
            tooManyPayLoads_ = true;
            memory_.fail();
        }
        if (from.ulNoOfPayLoads == 0 || from.pulPayLoads == nullptr) {
            to = {from.ulNoOfPayLoads, nullptr};
            return;
        }
        const uint32_t size = from.ulNoOfPayLoads * static_cast<uint32_t>(sizeof(uint32_t));
        auto *const numbers = static_cast<uint32_t *>(memory_.copied(from.pulPayLoads, size));
        to = {numbers != nullptr ? from.ulNoOfPayLoads : 0, numbers};
    }

    template <class List, class Item>
    List listOf(uint32_t count, Item *const *from) {
        if (count == 0 || from == nullptr) {
            return {count, nullptr};
        }
        if (count > UINT32_MAX / sizeof(Item *)) {
            memory_.fail();
            return {0, nullptr};
        }
        const uint32_t size = count * static_cast<uint32_t>(sizeof(Item *));
        auto **const items = static_cast<Item **>(memory_.take(size));
        for (uint32_t i = 0; items != nullptr && i < count; ++i) {
            items[i] = clone(static_cast<const Item *>(from[i]));
        }
        return {items != nullptr ? count : 0, items};
    }

    Memory memory_;
    bool tooManyPayLoads_ = false;
};

} // namespace sdpline

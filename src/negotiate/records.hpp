// Reading the records of a body: texts, lists, and the comparison of words.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "sdpline/sdpline.hpp"
#include "sdpline/sdpnegotiate.h"
#include "text/bytes.hpp"

namespace sdpline::negotiate {

inline std::string_view viewOf(const SipString &text) {
    return text.pcData != nullptr ? std::string_view(text.pcData, text.ulLen) : std::string_view();
}
inline std::string_view viewOf(const SipString *text) {
    return text != nullptr ? viewOf(*text) : std::string_view();
}

// A SipString for records and C operations that only read it.
inline SipString lent(std::string_view text) {
    return {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
}

using MediaSpan = std::span<SDPMediaDesc *const>;
using AttributeSpan = std::span<SDPAttr *const>;

inline MediaSpan mediaOf(const SdpLine &body) {
    SDPMediaDesc **const items = body.stMediaSet.ppstMediaDescs;
    return {items, items != nullptr ? body.stMediaSet.ulNoOfMediaDescs : 0};
}
inline AttributeSpan attributesOf(const SDPAttrList *list) {
    if (list == nullptr || list->ppstAttrs == nullptr) {
        return {};
    }
    return {list->ppstAttrs, list->ulNoOfAttrs};
}

// The text without its first `bytes` bytes; empty if it has no more. Unlike substr() these two
// cannot throw, and so do not need the C++ run-time library.
constexpr std::string_view after(std::string_view text, size_t bytes) {
    const size_t begin = bytes < text.size() ? bytes : text.size();
    return {text.data() + begin, text.size() - begin};
}
// The first `bytes` bytes of a text, or the whole text if it has no more.
constexpr std::string_view firstBytes(std::string_view text, size_t bytes) {
    return {text.data(), bytes < text.size() ? bytes : text.size()};
}

constexpr char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

// Whether two texts of the same size are equal but for the case of ASCII letters.
bool sameLetters(std::string_view one, std::string_view two);
// The same for texts of any size. The comparison of the sizes, by which most words differ, is
// inlined.
inline bool sameWord(std::string_view one, std::string_view two) {
    return one.size() == two.size() && sameLetters(one, two);
}

// Whether two names are the same. Most are a few bytes: no call compares them.
inline bool same(std::string_view one, std::string_view two) {
    return one.size() == two.size() && equalBytes(one.data(), two.data(), one.size());
}

bool hasWord(std::string_view text, std::string_view word); // inside, without case

// Removes the decimal number from the start of `text`. Returns false if there is no digit, or the
// number has more than 32 bits.
bool takeNumber(std::string_view &text, uint32_t &number);

// Removes the word up to the next blank, and the blanks after it, and returns the word.
std::string_view takeWord(std::string_view &text);

inline std::string_view mediaWord(const SDPMediaDesc &media) {
    return Media(&media).type().text();
}
inline std::string_view protocolWord(const SDPMediaDesc &media) {
    return Media(&media).protocol().text();
}

// Whether two m= lines have the same media type, or the same protocol, without case. Words are
// compared only if the codes differ or mean any word.
inline bool sameMedia(const SDPMediaDesc &one, const SDPMediaDesc &two) {
    const uint32_t code = one.stMediaField.stMedia.enMediaType;
    return (code == two.stMediaField.stMedia.enMediaType && code != SDP_MEDIA_OTHER) ||
           sameWord(mediaWord(one), mediaWord(two));
}
inline bool sameProtocol(const SDPMediaDesc &one, const SDPMediaDesc &two) {
    const uint32_t code = one.stMediaField.stProto.enProto;
    return (code == two.stMediaField.stProto.enProto && code != SDP_PROTO_OTHER) ||
           sameWord(protocolWord(one), protocolWord(two));
}

// Whether the protocol has that code, or is a word for which fits(word) is true.
template <class Fits>
bool protocolIs(const SDPMediaDesc &media, uint32_t code, Fits fits) {
    const uint32_t protocol = media.stMediaField.stProto.enProto;
    return protocol == code || (protocol == SDP_PROTO_OTHER && fits(protocolWord(media)));
}

// The name and the value of an attribute that the library stores by its name; empty for others.
inline std::string_view otherName(const SDPAttr &attribute) {
    const bool other = attribute.ulAttrType == SDP_ATTR_UNREC_VALUE ||
                       attribute.ulAttrType == SDP_ATTR_UNREC_NOVALUE;
    return other ? viewOf(attribute.pstAttrName) : std::string_view();
}
inline std::string_view otherValue(const SDPAttr &attribute) {
    return attribute.ulAttrType == SDP_ATTR_UNREC_VALUE ? viewOf(attribute.unAttrValue.strValue)
                                                        : std::string_view();
}

// The text in an attribute's value; null for none.
inline SipString *textIn(SDPAttr &attribute) {
    auto &value = attribute.unAttrValue;
    switch (attribute.ulAttrType) {
    case SDP_ATTR_RTPMAP: return &value.stRtpMap.strEncodingName;
    case SDP_ATTR_SILENCE_SUPP: return &value.stSilenceSupp.strParams;
    case SDP_ATTR_ECAN: return &value.stEcan.strParams;
    case SDP_ATTR_UNREC_VALUE: return &value.strValue;
    default: break;
    }
    const bool text =
        attribute.ulAttrType >= SDP_ATTR_FMTP && attribute.ulAttrType <= SDP_ATTR_LANG;
    return text ? &value.strValue : nullptr;
}
inline const SipString *textIn(const SDPAttr &attribute) {
    return textIn(const_cast<SDPAttr &>(attribute));
}

inline bool isDirection(const SDPAttr &attribute) {
    return attribute.ulAttrType >= SDP_ATTR_SENDRECV && attribute.ulAttrType <= SDP_ATTR_INACTIVE;
}
inline bool isT38(const SDPAttr &attribute) {
    return attribute.ulAttrType >= SDP_ATTR_T38_FAX_VERSION &&
           attribute.ulAttrType <= SDP_ATTR_T38_UDP_EC;
}
inline bool isPrecondition(const SDPAttr &attribute) {
    return attribute.ulAttrType >= SDP_ATTR_DES && attribute.ulAttrType <= SDP_ATTR_CONF;
}

// A set of attribute types, one bit each (modulo 64): a list without the bit has no such attribute.
using Kinds = uint64_t;
inline Kinds kindOf(const SDPAttr &attribute) {
    return Kinds{1} << attribute.ulAttrType % 64;
}
constexpr Kinds kindsOf(uint32_t first, uint32_t last) {
    return (Kinds{2} << last) - (Kinds{1} << first);
}
constexpr Kinds kTimeKinds = kindsOf(SDP_ATTR_PTIME, SDP_ATTR_MAXPTIME);
constexpr Kinds kFaxKinds = kindsOf(SDP_ATTR_T38_FAX_VERSION, SDP_ATTR_T38_UDP_EC);
constexpr Kinds kOtherKinds = kindsOf(SDP_ATTR_UNREC_VALUE, SDP_ATTR_UNREC_NOVALUE);
constexpr Kinds kPreconditionKinds = kindsOf(SDP_ATTR_DES, SDP_ATTR_CONF);
constexpr Kinds kSetupKinds = kindsOf(SDP_ATTR_SETUP, SDP_ATTR_SETUP);

// The first attribute of a type, or of a name; null for none.
const SDPAttr *find(AttributeSpan attributes, uint32_t type);
const SDPAttr *find(AttributeSpan attributes, std::string_view name);

// The attribute of the media description, else that of the session; null for none.
inline const SDPAttr *findFor(const SdpLine &body, const SDPMediaDesc &media, uint32_t type) {
    const SDPAttr *const own = find(attributesOf(media.pstAttrList), type);
    return own != nullptr ? own : find(attributesOf(body.pstAttrList), type);
}
inline const SDPAttr *findFor(const SdpLine &body, const SDPMediaDesc &media,
                              std::string_view name) {
    const SDPAttr *const own = find(attributesOf(media.pstAttrList), name);
    return own != nullptr ? own : find(attributesOf(body.pstAttrList), name);
}

// The c= line that applies to a stream; null for none.
inline const SDPConnection *connectionOf(const SdpLine &body, const SDPMediaDesc &media) {
    const SDPConnection *const own = media.pstConnection;
    return own != nullptr ? own : body.pstConnection;
}
bool isUnspecified(const SDPConnection *connection); // 0.0.0.0 or "::"
bool isMulticast(const SDPConnection *connection);

constexpr uint32_t kHighestPort = 65535;

} // namespace sdpline::negotiate

#include "compare/difference.hpp"

#include <algorithm>

#include "commands/profiles.hpp"
#include "input/body.hpp"
#include "output/text.hpp"
#include "tables/keywords.hpp"

namespace cli {

namespace {

using Texts = std::vector<std::string>;
using OptionalText = std::optional<std::string>;

// ---- Records as text

// The value of a line, "0 0" of "t=0 0".
std::string valueOf(uint32_t lineType, void *record) {
    const std::string line = encodeLine(lineType, record);
    return line.size() > 2 ? line.substr(2) : "";
}

OptionalText optionalText(const SipString *text) {
    return text != nullptr ? OptionalText(view(*text)) : std::nullopt;
}

OptionalText keyText(const SDPKey *key) {
    return key != nullptr ? OptionalText(view(key->strKey)) : std::nullopt;
}

OptionalText connectionText(SDPConnection *connection) {
    return connection != nullptr ? OptionalText(valueOf(SDP_LINE_CONNECTION, connection))
                                 : std::nullopt;
}

Texts textsOf(const SDPStringList *list) {
    Texts texts;
    for (uint32_t i = 0; list != nullptr && i < list->ulNoOfStrings; ++i) {
        texts.emplace_back(view(*list->ppstStrings[i]));
    }
    return texts;
}

Texts timesOf(const SDPTimeSet &set) {
    Texts texts;
    for (uint32_t i = 0; i < set.ulNoOfTimeFields; ++i) {
        SDPTimeField &time = *set.ppstTimeFields[i];
        std::string text = valueOf(SDP_LINE_TIME, &time);
        const SDPRepeatFieldSet *const repeats = time.pstRepeatFieldSet;
        for (uint32_t r = 0; repeats != nullptr && r < repeats->ulNoOfRepeatFields; ++r) {
            text += " r=" + valueOf(SDP_LINE_REPEAT, repeats->ppstRepeatFields[r]);
        }
        texts.push_back(std::move(text));
    }
    return texts;
}

bool isDirection(const SDPAttr &attr) {
    return attr.ulAttrType >= SDP_ATTR_SENDRECV && attr.ulAttrType <= SDP_ATTR_INACTIVE;
}

// "a=ptime:20" and so on, directions left out.
Texts attributesOf(const SDPAttrList *list) {
    Texts texts;
    for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
        if (!isDirection(*list->ppstAttrs[i])) {
            texts.push_back(encodeLine(SDP_LINE_ATTRIBUTE, list->ppstAttrs[i]));
        }
    }
    return texts;
}

OptionalText directionOf(const SDPAttrList *list) {
    OptionalText direction;
    for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
        if (isDirection(*list->ppstAttrs[i])) {
            direction = valueOf(SDP_LINE_ATTRIBUTE, list->ppstAttrs[i]);
        }
    }
    return direction;
}

std::string typeOf(const SDPMediaDesc &media) {
    const SDPMedia &type = media.stMediaField.stMedia;
    if (type.pstrOtherMedia != nullptr) {
        return std::string(view(*type.pstrOtherMedia));
    }
    const sdpline::Word *const word = sdpline::findByCode(sdpline::kMediaWords, type.enMediaType);
    return word != nullptr ? std::string(word->text) : "";
}

std::string protocolOf(const SDPMediaDesc &media) {
    const SDPMediaProto &protocol = media.stMediaField.stProto;
    if (protocol.pstrOtherProto != nullptr) {
        return std::string(view(*protocol.pstrOtherProto));
    }
    const sdpline::Word *const word = sdpline::findByCode(sdpline::kProtoWords, protocol.enProto);
    return word != nullptr ? std::string(word->text) : "";
}

std::vector<uint32_t> payloadsOf(const SDPMediaDesc &media) {
    const SDPMediaFmt &fmt = media.stMediaField.stMediaFmt;
    const SDPRtpPayLoads &payloads = fmt.unMediaFmt.stRtpPayLoads;
    if (fmt.enFmtType != SDP_FMT_RTP_PAYLOADS || payloads.pulPayLoads == nullptr) {
        return {};
    }
    return {payloads.pulPayLoads, payloads.pulPayLoads + payloads.ulNoOfPayLoads};
}

OptionalText formatOf(const SDPMediaDesc &media) {
    const SDPMediaFmt &fmt = media.stMediaField.stMediaFmt;
    if (fmt.enFmtType == SDP_FMT_OTHER) {
        return std::string(view(fmt.unMediaFmt.strOtherFmts));
    }
    const sdpline::Word *const word = sdpline::findByCode(sdpline::kFmtWords, fmt.enFmtType);
    return word != nullptr ? OptionalText(word->text) : std::nullopt;
}

// "101 (telephone-event/8000)": the mapping of the media description, or the static one.
std::string payloadText(uint32_t payload, const SDPMediaDesc &media) {
    const SDPAttrList *const list = media.pstAttrList;
    for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
        const SDPRtpMapAttr &map = list->ppstAttrs[i]->unAttrValue.stRtpMap;
        if (list->ppstAttrs[i]->ulAttrType == SDP_ATTR_RTPMAP && map.ulPayloadType == payload) {
            return std::to_string(payload) + " (" + std::string(view(map.strEncodingName)) + '/' +
                   std::to_string(map.ulClockRate) + ')';
        }
    }
    for (const Profile &profile : profiles()) {
        if (profile.payload == payload) {
            return std::to_string(payload) + " (" + std::string(profile.name) + '/' +
                   std::to_string(profile.clockRate) + ')';
        }
    }
    return std::to_string(payload);
}

// What two different values of an attribute have in common: the name, and the payload where there
// can be one for each.
std::string attributeKey(const std::string &line) {
    const size_t colon = line.find(':');
    std::string name = line.substr(0, colon);
    if (colon != std::string::npos &&
        (name == "a=rtpmap" || name == "a=fmtp" || name == "a=rtcp-fb")) {
        return line.substr(0, line.find(' ', colon));
    }
    return name;
}

// ---- Comparison

class Comparer {
public:
    Comparer(SdpLine &first, SdpLine &second) : first_(first), second_(second) {}

    std::vector<Change> run() {
        origin();
        text("version", std::to_string(first_.ulProtoVersion),
             std::to_string(second_.ulProtoVersion));
        text("name", view(first_.strSessionName), view(second_.strSessionName));
        optional("info", optionalText(first_.pstrSessionInfo),
                 optionalText(second_.pstrSessionInfo));
        optional("uri", optionalText(first_.pstrUri), optionalText(second_.pstrUri));
        texts("email", textsOf(first_.pstEmailList), textsOf(second_.pstEmailList));
        texts("phone", textsOf(first_.pstPhoneList), textsOf(second_.pstPhoneList));
        if (isInForce([](const SDPMediaDesc &media) { return media.pstConnection != nullptr; })) {
            optional("connection", sessionConnection(first_), sessionConnection(second_));
        }
        texts("bandwidth", textsOf(first_.pstBandwidthList), textsOf(second_.pstBandwidthList));
        texts("time", timesOf(first_.stTimeSet), timesOf(second_.stTimeSet));
        optional("zone", optionalText(first_.pstrTimeZone), optionalText(second_.pstrTimeZone));
        optional("key", keyText(first_.pstKey), keyText(second_.pstKey));
        if (isInForce([](const SDPMediaDesc &media) {
                return directionOf(media.pstAttrList).has_value();
            })) {
            text("direction", sessionDirection(first_), sessionDirection(second_));
        }
        attributes(first_.pstAttrList, second_.pstAttrList);
        allMedia();
        return std::move(changes_);
    }

private:
    void origin() {
        const SDPOrigin &a = first_.stOrigin;
        const SDPOrigin &b = second_.stOrigin;
        text("origin user", view(a.strUserName), view(b.strUserName));
        text("origin session id", view(a.strSessionId), view(b.strSessionId));
        text("origin session version", view(a.strSessionVersion), view(b.strSessionVersion));
        text("origin address type", std::to_string(a.stAddrType.enAddrType),
             std::to_string(b.stAddrType.enAddrType));
        text("origin address", view(a.strAddress), view(b.strAddress));
    }

    static OptionalText sessionConnection(const SdpLine &line) {
        return connectionText(line.pstConnection);
    }
    static std::string sessionDirection(const SdpLine &line) {
        return directionOf(line.pstAttrList).value_or("sendrecv");
    }

    uint32_t pairs() const {
        return std::min(first_.stMediaSet.ulNoOfMediaDescs, second_.stMediaSet.ulNoOfMediaDescs);
    }

    // Whether the session's value counts in both bodies for some media description; without any
    // media it does.
    bool isInForce(bool (*hasOwn)(const SDPMediaDesc &media)) const {
        for (uint32_t i = 0; i < pairs(); ++i) {
            if (!hasOwn(*first_.stMediaSet.ppstMediaDescs[i]) &&
                !hasOwn(*second_.stMediaSet.ppstMediaDescs[i])) {
                return true;
            }
        }
        return pairs() == 0;
    }

    void allMedia() {
        for (uint32_t i = 0; i < pairs(); ++i) {
            place_ = i + 1;
            mediaType_ = typeOf(*second_.stMediaSet.ppstMediaDescs[i]);
            media(*first_.stMediaSet.ppstMediaDescs[i], *second_.stMediaSet.ppstMediaDescs[i]);
        }
        wholeMedia(first_.stMediaSet, true);
        wholeMedia(second_.stMediaSet, false);
    }

    // The media descriptions that only one body has.
    void wholeMedia(const SDPMediaSet &set, bool isFirst) {
        for (uint32_t i = pairs(); i < set.ulNoOfMediaDescs; ++i) {
            SDPMediaDesc &desc = *set.ppstMediaDescs[i];
            place_ = i + 1;
            mediaType_ = typeOf(desc);
            const std::string line = encodeLine(SDP_LINE_MEDIA, &desc.stMediaField);
            add("description", isFirst ? OptionalText(line) : std::nullopt,
                isFirst ? std::nullopt : OptionalText(line));
        }
    }

    void media(SDPMediaDesc &a, SDPMediaDesc &b) {
        text("type", typeOf(a), typeOf(b));
        text("port", std::to_string(a.stMediaField.ulPort), std::to_string(b.stMediaField.ulPort));
        text("ports", std::to_string(a.stMediaField.ulNoOfPorts),
             std::to_string(b.stMediaField.ulNoOfPorts));
        text("protocol", protocolOf(a), protocolOf(b));
        optional("format", formatOf(a), formatOf(b));
        payloads(a, b);
        optional("info", optionalText(a.pstrMediaInfo), optionalText(b.pstrMediaInfo));
        if (a.pstConnection != nullptr || b.pstConnection != nullptr) {
            const auto inForce = [](SDPMediaDesc &desc, const SdpLine &line) {
                return desc.pstConnection != nullptr ? connectionText(desc.pstConnection)
                                                     : sessionConnection(line);
            };
            optional("connection", inForce(a, first_), inForce(b, second_));
        }
        const OptionalText directionA = directionOf(a.pstAttrList);
        const OptionalText directionB = directionOf(b.pstAttrList);
        if (directionA || directionB) {
            text("direction", directionA.value_or(sessionDirection(first_)),
                 directionB.value_or(sessionDirection(second_)));
        }
        texts("bandwidth", textsOf(a.pstBandwidthList), textsOf(b.pstBandwidthList));
        optional("key", keyText(a.pstKey), keyText(b.pstKey));
        attributes(a.pstAttrList, b.pstAttrList);
    }

    void payloads(const SDPMediaDesc &a, const SDPMediaDesc &b) {
        const std::vector<uint32_t> from = payloadsOf(a);
        const std::vector<uint32_t> to = payloadsOf(b);
        const auto missingIn = [](const std::vector<uint32_t> &list) {
            return [&list](uint32_t payload) {
                return std::find(list.begin(), list.end(), payload) == list.end();
            };
        };
        std::string common[2]; // those in both, in the order of each
        for (const uint32_t payload : from) {
            if (missingIn(to)(payload)) {
                add("payload", payloadText(payload, a), std::nullopt);
            } else {
                common[0] += (common[0].empty() ? "" : " ") + std::to_string(payload);
            }
        }
        for (const uint32_t payload : to) {
            if (missingIn(from)(payload)) {
                add("payload", std::nullopt, payloadText(payload, b));
            } else {
                common[1] += (common[1].empty() ? "" : " ") + std::to_string(payload);
            }
        }
        text("payload order", common[0], common[1]);
    }

    void attributes(const SDPAttrList *a, const SDPAttrList *b) {
        Texts from = attributesOf(a);
        Texts to = attributesOf(b);
        removeCommon(from, to);
        for (const std::string &line : from) {
            const auto sameKey = [&line](const std::string &other) {
                return attributeKey(other) == attributeKey(line);
            };
            const auto partner = std::find_if(to.begin(), to.end(), sameKey);
            if (partner != to.end()) {
                add("attribute", line, *partner);
                to.erase(partner);
            } else {
                add("attribute", line, std::nullopt);
            }
        }
        for (const std::string &line : to) {
            add("attribute", std::nullopt, line);
        }
    }

    // Leaves what only one of them has.
    static void removeCommon(Texts &a, Texts &b) {
        std::erase_if(a, [&b](const std::string &text) {
            const auto found = std::find(b.begin(), b.end(), text);
            const bool isCommon = found != b.end();
            if (isCommon) {
                b.erase(found);
            }
            return isCommon;
        });
    }

    void texts(const char *what, Texts from, Texts to) {
        removeCommon(from, to);
        for (size_t i = 0; i < std::max(from.size(), to.size()); ++i) {
            add(what, i < from.size() ? OptionalText(from[i]) : std::nullopt,
                i < to.size() ? OptionalText(to[i]) : std::nullopt);
        }
    }

    void text(const char *what, std::string_view from, std::string_view to) {
        optional(what, std::string(from), std::string(to));
    }

    void optional(const char *what, const OptionalText &from, const OptionalText &to) {
        if (from != to) {
            add(what, from, to);
        }
    }

    void add(const char *what, OptionalText from, OptionalText to) {
        changes_.push_back({place_, mediaType_, what, std::move(from), std::move(to)});
    }

    SdpLine &first_;
    SdpLine &second_;
    std::optional<size_t> place_;
    std::string mediaType_;
    std::vector<Change> changes_;
};

} // namespace

std::vector<Change> differences(SdpLine &first, SdpLine &second) {
    const uint32_t style = SdpGetT380ptCfg();
    SdpSetT38OptCfg(SDP_T38_STYLE_VALUE); // the only one that tells the flags apart
    std::vector<Change> changes = Comparer(first, second).run();
    SdpSetT38OptCfg(style);
    return changes;
}

} // namespace cli

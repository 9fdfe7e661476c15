#include "compare/difference.hpp"

#include <algorithm>

namespace cli {

namespace {

using Texts = std::vector<std::string>;
using OptionalText = std::optional<std::string>;

// ---- Lines as text

OptionalText textOf(std::optional<std::string_view> text) {
    return text ? OptionalText(*text) : std::nullopt;
}

Texts textsOf(const sdpline::Texts &list) {
    return {list.begin(), list.end()};
}

// "0 0", followed by " r=7d 1h 0" for every r= line.
Texts textsOf(const sdpline::Times &times) {
    Texts texts;
    for (const sdpline::Time time : times) {
        std::string text = std::to_string(time.start()) + ' ' + std::to_string(time.stop());
        for (const sdpline::Repeat repeat : time.repeats()) {
            std::string_view before = " r=";
            for (const sdpline::TypedTime unit : repeat) {
                text += before;
                text += sdpline::toText(unit);
                before = " ";
            }
        }
        texts.push_back(std::move(text));
    }
    return texts;
}

// "a=ptime:20" for each attribute, without the directions.
Texts textsOf(const sdpline::Attributes &attributes) {
    Texts texts;
    for (const sdpline::Attribute attribute : attributes) {
        if (!attribute.as<sdpline::Direction>()) {
            texts.push_back("a=" + sdpline::toText(attribute));
        }
    }
    return texts;
}

// "101 (telephone-event/8000)", from the a=rtpmap line or the static payload types.
std::string payloadText(uint32_t payload, const sdpline::Media &media) {
    const auto encoding = media.attributes().encoding(payload);
    std::string text = std::to_string(payload);
    if (encoding) {
        text +=
            " (" + std::string(encoding->name) + '/' + std::to_string(encoding->clockRate) + ')';
    }
    return text;
}

// The part that two values of one attribute have in common: the name, with the payload number for
// attributes that may occur once for each payload.
std::string attributeKey(const std::string &line) {
    const size_t colon = line.find(':');
    std::string name = line.substr(0, colon);
    if (colon != std::string::npos &&
        (name == "a=rtpmap" || name == "a=fmtp" || name == "a=rtcp-fb")) {
        return line.substr(0, line.find(' ', colon));
    }
    return name;
}

// The name of a compared value, and the text before it in a line.
struct What {
    std::string_view name;
    std::string_view before;
};

constexpr std::string_view kWholeLine = "";
constexpr std::string_view kProtocolWords = "a=fmtp:";

// ---- Comparison

class Comparer {
public:
    Comparer(const sdpline::Body &first, const sdpline::Body &second)
        : first_(first), second_(second),
          pairs_(std::min(first.media().size(), second.media().size())) {}

    std::vector<Change> run() {
        origin();
        session();
        for (size_t i = 0; i < pairs_; ++i) {
            place_ = i + 1;
            media(first_.media()[i], second_.media()[i]);
        }
        onlyIn(first_, &Change::from);
        onlyIn(second_, &Change::to);
        return std::move(changes_);
    }

private:
    void origin() {
        const sdpline::Origin a = first_.origin();
        const sdpline::Origin b = second_.origin();
        text({"origin user", "o="}, a.userName, b.userName);
        text({"origin session id", "o=- "}, a.sessionId, b.sessionId);
        text({"origin session version", "o=- 0 "}, a.sessionVersion, b.sessionVersion);
        text({"origin address type", "o=- 0 0 IN "}, a.addressType.text(), b.addressType.text());
        text({"origin address", "o=- 0 0 IN IP4 "}, a.address, b.address);
    }

    void session() {
        number({"version", "v="}, first_.version(), second_.version());
        text({"name", "s="}, first_.sessionName(), second_.sessionName());
        optional({"info", "i="}, textOf(first_.info()), textOf(second_.info()));
        optional({"uri", "u="}, textOf(first_.uri()), textOf(second_.uri()));
        texts({"email", "e="}, textsOf(first_.emails()), textsOf(second_.emails()));
        texts({"phone", "p="}, textsOf(first_.phones()), textsOf(second_.phones()));
        if (isInForce([](const auto &media) { return media.connection().has_value(); })) {
            connection(first_.connection(), second_.connection());
        }
        texts({"bandwidth", "b="}, textsOf(first_.bandwidths()), textsOf(second_.bandwidths()));
        texts({"time", kProtocolWords}, textsOf(first_.times()), textsOf(second_.times()));
        optional({"zone", "z="}, textOf(first_.zone()), textOf(second_.zone()));
        optional({"key", "k="}, textOf(first_.key()), textOf(second_.key()));
        if (isInForce(
                [](const auto &media) { return media.attributes().direction().has_value(); })) {
            direction(sessionDirection(first_), sessionDirection(second_));
        }
        attributes(first_.attributes(), second_.attributes());
    }

    static sdpline::Direction sessionDirection(const sdpline::Body &body) {
        return body.attributes().direction().value_or(sdpline::Direction::SendRecv);
    }

    // Whether the value of the session applies, in both bodies, to some media description, or there
    // is no media description.
    bool isInForce(bool (*overrides)(const sdpline::Media &media)) const {
        for (size_t i = 0; i < pairs_; ++i) {
            if (!overrides(first_.media()[i]) && !overrides(second_.media()[i])) {
                return true;
            }
        }
        return pairs_ == 0;
    }

    // The media descriptions that only one body has.
    void onlyIn(const sdpline::Body &body, OptionalText Change::*side) {
        for (size_t i = pairs_; i < body.media().size(); ++i) {
            place_ = i + 1;
            mediaType_ = body.media()[i].type().text();
            add({"description", kWholeLine}, std::nullopt, std::nullopt);
            changes_.back().*side = "m=" + sdpline::toText(body.media()[i]);
        }
    }

    void media(const sdpline::Media &a, const sdpline::Media &b) {
        mediaType_ = b.type().text();
        text({"type", "m="}, a.type().text(), b.type().text());
        number({"port", "m=audio "}, a.port(), b.port());
        number({"ports", "m=audio "}, a.portCount(), b.portCount());
        text({"protocol", "m=audio 0 "}, a.protocol().text(), b.protocol().text());
        optional({"format", "m=audio 0 udp "}, formatOf(a), formatOf(b));
        payloads(a, b);
        optional({"info", "i="}, textOf(a.info()), textOf(b.info()));
        if (a.connection() || b.connection()) {
            connection(first_.connectionOf(a), second_.connectionOf(b));
        }
        if (a.attributes().direction() || b.attributes().direction()) {
            direction(first_.directionOf(a), second_.directionOf(b));
        }
        texts({"bandwidth", "b="}, textsOf(a.bandwidths()), textsOf(b.bandwidths()));
        optional({"key", "k="}, textOf(a.key()), textOf(b.key()));
        attributes(a.attributes(), b.attributes());
    }

    static OptionalText formatOf(const sdpline::Media &media) {
        const sdpline::Keyword<sdpline::Format> format = media.format();
        return format == sdpline::Format::Payloads ? std::nullopt : OptionalText(format.text());
    }

    void payloads(const sdpline::Media &a, const sdpline::Media &b) {
        const std::string commonA = payloadsOnlyIn(a, b, &Change::from);
        const std::string commonB = payloadsOnlyIn(b, a, &Change::to);
        text({"payload order", kProtocolWords}, commonA, commonB);
    }

    // Adds the payloads that only `media` has. Returns the common ones, in the order of `media`.
    std::string payloadsOnlyIn(const sdpline::Media &media, const sdpline::Media &other,
                               OptionalText Change::*side) {
        std::string common;
        for (const uint32_t payload : media.payloads()) {
            if (std::ranges::find(other.payloads(), payload) != other.payloads().end()) {
                common += (common.empty() ? "" : " ") + std::to_string(payload);
            } else {
                add({"payload", kProtocolWords}, std::nullopt, std::nullopt);
                changes_.back().*side = payloadText(payload, media);
            }
        }
        return common;
    }

    void attributes(const sdpline::Attributes &a, const sdpline::Attributes &b) {
        Texts from = textsOf(a);
        Texts to = textsOf(b);
        removeCommon(from, to);
        for (const std::string &line : from) {
            const auto partner = std::ranges::find(to, attributeKey(line), attributeKey);
            if (partner != to.end()) {
                add({"attribute", kWholeLine}, line, *partner);
                to.erase(partner);
            } else {
                add({"attribute", kWholeLine}, line, std::nullopt);
            }
        }
        for (const std::string &line : to) {
            add({"attribute", kWholeLine}, std::nullopt, line);
        }
    }

    // Removes the texts that both lists have.
    static void removeCommon(Texts &a, Texts &b) {
        std::erase_if(a, [&b](const std::string &text) {
            const auto found = std::ranges::find(b, text);
            const bool isCommon = found != b.end();
            if (isCommon) {
                b.erase(found);
            }
            return isCommon;
        });
    }

    void texts(What what, Texts from, Texts to) {
        removeCommon(from, to);
        for (size_t i = 0; i < std::max(from.size(), to.size()); ++i) {
            add(what, i < from.size() ? OptionalText(from[i]) : std::nullopt,
                i < to.size() ? OptionalText(to[i]) : std::nullopt);
        }
    }

    void text(What what, std::string_view from, std::string_view to) {
        optional(what, std::string(from), std::string(to));
    }

    void number(What what, uint32_t from, uint32_t to) {
        text(what, std::to_string(from), std::to_string(to));
    }

    void direction(sdpline::Direction from, sdpline::Direction to) {
        text({"direction", "a="}, sdpline::wordOf(from), sdpline::wordOf(to));
    }

    void connection(const std::optional<sdpline::Connection> &from,
                    const std::optional<sdpline::Connection> &to) {
        const auto text = [](const std::optional<sdpline::Connection> &one) {
            return one ? OptionalText(sdpline::toText(*one)) : std::nullopt;
        };
        if (from != to) {
            add({"connection", "c="}, text(from), text(to));
        }
    }

    void optional(What what, const OptionalText &from, const OptionalText &to) {
        if (from != to) {
            add(what, from, to);
        }
    }

    void add(What what, OptionalText from, OptionalText to) {
        changes_.push_back(
            {place_, mediaType_, what.name, std::move(from), std::move(to), what.before});
    }

    const sdpline::Body &first_;
    const sdpline::Body &second_;
    size_t pairs_; // media descriptions that both bodies have
    std::optional<size_t> place_;
    std::string mediaType_;
    std::vector<Change> changes_;
};

} // namespace

std::vector<Change> differences(const sdpline::Body &first, const sdpline::Body &second) {
    const uint32_t style = SdpGetT380ptCfg();
    SdpSetT38OptCfg(SDP_T38_STYLE_VALUE); // the only style that writes 0 and 1 differently
    std::vector<Change> changes = Comparer(first, second).run();
    SdpSetT38OptCfg(style);
    return changes;
}

} // namespace cli

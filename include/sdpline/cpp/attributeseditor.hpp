/*
 * attributeseditor.hpp: a= lines, to change.
 *
 * Part of sdpline.hpp, whose conventions hold here.
 */
#ifndef SDPLINE_CPP_ATTRIBUTESEDITOR_HPP
#define SDPLINE_CPP_ATTRIBUTESEDITOR_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "sdpline/cpp/attributes.hpp"
#include "sdpline/cpp/detail/decode.hpp"
#include "sdpline/cpp/detail/draft.hpp"
#include "sdpline/cpp/detail/memory.hpp"

namespace sdpline {
inline namespace v1 {

/*
 * The a= lines of a session or of a media description. Everything that Attributes answers, and:
 * lines are added at the end; a removed line's Attribute, and texts and values that came from it,
 * are dead; those of the other lines live on.
 */
class AttributesEditor : public Attributes {
    using Home = internal::ListHome<SDPAttrList>;

public:
    explicit AttributesEditor(Home home) : Attributes(home.get()), home_(home) {}

    /* Adds a line that holds the value: a Direction, RtpMap, Fmtp, T38RateManagement,
     * T38ErrorCorrection, SilenceSupp, Ecan, Precondition, IpBcp or SetupRole; or an AttributeType
     * that needs no value: the directions, fax, modem, X-fax, X-modem and the three T.38 flags. */
    template <class Value>
    requires requires(internal::Draft draft, const Value &value) { draft.fill(value); }
    Status add(const Value &value) { return addDraft(value); }

    /* ptime, maxptime, framerate, quality, a T.38 number or flag. A flag of 0 is a line that the
     * encoder leaves out, unless SDP_T38_STYLE_VALUE is set. */
    Status add(AttributeType type, std::uint32_t number) { return addDraft(type, number); }

    /* fmtp, cat, keywds, tool, orient, type, charset, sdplang or lang. */
    Status add(AttributeType type, std::string_view text) { return addDraft(type, text); }

    /* Any line by its text behind "a=", "ptime:20" or "candidate:1 1 UDP ...", which is decoded:
     * what it becomes, and what is wrong with it and where, the library says. */
    Status add(std::string_view text) {
        auto decoded = internal::decodeLine("v=0\no=- 0 0 IN IP4 0\ns=-\nt=0 0\na=", text);
        if (!decoded) {
            return decoded.error();
        }
        return append({(*decoded)->pstAttrList->ppstAttrs[0], 1});
    }

    /* A copy of a line, of whatever body. */
    Status add(const Attribute &attribute) { return append({attribute.record(), 1}); }

    /* One line of the type in place of all of them: where the first one stood, else at the end. */
    Status set(AttributeType type, std::uint32_t number) {
        return setDraft([type](AttributeType one) { return one == type; }, type, number);
    }
    Status set(AttributeType type, std::string_view text) {
        return setDraft([type](AttributeType one) { return one == type; }, type, text);
    }
    Status setSetup(SetupRole setup) {
        return setDraft([](AttributeType one) { return one == AttributeType::Setup; }, setup);
    }
    /* In place of every direction. */
    Status setDirection(Direction direction) {
        return setDraft(
            [](AttributeType one) {
                return one >= AttributeType::SendRecv && one <= AttributeType::Inactive;
            },
            direction);
    }

    /* The T.38 attributes that `all` has, at the end, in place of all those there are. */
    Status setT38(const T38 &all);

    /* False when it is no line of this list. */
    bool remove(const Attribute &attribute) {
        return removeIf([&](const Attribute &one) { return one == attribute; }) != 0;
    }
    std::size_t removeAll(AttributeType type) {
        return removeIf([type](const Attribute &one) { return one.type() == type; });
    }
    /* By the name, exactly as it is written, without a colon. */
    std::size_t removeAll(std::string_view name) {
        return removeIf([name](const Attribute &one) { return one.name() == name; });
    }
    /* Every line for which unwanted(Attribute) holds; answers how many. All lines are asked about,
     * in order, before the first one goes; unwanted must not change the body. */
    template <class Unwanted>
    std::size_t removeIf(Unwanted unwanted) {
        return home_.eraseIf([&](const SDPAttr *one) { return unwanted(Attribute(one)); },
                             discard());
    }
    std::size_t clear() {
        return removeIf([](const Attribute &) { return true; });
    }

private:
    internal::FreeLine discard() const { return {home_.memory(), SDP_LINE_ATTRIBUTE}; }

    Status append(std::span<const SDPAttr> sources) {
        const auto clone = [&](std::size_t n) {
            return home_.memory().clone(SDP_LINE_ATTRIBUTE, sources[n]);
        };
        Status status = home_.append(sources.size(), clone, discard());
        lookAt(home_.get());
        return status;
    }

    template <class... Values>
    Status addDraft(const Values &...values) {
        internal::Draft draft;
        if (const auto error = draft.fill(values...)) {
            return *error;
        }
        return append({&draft.record, 1});
    }

    template <class IsOld, class... Values>
    Status setDraft(IsOld isOld, const Values &...values) {
        internal::Draft draft;
        if (const auto error = draft.fill(values...)) {
            return *error;
        }
        lookAt(home_.get());
        std::size_t at = 0;
        while (at < size() && !isOld((*this)[at].type())) {
            ++at;
        }
        if (at == size()) {
            return append({&draft.record, 1});
        }
        auto made = home_.memory().clone(SDP_LINE_ATTRIBUTE, draft.record);
        if (!made) {
            return made.error();
        }
        SDPAttr *&slot = home_.get()->ppstAttrs[at];
        home_.memory().free(SDP_LINE_ATTRIBUTE, slot);
        slot = *made;
        removeIf([&](const Attribute &one) { return isOld(one.type()) && one.record() != *made; });
        return {};
    }

    Home home_;
};

inline Status AttributesEditor::setT38(const T38 &all) {
    std::array<SDPAttr, 9> lines{};
    std::size_t count = 0;
    const auto put = [&](AttributeType type, std::uint32_t value) {
        lines[count].ulAttrType = static_cast<std::uint32_t>(type);
        lines[count++].unAttrValue.ulValue = value;
    };
    const auto putGiven = [&](AttributeType type, const auto &value) {
        if (value) {
            put(type, static_cast<std::uint32_t>(*value));
        }
    };
    const auto putFlag = [&](AttributeType type, bool set) {
        if (set) {
            put(type, 1);
        }
    };
    for (const auto &error :
         {all.rateManagement ? internal::refusedCode(*all.rateManagement) : std::nullopt,
          all.errorCorrection ? internal::refusedCode(*all.errorCorrection) : std::nullopt}) {
        if (error) {
            return *error;
        }
    }
    putGiven(AttributeType::T38FaxVersion, all.version);
    putGiven(AttributeType::T38MaxBitRate, all.maxBitRate);
    putFlag(AttributeType::T38FillBitRemoval, all.fillBitRemoval);
    putFlag(AttributeType::T38TranscodingMmr, all.transcodingMmr);
    putFlag(AttributeType::T38TranscodingJbig, all.transcodingJbig);
    putGiven(AttributeType::T38RateManagement, all.rateManagement);
    putGiven(AttributeType::T38MaxBuffer, all.maxBuffer);
    putGiven(AttributeType::T38MaxDatagram, all.maxDatagram);
    putGiven(AttributeType::T38UdpEc, all.errorCorrection);

    lookAt(home_.get());
    std::size_t old = size();
    if (count != 0) {
        if (Status added = append({lines.data(), count}); !added) {
            return added;
        }
    }
    removeIf([&](const Attribute &one) {
        const bool present = old != 0;
        old -= present ? 1 : 0;
        return present && internal::isT38(one.type());
    });
    return {};
}

} // namespace v1
} // namespace sdpline

template <>
inline constexpr bool std::ranges::enable_borrowed_range<sdpline::AttributesEditor> = true;

#endif

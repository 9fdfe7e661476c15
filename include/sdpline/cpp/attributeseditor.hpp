/*
 * attributeseditor.hpp: changing a= lines.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_ATTRIBUTESEDITOR_HPP
#define SDPLINE_CPP_ATTRIBUTESEDITOR_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "sdpline/cpp/attributes.hpp"
#include "sdpline/cpp/detail/decode.hpp"
#include "sdpline/cpp/detail/draft.hpp"
#include "sdpline/cpp/detail/memory.hpp"

namespace sdpline {
inline namespace v1 {

/*
 * The a= lines of a session or of a media description: an Attributes range with operations that
 * change the list. When a line is removed, its Attribute, and texts and values that were read from
 * it, become invalid; those of other lines stay valid.
 */
class AttributesEditor : public Attributes {
    using Home = internal::ListHome<SDPAttrList>;

public:
    explicit AttributesEditor(Home home) : Attributes(home.get()), home_(home) {}

    /* Adds a line with the value at the end: a Direction, RtpMap, Fmtp, T38RateManagement,
     * T38ErrorCorrection, SilenceSupp, Ecan, Precondition, IpBcp or SetupRole; or an AttributeType
     * that needs no value: the directions, fax, modem, X-fax, X-modem and the three T.38 flags. */
    template <internal::MakesAttribute Value>
    Status add(const Value &value) {
        return put(kAtEnd, value);
    }

    /* Adds ptime, maxptime, framerate, quality, a T.38 number or flag. The encoder does not write a
     * flag of 0, unless SDP_T38_STYLE_VALUE is set. */
    Status add(AttributeType type, std::uint32_t number) { return put(kAtEnd, type, number); }

    /* Adds fmtp, cat, keywds, tool, orient, type, charset, sdplang or lang. */
    Status add(AttributeType type, std::string_view text) { return put(kAtEnd, type, text); }

    /* Adds any line by its name and its value: "label", "main". For a name that the library knows,
     * as in "ptime", "20", the value is decoded. */
    Status add(std::string_view name, std::string_view value) { return put(kAtEnd, name, value); }

    /* Adds any line by its text after "a=", such as "ptime:20" or "candidate:1 1 UDP ...", which is
     * decoded. */
    Status add(std::string_view text) { return put(kAtEnd, text); }

    /* Adds a copy of a line of this or another body. */
    Status add(const Attribute &attribute) { return put(kAtEnd, attribute); }

    /* Adds copies of those lines of a list, of this or another body, for which wanted(Attribute) is
     * true, in their order, and after them a line for each value, as add() does: all of them or
     * none. wanted must not change the body. For instance, an answer repeats lines of its offer and
     * sets its own direction:
     *
     *     lines.addAll(offered.attributes(), isRepeated, Direction::SendOnly);
     */
    template <class Wanted, internal::MakesAttribute... Values>
    Status addAll(const Attributes &lines, Wanted wanted, const Values &...after) {
        std::array<internal::Draft, sizeof...(after)> drafts;
        [[maybe_unused]] std::size_t filled = 0;
        std::optional<Error> error;
        if (((error = drafts[filled++].fill(after)) || ...)) {
            return *error;
        }
        const auto make = [&](internal::Copier &copier, SDPAttr **slots) {
            std::size_t made = 0;
            for (const Attribute line : lines) {
                if (wanted(line)) {
                    slots[made++] = copier.clone(*line.record());
                }
            }
            for (const internal::Draft &draft : drafts) {
                slots[made++] = copier.clone(draft.record);
            }
            return made;
        };
        Status status =
            home_.insertItems(Attributes(home_.get()).size(), lines.size() + drafts.size(), make);
        lookAt(home_.get());
        return status;
    }
    Status addAll(const Attributes &lines) {
        return addAll(lines, [](const Attribute &) { return true; });
    }

    /* The same as add(), but before the line at the index. An index of size() adds the line at the
     * end; a larger one ends the program. */
    template <internal::MakesAttribute Value>
    Status insert(std::size_t index, const Value &value) {
        return put(checked(index), value);
    }
    Status insert(std::size_t index, AttributeType type, std::uint32_t number) {
        return put(checked(index), type, number);
    }
    Status insert(std::size_t index, AttributeType type, std::string_view text) {
        return put(checked(index), type, text);
    }
    Status insert(std::size_t index, std::string_view name, std::string_view value) {
        return put(checked(index), name, value);
    }
    Status insert(std::size_t index, std::string_view text) { return put(checked(index), text); }
    Status insert(std::size_t index, const Attribute &attribute) {
        return put(checked(index), attribute);
    }

    /* Replaces all lines of the type by one, at the place of the first one, or else at the end. */
    Status set(AttributeType type, std::uint32_t number) {
        return setDraft([type](const Attribute &one) { return one.type() == type; }, type, number);
    }
    Status set(AttributeType type, std::string_view text) {
        return setDraft([type](const Attribute &one) { return one.type() == type; }, type, text);
    }
    /* The same by name and value, as in add(). */
    Status set(std::string_view name, std::string_view value) {
        const auto isOld = [name](const Attribute &one) { return one.name() == name; };
        if (!internal::isKnownName(name)) {
            internal::Draft draft;
            const auto error = draft.fillNamed(name, value);
            return error ? Status(*error) : setRecord(isOld, draft.record);
        }
        auto decoded = decode(name, value);
        return decoded ? setRecord(isOld, *(*decoded)->pstAttrList->ppstAttrs[0])
                       : Status(decoded.error());
    }
    Status setSetup(SetupRole setup) {
        return setDraft([](const Attribute &one) { return one.type() == AttributeType::Setup; },
                        setup);
    }
    /* Replaces all directions by one. */
    Status setDirection(Direction direction) {
        return setDraft([](const Attribute &one) { return one.as<Direction>().has_value(); },
                        direction);
    }

    /* Removes all T.38 attributes, and adds those of `all` at the end. */
    Status setT38(const T38 &all);

    /* Removes a line. Returns false if it is not a line of this list. */
    bool remove(const Attribute &attribute) {
        return removeIf([&](const Attribute &one) { return one == attribute; }) != 0;
    }
    std::size_t removeAll(AttributeType type) {
        return removeIf([type](const Attribute &one) { return one.type() == type; });
    }
    /* By the name without a colon, compared with case. */
    std::size_t removeAll(std::string_view name) {
        return removeIf([name](const Attribute &one) { return one.name() == name; });
    }
    /* Removes every line for which unwanted(Attribute) is true; returns their number. It is called
     * for all lines, in order, before the first one is removed, and must not change the body. */
    template <class Unwanted>
    std::size_t removeIf(Unwanted unwanted) {
        return home_.eraseIf([&](const SDPAttr *one) { return unwanted(Attribute(one)); });
    }
    std::size_t clear() {
        return removeIf([](const Attribute &) { return true; });
    }

private:
    static constexpr std::size_t kAtEnd = static_cast<std::size_t>(-1);

    /* ---- Inserting a line before the one at an index ---- */

    std::size_t checked(std::size_t index) const {
        internal::insist(index <= Attributes(home_.get()).size());
        return index;
    }

    Status putRecord(std::size_t index, const SDPAttr &record) {
        const std::size_t at = index != kAtEnd ? index : Attributes(home_.get()).size();
        Status status = home_.insertItems(at, 1, internal::CloneOf(record));
        lookAt(home_.get());
        return status;
    }

    template <class... Values>
    requires requires(internal::Draft draft, const Values &...values) { draft.fill(values...); }
    Status put(std::size_t index, const Values &...values) {
        internal::Draft draft;
        const auto error = draft.fill(values...);
        return error ? Status(*error) : putRecord(index, draft.record);
    }

    Status put(std::size_t index, const Attribute &attribute) {
        return putRecord(index, *attribute.record());
    }

    Status put(std::size_t index, std::string_view text) {
        return putDecoded(index, internal::decodeLine(kBeforeText, text));
    }

    Status put(std::size_t index, std::string_view name, std::string_view value) {
        if (internal::isKnownName(name)) {
            return putDecoded(index, decode(name, value));
        }
        internal::Draft draft;
        const auto error = draft.fillNamed(name, value);
        return error ? Status(*error) : putRecord(index, draft.record);
    }

    Status putDecoded(std::size_t index, const Result<internal::BodyHandle> &decoded) {
        return decoded ? putRecord(index, *(*decoded)->pstAttrList->ppstAttrs[0])
                       : Status(decoded.error());
    }

    /* ---- Replacing lines by one ---- */

    template <class IsOld, class... Values>
    Status setDraft(IsOld isOld, const Values &...values) {
        internal::Draft draft;
        const auto error = draft.fill(values...);
        return error ? Status(*error) : setRecord(isOld, draft.record);
    }

    template <class IsOld>
    Status setRecord(IsOld isOld, const SDPAttr &record) {
        lookAt(home_.get());
        std::size_t at = 0;
        while (at < size() && !isOld((*this)[at])) {
            ++at;
        }
        if (at == size()) {
            return putRecord(at, record);
        }
        SDPAttr *const made = home_.memory().clone(record);
        if (made == nullptr) {
            return internal::noMemory();
        }
        const SDPAttr *const first = (*this)[at].record();
        removeIf([&](const Attribute &one) { return one.record() != first && isOld(one); });
        SDPAttr *&slot = home_.get()->ppstAttrs[at];
        home_.memory().free(std::exchange(slot, made));
        return {};
    }

    static constexpr std::string_view kBeforeText = "v=0\no=- 0 0 IN IP4 0\ns=-\nt=0 0\na=";

    static Result<internal::BodyHandle> decode(std::string_view name, std::string_view value) {
        std::string text(name);
        return internal::decodeLine(kBeforeText, text.append(1, ':').append(value));
    }

    Home home_;
};

namespace internal {

/* The lines for the members of a T38, in their usual order. */
class T38Lines {
public:
    explicit T38Lines(const T38 &all) {
        putGiven(AttributeType::T38FaxVersion, all.version);
        putGiven(AttributeType::T38MaxBitRate, all.maxBitRate);
        putFlag(AttributeType::T38FillBitRemoval, all.fillBitRemoval);
        putFlag(AttributeType::T38TranscodingMmr, all.transcodingMmr);
        putFlag(AttributeType::T38TranscodingJbig, all.transcodingJbig);
        putGiven(AttributeType::T38RateManagement, all.rateManagement);
        putGiven(AttributeType::T38MaxBuffer, all.maxBuffer);
        putGiven(AttributeType::T38MaxDatagram, all.maxDatagram);
        putGiven(AttributeType::T38UdpEc, all.errorCorrection);
    }

    std::size_t size() const { return count_; }

    std::size_t clone(Copier &copier, SDPAttr **slots) const {
        for (std::size_t i = 0; i < count_; ++i) {
            slots[i] = copier.clone(lines_[i]);
        }
        return count_;
    }

private:
    void put(AttributeType type, std::uint32_t value) {
        lines_[count_].ulAttrType = static_cast<std::uint32_t>(type);
        lines_[count_++].unAttrValue.ulValue = value;
    }
    template <class Value>
    void putGiven(AttributeType type, const std::optional<Value> &value) {
        if (value) {
            put(type, static_cast<std::uint32_t>(*value));
        }
    }
    void putFlag(AttributeType type, bool set) {
        if (set) {
            put(type, 1);
        }
    }

    std::array<SDPAttr, 9> lines_{};
    std::size_t count_ = 0;
};

} // namespace internal

inline Status AttributesEditor::setT38(const T38 &all) {
    for (const auto &error :
         {all.rateManagement ? internal::refusedCode(*all.rateManagement) : std::nullopt,
          all.errorCorrection ? internal::refusedCode(*all.errorCorrection) : std::nullopt}) {
        if (error) {
            return *error;
        }
    }
    const internal::T38Lines lines(all);
    lookAt(home_.get());
    std::size_t old = size();
    if (lines.size() != 0) {
        const auto clone = [&](internal::Copier &copier, SDPAttr **slots) {
            return lines.clone(copier, slots);
        };
        if (Status added = home_.insertItems(old, lines.size(), clone); !added) {
            return added;
        }
    }
    lookAt(home_.get());
    removeIf([&](const Attribute &one) {
        const bool present = old != 0;
        old -= present ? 1 : 0;
        return present && internal::isT38(one.type());
    });
    return {};
}

} // namespace v1
} // namespace sdpline

#endif

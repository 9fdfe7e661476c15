/*
 * editors.hpp: changing texts, times and media descriptions.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_EDITORS_HPP
#define SDPLINE_CPP_EDITORS_HPP

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "sdpline/cpp/attributeseditor.hpp"
#include "sdpline/cpp/detail/lines.hpp"
#include "sdpline/cpp/detail/memory.hpp"
#include "sdpline/cpp/media.hpp"

namespace sdpline {
inline namespace v1 {

/* The e=, p= or b= lines: a Texts range with operations that change it. */
class TextsEditor : public Texts {
    using Home = internal::ListHome<SDPStringList>;

public:
    explicit TextsEditor(Home home) : Texts(home.get()), home_(home) {}

    /* Adds a line at the end. */
    Status add(std::string_view text) { return insert(Texts(home_.get()).size(), text); }

    /* Adds a line before the one at the index. An index of size() adds it at the end; a larger one
     * ends the program. */
    Status insert(std::size_t index, std::string_view text) {
        internal::insist(index <= Texts(home_.get()).size());
        if (const auto error = internal::refusedText(text)) {
            return *error;
        }
        const SipString source = internal::lent(text);
        Status status = home_.insertItems(index, 1, internal::CloneOf(source));
        lookAt(home_.get());
        return status;
    }

    /* Removes every line for whose text unwanted(std::string_view) is true; returns their number.
     */
    template <class Unwanted>
    std::size_t removeIf(Unwanted unwanted) {
        return home_.eraseIf([&](const SipString *one) { return unwanted(internal::viewOf(one)); });
    }
    std::size_t clear() {
        return removeIf([](std::string_view) { return true; });
    }

private:
    Home home_;
};

/* One t= line: a Time with operations that change it. */
class TimeEditor : public Time {
public:
    TimeEditor(internal::Memory memory, SDPTimeField *record)
        : Time(record), memory_(memory), record_(record) {}

    /* Sets the times, in NTP seconds. */
    void set(std::uint32_t start, std::uint32_t stop) const {
        record_->ulStartTime = start;
        record_->ulStopTime = stop;
    }

    /* Adds an r= line after those of this t= line (RFC 4566 section 5.10): the repeat interval, the
     * active duration and one or more offsets from the start, in this order:
     *
     *     using sdpline::TimeUnit;
     *     time.addRepeat({{7, TimeUnit::Days}, {1, TimeUnit::Hours}, {0}, {25, TimeUnit::Hours}});
     */
    Status addRepeat(std::span<const TypedTime> times) const {
        return internal::addRepeat(memory_, *record_, times);
    }
    Status addRepeat(std::initializer_list<TypedTime> times) const {
        return addRepeat(std::span(times.begin(), times.size()));
    }

    /* Removes all r= lines; returns their number. */
    std::size_t clearRepeats() const {
        using internal::Slot;
        const Slot<SDPRepeatFieldSet> slot(record_, offsetof(SDPTimeField, pstRepeatFieldSet));
        return internal::ListHome<SDPRepeatFieldSet>(memory_, slot)
            .eraseIf([](const SDPRepeatField *) { return true; });
    }

    SDPTimeField *record() const { return record_; }

private:
    internal::Memory memory_;
    SDPTimeField *record_;
};

namespace internal {

struct MakeTimeEditor {
    Memory memory{};
    TimeEditor operator()(SDPTimeField *time) const { return {memory, time}; }
};

} // namespace internal

/* The t= lines: a range of TimeEditor with random access, with operations that change it. */
class TimesEditor : public ListView<SDPTimeSet, internal::MakeTimeEditor> {
public:
    TimesEditor(internal::Memory memory, SDPTimeSet *set)
        : ListView(set, {memory}), memory_(memory), set_(set) {}

    /* Adds a line at the end, in NTP seconds; back() is its editor, which adds r= lines. Without
     * any t= line the encoder writes "t=0 0"; of several it writes only the first one, with its r=
     * lines. */
    Status add(std::uint32_t start, std::uint32_t stop) {
        const SDPTimeField source = {start, stop, nullptr};
        return internal::insertItems(memory_, *set_, size(), 1, internal::CloneOf(source));
    }

    /* Removes all lines, with their r= lines; returns their number. */
    std::size_t clear() {
        return internal::eraseIf(memory_, *set_, [](const SDPTimeField *) { return true; });
    }

private:
    internal::Memory memory_;
    SDPTimeSet *set_;
};

/*
 * One media description: a Media with operations that change it. Each operation changes one line
 * or, if it fails, nothing. An editor is a reference: its copies change the same lines.
 */
class MediaEditor : public Media {
    template <class Record>
    using Slot = internal::Slot<Record>;

public:
    MediaEditor(internal::Memory memory, SDPMediaDesc *record)
        : Media(record), memory_(memory), record_(record) {}

    /* Sets the whole m= line. */
    Status setLine(const MediaLine &line) const {
        internal::MediaDraft draft;
        if (const auto error = draft.fill(line)) {
            return *error;
        }
        return internal::replace(memory_, draft.record, record_->stMediaField);
    }

    /* Set parts of the m= line. A value that does not fit the rest of the line is refused: port 0
     * must be set before the payload numbers are removed, and protocol and format can only be
     * changed together, by setLine(). */
    Status setPort(std::uint32_t port, std::uint32_t portCount = 1) const {
        MediaLine line = this->line();
        line.port = port;
        line.portCount = portCount;
        if (const auto error = internal::refusedLine(line)) {
            return *error;
        }
        record_->stMediaField.ulPort = port;
        record_->stMediaField.ulNoOfPorts = portCount > 1 ? portCount : 1;
        return {};
    }
    Status setPayloads(std::span<const std::uint32_t> payloads) const {
        MediaLine line = this->line();
        const bool had = line.format == Format::Payloads;
        line.format = Format::Payloads;
        line.payloads = payloads;
        if (!had) {
            return setLine(line);
        }
        if (const auto error = internal::refusedLine(line)) {
            return *error;
        }
        internal::Copier copier(memory_);
        const SDPRtpPayLoads fresh = copier.payloads(internal::recordOf(payloads));
        if (!copier.ok()) {
            return copier.error();
        }
        SDPRtpPayLoads &present = record_->stMediaField.stMediaFmt.unMediaFmt.stRtpPayLoads;
        memory_.release(present.pulPayLoads);
        present = fresh;
        return {};
    }
    Status setPayloads(std::initializer_list<std::uint32_t> payloads) const {
        return setPayloads(std::span(payloads.begin(), payloads.size()));
    }

    Status setInfo(std::string_view text) const {
        return internal::setText(memory_, infoSlot(), text);
    }
    void removeInfo() const { internal::removeLine(memory_, infoSlot()); }

    Status setConnection(const Connection &connection) const {
        return internal::setConnection(memory_, connectionSlot(), connection);
    }
    /* Sets an address, with "IN IP4" or "IN IP6", and without TTL and number of addresses. */
    Status setConnection(const Address &address) const {
        return internal::setConnection(memory_, connectionSlot(), address);
    }
    /* Sets it by its text after "c=", such as "IN IP4 192.0.2.1", which is decoded. */
    Status setConnection(std::string_view text) const {
        return internal::setConnection(memory_, connectionSlot(), text);
    }
    void removeConnection() const { internal::removeLine(memory_, connectionSlot()); }

    Status setKey(std::string_view text) const {
        return internal::setKey(memory_, keySlot(), text);
    }
    void removeKey() const { internal::removeLine(memory_, keySlot()); }

    TextsEditor bandwidths() const {
        const Slot<SDPStringList> slot(record_, offsetof(SDPMediaDesc, pstBandwidthList));
        return TextsEditor({memory_, slot});
    }

    AttributesEditor attributes() const {
        const Slot<SDPAttrList> slot(record_, offsetof(SDPMediaDesc, pstAttrList));
        return AttributesEditor({memory_, slot});
    }

    SDPMediaDesc *record() const { return record_; }

private:
    Slot<SipString> infoSlot() const { return {record_, offsetof(SDPMediaDesc, pstrMediaInfo)}; }
    Slot<SDPConnection> connectionSlot() const {
        return {record_, offsetof(SDPMediaDesc, pstConnection)};
    }
    Slot<SDPKey> keySlot() const { return {record_, offsetof(SDPMediaDesc, pstKey)}; }

    internal::Memory memory_;
    SDPMediaDesc *record_;
};

namespace internal {

struct MakeMediaEditor {
    Memory memory{};
    MediaEditor operator()(SDPMediaDesc *media) const { return {memory, media}; }
};

} // namespace internal

/* The media descriptions: a range of MediaEditor with random access, with operations that change
 * it. */
class MediaListEditor : public ListView<SDPMediaSet, internal::MakeMediaEditor> {
public:
    MediaListEditor(internal::Memory memory, SDPMediaSet *set)
        : ListView(set, {memory}), memory_(memory), set_(set) {}

    /* Adds a media description with only its m= line at the end, and returns its editor. */
    Result<MediaEditor> add(const MediaLine &line) { return put(size(), line); }
    /* The same by the text after "m=", such as "audio 49170 RTP/AVP 0 8", which is decoded. */
    Result<MediaEditor> add(std::string_view text) { return put(size(), text); }
    /* The same with options: "audio 9 UDP/TLS/RTP/SAVPF 111 0" needs rtpFamily. */
    Result<MediaEditor> add(std::string_view text, const DecodeOptions &options) {
        return put(size(), text, &options);
    }
    /* Adds a copy of a whole media description of this or another body. */
    Result<MediaEditor> add(const Media &media) { return put(size(), media); }
    /* The same with only those a= lines for which wanted(Attribute) is true. */
    template <class Wanted>
    Result<MediaEditor> add(const Media &media, Wanted wanted) {
        return put(size(), media, wanted);
    }

    /* The same as add(), but before the media description at the index. An index of size() adds it
     * at the end; a larger one ends the program. */
    Result<MediaEditor> insert(std::size_t index, const MediaLine &line) {
        return put(checked(index), line);
    }
    Result<MediaEditor> insert(std::size_t index, std::string_view text) {
        return put(checked(index), text);
    }
    Result<MediaEditor> insert(std::size_t index, std::string_view text,
                               const DecodeOptions &options) {
        return put(checked(index), text, &options);
    }
    Result<MediaEditor> insert(std::size_t index, const Media &media) {
        return put(checked(index), media);
    }
    template <class Wanted>
    Result<MediaEditor> insert(std::size_t index, const Media &media, Wanted wanted) {
        return put(checked(index), media, wanted);
    }

    /* Removes a media description with all its lines. Returns false if it is not one of this body.
     */
    bool remove(const Media &media) {
        return removeIf([&](const Media &one) { return one == media; }) != 0;
    }
    /* Removes every one for which unwanted(Media) is true; returns their number. */
    template <class Unwanted>
    std::size_t removeIf(Unwanted unwanted) {
        return internal::eraseIf(memory_, *set_,
                                 [&](const SDPMediaDesc *one) { return unwanted(Media(one)); });
    }
    std::size_t clear() {
        return removeIf([](const Media &) { return true; });
    }

private:
    std::size_t checked(std::size_t index) const {
        internal::insist(index <= size());
        return index;
    }

    Result<MediaEditor> put(std::size_t index, const MediaLine &line) {
        internal::MediaDraft draft;
        if (const auto error = draft.fill(line)) {
            return *error;
        }
        return putLine(index, draft.record);
    }

    Result<MediaEditor> put(std::size_t index, std::string_view text,
                            const DecodeOptions *options = nullptr) {
        auto decoded = internal::decodeLine("v=0\no=- 0 0 IN IP4 0\ns=-\nm=", text, options);
        if (!decoded) {
            return decoded.error();
        }
        return putLine(index, (*decoded)->stMediaSet.ppstMediaDescs[0]->stMediaField);
    }

    Result<MediaEditor> put(std::size_t index, const Media &media) {
        return made(index, internal::insertItems(memory_, *set_, index, 1,
                                                 internal::CloneOf(*media.record())));
    }

    template <class Wanted>
    Result<MediaEditor> put(std::size_t index, const Media &media, Wanted wanted) {
        const auto make = [&](internal::Copier &copier, SDPMediaDesc **slots) {
            slots[0] = copier.make<SDPMediaDesc>([&](SDPMediaDesc &to) {
                copier.fillAroundAttributes(*media.record(), to);
                to.pstAttrList =
                    copier.cloneSome(media.attributes().record(),
                                     [&](const SDPAttr &one) { return wanted(Attribute(&one)); });
            });
            return std::size_t{1};
        };
        return made(index, internal::insertItems(memory_, *set_, index, 1, make));
    }

    Result<MediaEditor> putLine(std::size_t index, const SDPMediaField &field) {
        const auto make = [&](internal::Copier &copier, SDPMediaDesc **slots) {
            slots[0] = copier.make<SDPMediaDesc>([&](SDPMediaDesc &to) {
                to = {};
                copier.fill(field, to.stMediaField);
            });
            return std::size_t{1};
        };
        return made(index, internal::insertItems(memory_, *set_, index, 1, make));
    }

    Result<MediaEditor> made(std::size_t index, const Status &status) const {
        if (!status) {
            return status.error();
        }
        return (*this)[index];
    }

    internal::Memory memory_;
    SDPMediaSet *set_;
};

} // namespace v1
} // namespace sdpline

#endif

/*
 * editors.hpp: texts, times and media descriptions, to change.
 *
 * Part of sdpline.hpp, whose conventions hold here.
 */
#ifndef SDPLINE_CPP_EDITORS_HPP
#define SDPLINE_CPP_EDITORS_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "sdpline/cpp/attributeseditor.hpp"
#include "sdpline/cpp/detail/lines.hpp"
#include "sdpline/cpp/detail/memory.hpp"
#include "sdpline/cpp/media.hpp"

namespace sdpline {
inline namespace v1 {

/* The e=, p= or b= lines. Everything that Texts answers, and: */
class TextsEditor : public Texts {
    using Home = internal::ListHome<SDPStringList>;

public:
    TextsEditor(Home home, std::uint32_t lineType)
        : Texts(home.get()), home_(home), lineType_(lineType) {}

    /* Adds a line at the end. */
    Status add(std::string_view text) {
        if (const auto error = internal::refusedText(text)) {
            return *error;
        }
        const SipString source = internal::lent(text);
        Status status = home_.append(
            1, [&](std::size_t) { return home_.memory().clone(lineType_, source); }, discard());
        lookAt(home_.get());
        return status;
    }

    /* Every line whose text unwanted(std::string_view) picks; answers how many. */
    template <class Unwanted>
    std::size_t removeIf(Unwanted unwanted) {
        return home_.eraseIf([&](const SipString *one) { return unwanted(internal::viewOf(one)); },
                             discard());
    }
    std::size_t clear() {
        return removeIf([](std::string_view) { return true; });
    }

private:
    internal::FreeLine discard() const { return {home_.memory(), lineType_}; }

    Home home_;
    std::uint32_t lineType_;
};

/* The t= lines. Everything that Times answers, and: */
class TimesEditor : public Times {
public:
    TimesEditor(internal::Memory memory, SDPTimeSet *set)
        : Times(set), memory_(memory), set_(set) {}

    /* Adds a line at the end, in NTP seconds. Without any, "t=0 0" is written; of several, the
     * encoder writes the first one only. */
    Status add(std::uint32_t start, std::uint32_t stop) {
        const SDPTimeField source = {start, stop, nullptr};
        return internal::append(
            memory_, *set_, 1, [&](std::size_t) { return memory_.clone(SDP_LINE_TIME, source); },
            discard());
    }

    /* Removes all, with their r= lines; answers how many. */
    std::size_t clear() {
        return internal::eraseIf(
            memory_, *set_, [](const SDPTimeField *) { return true; }, discard());
    }

private:
    internal::FreeLine discard() const { return {memory_, SDP_LINE_TIME}; }

    internal::Memory memory_;
    SDPTimeSet *set_;
};

/*
 * One media description. Everything that Media answers, and: each operation changes one line, all
 * of it or, when it fails, nothing. An editor is a reference: copies change the same lines.
 */
class MediaEditor : public Media {
    template <class Record>
    using Slot = internal::Slot<Record>;

public:
    MediaEditor(internal::Memory memory, SDPMediaDesc *record)
        : Media(record), memory_(memory), record_(record) {}

    /* The m= line as a whole. */
    Status setLine(const MediaLine &line) const {
        internal::MediaDraft draft;
        if (const auto error = draft.fill(line)) {
            return *error;
        }
        return memory_.replace(SDP_LINE_MEDIA, draft.record, record_->stMediaField);
    }

    /* Parts of it. What does not go with the rest of the line is refused: port 0 must be set
     * before the payloads go, and protocol and format are changed together, by setLine. */
    Status setPort(std::uint32_t port, std::uint32_t portCount = 1) const {
        MediaLine line = this->line();
        line.port = port;
        line.portCount = portCount;
        if (const auto error = internal::refusedLine(line)) {
            return *error;
        }
        record_->stMediaField.ulPort = port;
        record_->stMediaField.ulNoOfPorts = std::max(portCount, std::uint32_t{1});
        return {};
    }
    Status setPayloads(std::span<const std::uint32_t> payloads) const {
        MediaLine line = this->line();
        line.format = Format::Payloads;
        line.payloads = payloads;
        return setLine(line);
    }

    Status setInfo(std::string_view text) const {
        return internal::setText(memory_, infoSlot(), SDP_LINE_INFO, text);
    }
    void removeInfo() const { internal::removeLine(memory_, infoSlot(), SDP_LINE_INFO); }

    Status setConnection(const Connection &connection) const {
        return internal::setConnection(memory_, connectionSlot(), connection);
    }
    /* By its text behind "c=", "IN IP4 192.0.2.1", which is decoded. */
    Status setConnection(std::string_view text) const {
        return internal::setConnection(memory_, connectionSlot(), text);
    }
    void removeConnection() const {
        internal::removeLine(memory_, connectionSlot(), SDP_LINE_CONNECTION);
    }

    Status setKey(std::string_view text) const {
        return internal::setKey(memory_, keySlot(), text);
    }
    void removeKey() const { internal::removeLine(memory_, keySlot(), SDP_LINE_KEY); }

    TextsEditor bandwidths() const {
        const Slot<SDPStringList> slot(record_, offsetof(SDPMediaDesc, pstBandwidthList));
        return TextsEditor({memory_, slot}, SDP_LINE_BANDWIDTH);
    }

    AttributesEditor attributes() const {
        const Slot<SDPAttrList> slot(record_, offsetof(SDPMediaDesc, pstAttrList));
        return AttributesEditor({memory_, slot});
    }

    SDPMediaDesc *record() const { return record_; }

private:
    friend class MediaListEditor;

    Slot<SipString> infoSlot() const { return {record_, offsetof(SDPMediaDesc, pstrMediaInfo)}; }
    Slot<SDPConnection> connectionSlot() const {
        return {record_, offsetof(SDPMediaDesc, pstConnection)};
    }
    Slot<SDPKey> keySlot() const { return {record_, offsetof(SDPMediaDesc, pstKey)}; }

    /* Gives everything back, the record too. */
    void discard() const {
        removeInfo();
        removeConnection();
        removeKey();
        bandwidths().clear();
        memory_.release(record_->pstBandwidthList);
        attributes().clear();
        memory_.release(record_->pstAttrList);
        SdpClearLine(memory_.control(), SDP_LINE_MEDIA, &record_->stMediaField);
        memory_.release(record_);
    }

    internal::Memory memory_;
    SDPMediaDesc *record_;
};

namespace internal {

struct MakeMediaEditor {
    Memory memory{};
    MediaEditor operator()(SDPMediaDesc *media) const { return {memory, media}; }
};

} // namespace internal

/* The media descriptions: a range of MediaEditor with random access, and: */
class MediaListEditor : public ListView<SDPMediaSet, internal::MakeMediaEditor> {
public:
    MediaListEditor(internal::Memory memory, SDPMediaSet *set)
        : ListView(set, {memory}), memory_(memory), set_(set) {}

    /* Adds a media description that has only its m= line, at the end, and gives it to be filled. */
    Result<MediaEditor> add(const MediaLine &line) {
        internal::MediaDraft draft;
        if (const auto error = draft.fill(line)) {
            return *error;
        }
        return append(draft.record);
    }
    /* The same by the text behind "m=", "audio 49170 RTP/AVP 0 8", which is decoded. */
    Result<MediaEditor> add(std::string_view text) {
        auto decoded = internal::decodeLine("v=0\no=- 0 0 IN IP4 0\ns=-\nm=", text);
        if (!decoded) {
            return decoded.error();
        }
        return append((*decoded)->stMediaSet.ppstMediaDescs[0]->stMediaField);
    }

    /* With all its lines. False when it is no media description of this body. */
    bool remove(const Media &media) {
        return removeIf([&](const Media &one) { return one == media; }) != 0;
    }
    /* Every one that unwanted(Media) picks; answers how many. */
    template <class Unwanted>
    std::size_t removeIf(Unwanted unwanted) {
        return internal::eraseIf(
            memory_, *set_, [&](const SDPMediaDesc *one) { return unwanted(Media(one)); },
            [this](SDPMediaDesc *one) { MediaEditor(memory_, one).discard(); });
    }
    std::size_t clear() {
        return removeIf([](const Media &) { return true; });
    }

private:
    Result<MediaEditor> append(const SDPMediaField &field) {
        const auto make = [&](std::size_t) -> Result<SDPMediaDesc *> {
            auto *const media = memory_.allocate<SDPMediaDesc>();
            if (media == nullptr) {
                return internal::noMemory();
            }
            if (Status copied = memory_.replace(SDP_LINE_MEDIA, field, media->stMediaField);
                !copied) {
                memory_.release(media);
                return copied.error();
            }
            return media;
        };
        const auto discard = [this](SDPMediaDesc *one) { MediaEditor(memory_, one).discard(); };
        if (Status added = internal::append(memory_, *set_, 1, make, discard); !added) {
            return added.error();
        }
        return back();
    }

    internal::Memory memory_;
    SDPMediaSet *set_;
};

} // namespace v1
} // namespace sdpline

template <>
inline constexpr bool std::ranges::enable_borrowed_range<sdpline::TextsEditor> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<sdpline::TimesEditor> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<sdpline::MediaListEditor> = true;

#endif

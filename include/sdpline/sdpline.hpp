/*
 * sdpline.hpp: SDP bodies in C++20. Header-only over libsdpline; this page is the manual.
 *
 *     sdpline::Result<std::string> withoutVideo(std::string_view offer) {
 *         auto body = sdpline::Body::decode(offer);
 *         if (!body) {
 *             return body.error(); // 4:16: expected an octet of at most 255 ...
 *         }
 *         for (const sdpline::MediaEditor media : body->media()) {
 *             const auto direction = sdpline::reversed(body->directionOf(media));
 *             const sdpline::Status done = media.type() == "video"
 *                                              ? media.setPort(0)
 *                                              : media.attributes().setDirection(direction);
 *             if (!done) {
 *                 return done.error();
 *             }
 *         }
 *         return body->encode();
 *     }
 *
 * Conventions
 *  1. Ownership. A Body owns one memory block with all its lines. It can be moved but not copied;
 *     clone() makes a copy. Everything else is a small value that refers to a body: ranges (Texts,
 *     Times, MediaList, Attributes), lines (Media, Time, Attribute), editors of them, and
 *     std::string_view. A constant body returns views; any other one returns editors, which are
 *     views too.
 *  2. Lifetime. A value that refers to a body is valid as long as the body exists, even if that is
 *     moved, and until the line that it was read from is replaced or removed. Values of lines
 *     (RtpMap, Origin, MediaLine ...) are copies, but their texts refer to the body in the same
 *     way. Adding a line, or removing another line, invalidates iterators only.
 *  3. Results. An operation that can fail returns a Result, which is a value or an Error, or a
 *     Status, which is nothing or an Error. Nothing is thrown, except by std::string when the
 *     process heap is exhausted; the headers compile without exceptions and without RTTI.
 *  4. An operation that fails changes nothing. Its arguments may refer to the body that it changes.
 *  5. What is written can be read back: a value that no text can represent, or that a decoder of
 *     this library would not read as the same value, is refused (Fault::Argument) before it is
 *     stored: empty texts, texts of more than SDP_MAX_VALUE bytes, line ends and NULs in texts,
 *     blanks in words. So no name or text can insert another line. The exceptions are bodies of
 *     more than SDP_MAX_BODY bytes, t= lines after the first, flags of 0, and those of MediaLine.
 *  6. Preconditions. An index beyond a list, the value of a failed Result, and any use of a body
 *     after it was moved from (except destruction and assignment) end the program.
 *  7. Threads. One body belongs to one thread at a time; several threads may read a body that no
 *     thread changes (encode() only reads, except for rtpmap records without a name, which no
 *     decode makes: see SdpLibEncodeSdp). Decodes, also those of operations that take the text of a
 *     line, take turns by decodeMutex(). If libsdpline was built with SDPLINE_THREAD_LOCAL, the
 *     whole program must be compiled with SDPLINE_THREAD_LOCAL too, and each thread decodes for
 *     itself; otherwise it must not be.
 *  8. The C interface can be used too: record() of a body or a line is the record to read and, with
 *     the memory control of the body (pstMemCp), to change; adopt() and release() transfer the
 *     ownership of whole bodies. The configuration (line ends, T.38 flags, RTP/AVPF) is that of
 *     sdpline.h, for the process.
 *  9. Names. Only the names of the namespace sdpline are public; sdpline::internal and
 *     sdpline::tables may change at any time. The inline namespace v1 makes the symbols distinct
 *     from those of later versions.
 */
#ifndef SDPLINE_SDPLINE_HPP
#define SDPLINE_SDPLINE_HPP

#if !defined(__cpp_concepts) || __cpp_concepts < 201907L
#error "sdpline.hpp needs C++20 (-std=c++20); sdpline.h needs C11 or C++11"
#else

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "sdpline/cpp/attributes.hpp"
#include "sdpline/cpp/attributeseditor.hpp"
#include "sdpline/cpp/compare.hpp"
#include "sdpline/cpp/decodemutex.hpp"
#include "sdpline/cpp/decodeoptions.hpp"
#include "sdpline/cpp/detail/clone.hpp"
#include "sdpline/cpp/detail/decode.hpp"
#include "sdpline/cpp/detail/lines.hpp"
#include "sdpline/cpp/editors.hpp"
#include "sdpline/cpp/media.hpp"
#include "sdpline/cpp/result.hpp"
#include "sdpline/cpp/text.hpp"
#include "sdpline/cpp/values.hpp"
#include "sdpline/cpp/words.hpp"
#include "sdpline/sdpline.h"

namespace sdpline {
inline namespace v1 {

class Body {
    template <class Record>
    using Slot = internal::Slot<Record>;

public:
    /* ---- Construction and ownership ---------------------------------------------------------- */

    /* Decodes a body of at most SdpGetMaxBodySize() bytes. Text after the first empty line is not
     * read. The body does not refer to the text. An Error tells the line and column of the text
     * that was refused. */
    static Result<Body> decode(std::string_view text) {
        return ofHandle(internal::decodeText(text));
    }
    /* The same with options for this decode only: browsers' offers, bodies of up to 65535 bytes. */
    static Result<Body> decode(std::string_view text, const DecodeOptions &options) {
        return ofHandle(internal::decodeText(text, &options));
    }
    /* The same for bytes, as they come from a socket. */
    static Result<Body> decode(std::span<const std::byte> text) { return decode(textOf(text)); }
    static Result<Body> decode(std::span<const std::byte> text, const DecodeOptions &options) {
        return decode(textOf(text), options);
    }

    /* Makes a body with v=, o= and s=. It has no time, for which "t=0 0" is written. */
    static Result<Body> create(const Origin &origin = {}, std::string_view sessionName = "-") {
        if (const auto error = internal::refusedOrigin(origin)) {
            return *error;
        }
        if (const auto error = internal::refusedText(sessionName)) {
            return *error;
        }
        auto made = internal::newBody();
        if (!made) {
            return made.error();
        }
        SdpLine &line = **made;
        const internal::Memory memory(line.pstMemCp);
        if (!memory.copy(internal::recordOf(origin), line.stOrigin) ||
            !memory.copy(internal::lent(sessionName), line.strSessionName)) {
            return internal::noMemory();
        }
        return Body(*std::move(made));
    }

    /* Makes a copy of all records, also of those that are not written, in a new block. */
    Result<Body> clone() const { return ofHandle(internal::cloneBody(line())); }

    /* Takes over a body of the C interface, which must have a block. release() returns the body to
     * the caller, who releases it with SdpLibReleaseSdp. */
    static Body adopt(SdpLine *line) {
        internal::insist(line != nullptr && line->pstMemCp != nullptr);
        return Body(internal::BodyHandle(line));
    }
    SdpLine *release() && { return line_.release(); }

    SdpLine *record() & { return &line(); }
    const SdpLine *record() const & { return &line(); }

    /* ---- Text -------------------------------------------------------------------------------- */

    /* Writes the lines in the order v o s i u e p c b t z k a, then m i c b k a for each media. */
    Result<std::string> encode() const {
        SipStringBuffer *buffer = nullptr;
        if (const SDPResult code = SdpLibEncodeSdp(&line(), &buffer)) {
            return internal::libraryError(code);
        }
        SipRefString *text = nullptr;
        const std::uint32_t code = SipSbConvertToRefString(buffer, &text);
        SipSbReleaseStringBuffer(buffer);
        if (code != 0) {
            return internal::libraryError(code);
        }
        std::string copy(SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text));
        SipSmReleaseRefString(text);
        return copy;
    }

    /* Writes into a buffer, without a NUL, and returns the part that was written. For a text that
     * does not fit it returns an Error; the buffer then holds a part of the text. */
    Result<std::string_view> encode(std::span<char> buffer) const {
        constexpr std::size_t largest = std::numeric_limits<std::uint32_t>::max();
        const std::size_t size = buffer.size() < largest ? buffer.size() : largest;
        std::uint32_t written = 0;
        if (const SDPResult code =
                SdpLibSerializeSdp(&line(), reinterpret_cast<std::uint8_t *>(buffer.data()),
                                   static_cast<std::uint32_t>(size), &written)) {
            return internal::libraryError(code);
        }
        return std::string_view(buffer.data(), written);
    }

    /* ---- Reading lines ----------------------------------------------------------------------- */

    std::uint32_t version() const { return line().ulProtoVersion; }
    Origin origin() const & { return internal::originOf(line().stOrigin); }
    std::string_view sessionName() const & { return internal::viewOf(line().strSessionName); }
    std::optional<std::string_view> info() const & {
        return internal::optionalViewOf(line().pstrSessionInfo);
    }
    std::optional<std::string_view> uri() const & {
        return internal::optionalViewOf(line().pstrUri);
    }
    Texts emails() const & { return Texts(line().pstEmailList); }
    Texts phones() const & { return Texts(line().pstPhoneList); }
    std::optional<Connection> connection() const & {
        return internal::connectionOf(line().pstConnection);
    }
    Texts bandwidths() const & { return Texts(line().pstBandwidthList); }
    Times times() const & { return Times(&line().stTimeSet); }
    std::optional<std::string_view> zone() const & {
        return internal::optionalViewOf(line().pstrTimeZone);
    }
    std::optional<std::string_view> key() const & { return internal::keyOf(line().pstKey); }
    Attributes attributes() const & { return Attributes(line().pstAttrList); }
    MediaList media() const & { return MediaList(&line().stMediaSet); }

    /* What applies to a media description of this body: its own line, else the session's. Without
     * either, the direction is SendRecv (RFC 3264 section 5.1). */
    std::optional<Connection> connectionOf(const Media &media) const & {
        const auto ofMedia = media.connection();
        return ofMedia ? ofMedia : connection();
    }
    Direction directionOf(const Media &media) const {
        const auto ofMedia = media.attributes().direction();
        return ofMedia ? *ofMedia : attributes().direction().value_or(Direction::SendRecv);
    }

    /* Views of a temporary body would be invalid at once, and do not compile. Give the body a name.
     */
    Origin origin() const && = delete;
    std::string_view sessionName() const && = delete;
    std::optional<std::string_view> info() const && = delete;
    std::optional<std::string_view> uri() const && = delete;
    Texts emails() const && = delete;
    Texts phones() const && = delete;
    std::optional<Connection> connection() const && = delete;
    Texts bandwidths() const && = delete;
    Times times() const && = delete;
    std::optional<std::string_view> zone() const && = delete;
    std::optional<std::string_view> key() const && = delete;
    Attributes attributes() const && = delete;
    MediaList media() const && = delete;
    std::optional<Connection> connectionOf(const Media &media) const && = delete;
    const SdpLine *record() const && = delete;

    /* ---- Changing lines ---------------------------------------------------------------------- */

    Status setOrigin(const Origin &origin) {
        if (const auto error = internal::refusedOrigin(origin)) {
            return *error;
        }
        return internal::replace(memory(), internal::recordOf(origin), line().stOrigin);
    }

    /* The text must not be empty; without a name it is a blank or "-". */
    Status setSessionName(std::string_view text) {
        if (const auto error = internal::refusedText(text)) {
            return *error;
        }
        return internal::replace(memory(), internal::lent(text), line().strSessionName);
    }

    Status setInfo(std::string_view text) { return internal::setText(memory(), infoSlot(), text); }
    void removeInfo() { internal::removeLine(memory(), infoSlot()); }

    Status setUri(std::string_view text) { return internal::setText(memory(), uriSlot(), text); }
    void removeUri() { internal::removeLine(memory(), uriSlot()); }

    TextsEditor emails() & { return texts(offsetof(SdpLine, pstEmailList)); }
    TextsEditor phones() & { return texts(offsetof(SdpLine, pstPhoneList)); }

    Status setConnection(const Connection &connection) {
        return internal::setConnection(memory(), connectionSlot(), connection);
    }
    /* Sets an address, with "IN IP4" or "IN IP6", and without TTL and number of addresses. */
    Status setConnection(const Address &address) {
        return internal::setConnection(memory(), connectionSlot(), address);
    }
    /* Sets it by its text after "c=", such as "IN IP4 192.0.2.1", which is decoded. */
    Status setConnection(std::string_view text) {
        return internal::setConnection(memory(), connectionSlot(), text);
    }
    void removeConnection() { internal::removeLine(memory(), connectionSlot()); }

    TextsEditor bandwidths() & { return texts(offsetof(SdpLine, pstBandwidthList)); }
    TimesEditor times() & { return {memory(), &line().stTimeSet}; }

    Status setZone(std::string_view text) { return internal::setText(memory(), zoneSlot(), text); }
    void removeZone() { internal::removeLine(memory(), zoneSlot()); }

    Status setKey(std::string_view text) { return internal::setKey(memory(), keySlot(), text); }
    void removeKey() { internal::removeLine(memory(), keySlot()); }

    AttributesEditor attributes() & {
        const Slot<SDPAttrList> slot(&line(), offsetof(SdpLine, pstAttrList));
        return AttributesEditor({memory(), slot});
    }

    MediaListEditor media() & { return {memory(), &line().stMediaSet}; }

private:
    explicit Body(internal::BodyHandle line) : line_(std::move(line)) {}

    static Result<Body> ofHandle(Result<internal::BodyHandle> made) {
        if (!made) {
            return made.error();
        }
        return Body(*std::move(made));
    }

    static std::string_view textOf(std::span<const std::byte> bytes) {
        return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
    }

    /* Not const, because the encoder takes records that it may change. */
    SdpLine &line() const {
        internal::insist(line_.get() != nullptr);
        return *line_;
    }

    internal::Memory memory() const { return internal::Memory(line().pstMemCp); }

    TextsEditor texts(std::size_t offset) {
        return TextsEditor({memory(), Slot<SDPStringList>(&line(), offset)});
    }

    Slot<SipString> infoSlot() { return {&line(), offsetof(SdpLine, pstrSessionInfo)}; }
    Slot<SipString> uriSlot() { return {&line(), offsetof(SdpLine, pstrUri)}; }
    Slot<SipString> zoneSlot() { return {&line(), offsetof(SdpLine, pstrTimeZone)}; }
    Slot<SDPConnection> connectionSlot() { return {&line(), offsetof(SdpLine, pstConnection)}; }
    Slot<SDPKey> keySlot() { return {&line(), offsetof(SdpLine, pstKey)}; }

    internal::BodyHandle line_;
};

/* Whether two bodies have the same content: see compare.hpp. The version of o= is compared too. */
inline bool sameContent(const Body &one, const Body &two) {
    return one.version() == two.version() && one.origin() == two.origin() &&
           one.sessionName() == two.sessionName() && one.info() == two.info() &&
           one.uri() == two.uri() && sameContent(one.emails(), two.emails()) &&
           sameContent(one.phones(), two.phones()) && one.connection() == two.connection() &&
           sameContent(one.bandwidths(), two.bandwidths()) &&
           internal::sameItems(one.times(), two.times(),
                               [](auto a, auto b) { return sameContent(a, b); }) &&
           one.zone() == two.zone() && one.key() == two.key() &&
           sameContent(one.attributes(), two.attributes()) &&
           internal::sameItems(one.media(), two.media(),
                               [](auto a, auto b) { return sameContent(a, b); });
}
inline bool operator==(const Body &one, const Body &two) {
    return sameContent(one, two);
}

/* The text of the body or, in brackets, the reason why it cannot be written. */
inline std::string toText(const Body &body) {
    const auto text = body.encode();
    return text ? *text : '[' + std::string(text.error().sentence) + ']';
}

} // namespace v1
} // namespace sdpline

#endif
#endif

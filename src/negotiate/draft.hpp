// A draft of a body: records that refer to texts of the input bodies and of the arena. build()
// makes a body of it.
#pragma once

#include <cstdint>

#include "negotiate/memory.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

struct MediaDraft {
    explicit MediaDraft(Arena &arena) : attributes(arena) {}

    SDPMediaField line = {};
    const SipString *info = nullptr;
    const SDPConnection *connection = nullptr;
    const SDPStringList *bandwidths = nullptr;
    const SDPKey *key = nullptr;
    Growing<SDPAttr> attributes;
};

struct BodyDraft {
    explicit BodyDraft(Arena &arena) : attributes(arena), media(arena) {}

    SDPOrigin origin = {};
    SipString name = {};
    const SipString *info = nullptr;
    const SipString *uri = nullptr;
    const SDPStringList *emails = nullptr;
    const SDPStringList *phones = nullptr;
    const SDPConnection *connection = nullptr;
    const SDPStringList *bandwidths = nullptr;
    const SDPTimeSet *times = nullptr; // null: t=0 0
    const SipString *zone = nullptr;
    const SDPKey *key = nullptr;
    Growing<SDPAttr> attributes;
    Growing<MediaDraft> media;
};

// Copy all lines of a body's session, or of a media description, to a draft.
void draftSession(const SdpLine &body, BodyDraft &draft);
MediaDraft draftOf(const SDPMediaDesc &media, Arena &arena);

// Makes a copy of a body. Returns Reason::None, or NoMemory.
Reason copyBody(const SdpLine &body, SdpLine **copy);

// Make drafts of attributes. Values are copied into the arena; a value that is too long for a line
// sets Arena::tooLong.
SDPAttr numberLine(uint32_t type, uint32_t value);
SDPAttr flagLine(uint32_t type);
SDPAttr textLine(Arena &arena, uint32_t type, const Text &value);
SDPAttr otherLine(Arena &arena, std::string_view name, const Text &value);
SDPAttr otherFlag(Arena &arena, std::string_view name);

// Makes a body in a new block. Returns Reason::None, or the reason of the failure.
Reason build(const BodyDraft &draft, SdpLine **body);

// The text of a body; empty if it is longer than a decoder reads, or without memory.
std::string_view textOf(const SdpLine &body, Arena &arena);

// The text after the o= line.
std::string_view afterOrigin(std::string_view text);

// Makes the body of a draft. With a `previous` body, whose o= line the draft has, the version is
// raised if the bodies differ. A body that is longer than a decoder reads is refused.
Reason finish(const BodyDraft &draft, const SdpLine *previous, Report &report, SdpLine **body);

} // namespace sdpline::negotiate

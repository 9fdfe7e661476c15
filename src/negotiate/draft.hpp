// A body before it is made: records that refer to texts of the inputs and of the arena.
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

// All lines of a body; of a media description.
void draftSession(const SdpLine &body, BodyDraft &draft);
MediaDraft draftOf(const SDPMediaDesc &media, Arena &arena);

// A copy of a body. Reason::None, or NoMemory.
Reason copyBody(const SdpLine &body, SdpLine **copy);

// Drafts of attributes. Texts are copied into the arena; one that is too long for a line makes the
// list's body too long.
SDPAttr numberLine(uint32_t type, uint32_t value);
SDPAttr flagLine(uint32_t type);
SDPAttr textLine(Arena &arena, uint32_t type, const Text &value);
SDPAttr otherLine(Arena &arena, std::string_view name, const Text &value);
SDPAttr otherFlag(Arena &arena, std::string_view name);

// A body in a block of its own. Reason::None, or why there is none.
Reason build(const BodyDraft &draft, SdpLine **body);

// The text of a body; nothing for one that is longer than a decoder reads, or without memory.
std::string_view textOf(const SdpLine &body, Arena &arena);

// The text after the o= line.
std::string_view afterOrigin(std::string_view text);

// Builds the body of a draft that takes the o= line of `previous`, null for none over, with the
// next version where it differs. A body that is longer than a decoder reads is refused.
Reason finish(const BodyDraft &draft, const SdpLine *previous, Report &report, SdpLine **body);

} // namespace sdpline::negotiate

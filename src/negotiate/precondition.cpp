// Preconditions: the status table of the peer is converted to our view and merged with ours.
//
//     offer             a=curr:qos local send      their local segment is our remote one, and their
//                       a=des:qos mandatory ...    sending is our receiving
//     answer            a=curr:qos remote recv
#include "negotiate/precondition.hpp"

#include <algorithm>

#include "negotiate/attributes.hpp"
#include "negotiate/direction.hpp"

namespace sdpline::negotiate {

namespace {

constexpr uint32_t kBoth = kSends | kReceives;
static_assert(SDP_DIR_SEND == kSends && SDP_DIR_RECV == kReceives && SDP_DIR_SENDRECV == kBoth);

// The rank of a strength tag: 0 for none given, then "none", "optional", "mandatory".
constexpr uint8_t kNone = 1;
constexpr uint8_t kOptional = 2;
constexpr uint8_t kMandatory = 3;

uint8_t rankOf(uint32_t strength) {
    switch (strength) {
    case SDP_STRENGTH_MANDATORY: return kMandatory;
    case SDP_STRENGTH_OPTIONAL: return kOptional;
    default: return kNone;
    }
}
uint32_t strengthOf(uint8_t rank) {
    return rank == kMandatory  ? SDP_STRENGTH_MANDATORY
           : rank == kOptional ? SDP_STRENGTH_OPTIONAL
                               : SDP_STRENGTH_NONE;
}

// The row of a table: one segment of one precondition type, for both directions.
struct Segment {
    SDPPreconditionS type;
    uint32_t status;
    bool hasCurrent;
    bool failed;
    uint32_t current;   // flows
    uint32_t confirmed; // flows that a=conf asks for
    uint8_t desired[2]; // rank of sending, of receiving

    bool wanted() const { return desired[0] != 0 || desired[1] != 0; }
    uint32_t mandatory() const {
        return (desired[0] == kMandatory ? kSends : 0) | (desired[1] == kMandatory ? kReceives : 0);
    }
};

std::string_view typeWord(const SDPPreconditionS &type) {
    return type.enPreconditionType == SDP_PRECONDITION_QOS ? std::string_view("qos")
                                                           : viewOf(type.pstrOtherPrecondition);
}

bool sameType(const SDPPreconditionS &one, const SDPPreconditionS &two) {
    const bool qos = one.enPreconditionType == SDP_PRECONDITION_QOS;
    return (qos && two.enPreconditionType == SDP_PRECONDITION_QOS) ||
           sameWord(typeWord(one), typeWord(two));
}

constexpr uint32_t kMostRows = 12;

struct Table {
    Segment rows[kMostRows];
    uint32_t count = 0;

    Segment *find(const SDPPreconditionS &type, uint32_t status) {
        return std::find_if(rows, rows + count, [&](const Segment &row) {
            return row.status == status && sameType(row.type, type);
        });
    }
    bool has(const Segment *row) const { return row != rows + count; }

    // Returns that row, or adds it; null if there are too many rows.
    Segment *make(const SDPPreconditionS &type, uint32_t status) {
        Segment *const row = find(type, status);
        if (has(row)) {
            return row;
        }
        if (count == kMostRows) {
            return nullptr;
        }
        rows[count] = {};
        rows[count].type = type;
        rows[count].status = status;
        return &rows[count++];
    }

    bool wanted() const {
        return std::any_of(rows, rows + count, [](const Segment &row) { return row.wanted(); });
    }
    bool knows(const SDPPreconditionS &type) const {
        return std::any_of(rows, rows + count, [&](const Segment &row) {
            return row.wanted() && sameType(row.type, type);
        });
    }
    // Whether the table has the type with end-to-end status, or with segmented status.
    bool hasKind(const SDPPreconditionS &type, bool endToEnd) const {
        return std::any_of(rows, rows + count, [&](const Segment &row) {
            return (row.status == SDP_STATUS_E2E) == endToEnd && sameType(row.type, type);
        });
    }
};

void desire(Segment &row, uint32_t flows, uint32_t strength) {
    const uint8_t rank = rankOf(strength);
    for (const uint32_t way : {0u, 1u}) {
        if ((flows >> way & 1) != 0 || flows == 0) {
            row.desired[way] = std::max(row.desired[way], rank);
        }
    }
    row.failed = row.failed || strength == SDP_STRENGTH_FAILURE;
}

Table tableOf(const SDPMediaDesc &media) {
    Table table;
    for (const SDPAttr *const attribute : attributesOf(media.pstAttrList)) {
        if (!isPrecondition(*attribute)) {
            continue;
        }
        const SDPRsrcMgmtStatus &line = attribute->unAttrValue.stRsrcMgmtStatus;
        Segment *const row = table.make(line.stPrecondition, line.enStatusType);
        if (row == nullptr) {
            continue;
        }
        if (attribute->ulAttrType == SDP_ATTR_DES) {
            desire(*row, line.enDirTag, line.enStrengthTag);
        } else if (attribute->ulAttrType == SDP_ATTR_CURR) {
            row->hasCurrent = true;
            row->current |= line.enDirTag & kBoth;
        } else {
            row->confirmed |= line.enDirTag & kBoth;
        }
    }
    return table;
}

// A test without a table, since most streams have no preconditions.
bool hasPreconditions(const SDPMediaDesc &media) {
    const AttributeSpan all = attributesOf(media.pstAttrList);
    return std::any_of(all.begin(), all.end(),
                       [](const SDPAttr *one) { return isPrecondition(*one); });
}

// Whether a stream could be rejected: it has another type than "qos", or a strength of "failure".
// If neither side has one, no table is needed.
bool mayReject(const SDPMediaDesc &media) {
    const AttributeSpan all = attributesOf(media.pstAttrList);
    return std::any_of(all.begin(), all.end(), [](const SDPAttr *one) {
        const SDPRsrcMgmtStatus &line = one->unAttrValue.stRsrcMgmtStatus;
        return isPrecondition(*one) &&
               (line.stPrecondition.enPreconditionType != SDP_PRECONDITION_QOS ||
                line.enStrengthTag == SDP_STRENGTH_FAILURE);
    });
}

uint32_t otherSegment(uint32_t status) {
    return status == SDP_STATUS_LOCAL    ? uint32_t{SDP_STATUS_REMOTE}
           : status == SDP_STATUS_REMOTE ? uint32_t{SDP_STATUS_LOCAL}
                                         : status;
}

// A row as the other side sees it.
Segment turnedRow(const Segment &row) {
    Segment result = row;
    result.status = otherSegment(row.status);
    result.current = turned(row.current);
    result.confirmed = 0;
    std::swap(result.desired[0], result.desired[1]);
    return result;
}

// The current status of our segment is ours, that of the peer's segment is the peer's; end to end,
// both are combined.
void addCurrent(Segment &row, const Segment &ours) {
    if (row.status == SDP_STATUS_E2E) {
        row.current |= ours.current;
    } else if (row.status == SDP_STATUS_LOCAL ? ours.hasCurrent : !row.hasCurrent) {
        row.current = ours.current;
    }
    row.hasCurrent = row.hasCurrent || ours.hasCurrent;
}

// A strength may be raised, but not lowered (RFC 3312 section 5.2).
void addDesired(Segment &row, const Segment &ours) {
    for (const uint32_t way : {0u, 1u}) {
        row.desired[way] = std::max(row.desired[way], ours.desired[way]);
    }
}

// Merges the tables of both sides in our view; or returns the reason to reject the stream.
Reason merge(const Table &theirs, Table &ours, Table &merged, std::string_view &type) {
    for (uint32_t i = 0; i < theirs.count; ++i) {
        const Segment row = turnedRow(theirs.rows[i]);
        const Segment *const own = ours.find(row.type, row.status);
        if (!ours.knows(row.type)) {
            if (row.mandatory() != 0) {
                type = typeWord(row.type);
                return Reason::PreconditionUnknown;
            }
            continue;
        }
        if (ours.has(own) && own->failed && row.mandatory() != 0) {
            type = typeWord(row.type);
            return Reason::PreconditionFailed;
        }
        Segment &target = *merged.make(row.type, row.status);
        target = row;
        if (ours.has(own)) {
            addCurrent(target, *own);
            addDesired(target, *own);
        }
    }
    for (uint32_t i = 0; i < ours.count; ++i) {
        const Segment &row = ours.rows[i];
        const bool same = merged.hasKind(row.type, row.status == SDP_STATUS_E2E);
        if (same && !merged.has(merged.find(row.type, row.status))) {
            if (Segment *const added = merged.make(row.type, row.status)) {
                *added = row;
            }
        }
    }
    return Reason::None;
}

uint32_t stateOf(const Table &table) {
    const bool met = std::all_of(table.rows, table.rows + table.count, [](const Segment &row) {
        return (row.mandatory() & ~row.current) == 0;
    });
    return met ? SDP_NEGOTIATE_PRECONDITIONS_MET : SDP_NEGOTIATE_PRECONDITIONS_UNMET;
}

SDPAttr lineOf(uint32_t type, const Segment &row, uint32_t flows, uint8_t rank = kMandatory) {
    SDPAttr attribute = {};
    attribute.ulAttrType = type;
    attribute.unAttrValue.stRsrcMgmtStatus = {row.type, row.status, strengthOf(rank), flows};
    return attribute;
}

void addDesiredLines(const Segment &row, Growing<SDPAttr> &lines) {
    const uint8_t send = row.desired[0];
    const uint8_t receive = row.desired[1];
    if (send == receive && send != 0) {
        lines.add(lineOf(SDP_ATTR_DES, row, kBoth, send));
        return;
    }
    if (send != 0) {
        lines.add(lineOf(SDP_ATTR_DES, row, kSends, send));
    }
    if (receive != 0) {
        lines.add(lineOf(SDP_ATTR_DES, row, kReceives, receive));
    }
}

// The flows that the peer is asked to confirm: those of our a=conf lines, else those that only the
// peer can know: its segment, or end to end what we receive.
uint32_t confirmedFlows(const Segment &row, bool asked, const Segment *ours) {
    if (asked) {
        return ours != nullptr ? ours->confirmed & ~row.current : 0;
    }
    const uint32_t missing = row.mandatory() & ~row.current;
    return row.status == SDP_STATUS_LOCAL ? 0
           : row.status == SDP_STATUS_E2E ? missing & kReceives
                                          : missing;
}

bool asksToConfirm(const Table &table) {
    return std::any_of(table.rows, table.rows + table.count,
                       [](const Segment &row) { return row.confirmed != 0; });
}

// Calls use(row) for each row: end to end first, then our segment, then theirs.
template <class Use>
void eachInOrder(const Table &table, Use use) {
    for (const uint32_t status : {SDP_STATUS_E2E, SDP_STATUS_LOCAL, SDP_STATUS_REMOTE}) {
        for (uint32_t i = 0; i < table.count; ++i) {
            if (table.rows[i].status == status) {
                use(table.rows[i]);
            }
        }
    }
}

void addLines(const Table &table, Table &ours, Growing<SDPAttr> &lines) {
    const bool asked = asksToConfirm(ours);
    eachInOrder(table,
                [&](const Segment &row) { lines.add(lineOf(SDP_ATTR_CURR, row, row.current)); });
    eachInOrder(table, [&](const Segment &row) { addDesiredLines(row, lines); });
    eachInOrder(table, [&](const Segment &row) {
        const Segment *const own = ours.find(row.type, row.status);
        const uint32_t flows = confirmedFlows(row, asked, ours.has(own) ? own : nullptr);
        if (flows != 0) {
            lines.add(lineOf(SDP_ATTR_CONF, row, flows));
        }
    });
}

} // namespace

PreconditionAnswer answerPreconditions(const SDPMediaDesc &offered, const SDPMediaDesc &ours,
                                       uint32_t stream, Report &report, Growing<SDPAttr> *lines) {
    PreconditionAnswer answer;
    if (lines == nullptr ? !mayReject(offered) && !mayReject(ours)
                         : !hasPreconditions(offered) && !hasPreconditions(ours)) {
        return answer;
    }
    const Table theirs = tableOf(offered);
    Table own = tableOf(ours);
    if (!theirs.wanted() || !own.wanted()) {
        if (lines != nullptr && theirs.wanted() != own.wanted()) {
            report.add(Reason::PreconditionsIgnored, stream);
        }
        return answer;
    }
    Table merged;
    answer.rejected = merge(theirs, own, merged, answer.type);
    if (answer.rejected != Reason::None || lines == nullptr || merged.count == 0) {
        return answer;
    }
    addLines(merged, own, *lines);
    answer.state = stateOf(merged);
    answer.confirm = asksToConfirm(theirs);
    report.add(answer.state == SDP_NEGOTIATE_PRECONDITIONS_MET ? Reason::PreconditionsMet
                                                               : Reason::PreconditionsUnmet,
               stream);
    if (answer.confirm) {
        report.add(Reason::ConfirmationRequested, stream);
    }
    return answer;
}

PreconditionAnswer agreePreconditions(const SDPMediaDesc &peer, const SDPMediaDesc &ours) {
    const Table theirs = tableOf(peer);
    Table own = tableOf(ours);
    Table merged;
    PreconditionAnswer answer;
    if (theirs.wanted() && own.wanted() &&
        merge(theirs, own, merged, answer.type) == Reason::None) {
        answer.state = stateOf(merged);
        answer.confirm = asksToConfirm(theirs);
    }
    return answer;
}

void checkPreconditions(const SDPMediaDesc &offered, const SDPMediaDesc &answered, uint32_t stream,
                        Report &report) {
    const Table theirs = tableOf(offered);
    Table answer = tableOf(answered);
    if (!theirs.wanted() || !answer.wanted()) {
        return;
    }
    for (uint32_t i = 0; i < theirs.count; ++i) {
        const Segment row = turnedRow(theirs.rows[i]);
        const Segment *const own = answer.find(row.type, row.status);
        if (!answer.knows(row.type) && row.mandatory() == 0) {
            continue; // a type that the answerer does not have
        }
        for (const uint32_t way : {0u, 1u}) {
            const uint8_t rank = answer.has(own) ? own->desired[way] : uint8_t{0};
            if (row.desired[way] > std::max(rank, kNone)) {
                report.add(Reason::PreconditionLowered, stream, typeWord(row.type));
                return;
            }
        }
    }
}

void carryCurrent(const SDPMediaDesc &previous, const SDPMediaDesc &wanted,
                  Growing<SDPAttr> &lines) {
    const Table before = tableOf(previous);
    Table now = tableOf(wanted);
    for (uint32_t i = 0; now.wanted() && i < before.count; ++i) {
        const Segment &row = before.rows[i];
        const Segment *const own = now.find(row.type, row.status);
        if (row.hasCurrent && now.knows(row.type) && !(now.has(own) && own->hasCurrent) &&
            now.hasKind(row.type, row.status == SDP_STATUS_E2E)) {
            lines.add(lineOf(SDP_ATTR_CURR, row, row.current));
        }
    }
}

} // namespace sdpline::negotiate

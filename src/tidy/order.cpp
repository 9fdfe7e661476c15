// Repairs of the order of lines (RFC 4566 section 5): lines that belong to the session or to a
// media description, duplicate and misplaced lines, and missing lines.
#include "tidy/sequence.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

// Lines between s= and t= that may be followed neither by an m= line nor by an attribute.
constexpr uint32_t kNeedTime = lettersOf("iuepb");
// Lines after t=.
constexpr uint32_t kAfterTime = lettersOf("zka");
constexpr uint32_t kOfSession = lettersOf("osueptrz");

// The session, or one media description: its lines, and those that are moved to it.
class Section {
public:
    Section(Workspace &work, const Order &order) : work_(work), order_(order) {}

    // For a kind of line that belongs here.
    bool has(char key) const { return first(key) != nullptr; }
    const Line *first(char key) const { return seen_[order_.rankOf(key)]; }

    // Adds a line of this section, in the order of the text. If its kind may occur once, a second
    // one may be removed, or cause the first one to be removed.
    void add(Line &line) {
        if (line.key == 'a' && !line.aside) {
            return addAttribute(line);
        }
        line.rank = order_.rankOf(line.key == 'r' && has('t') ? 't' : line.key);
        // With several t= lines it is not known to which an r= line before them belongs.
        known_ = known_ && line.rank < kRanks && !(line.key == 't' && has('t') && has('r'));
        if (line.rank < kRanks && isOneOf(kSingle, line.key)) {
            Line *&first = seen_[line.rank];
            if (first != nullptr && isLeftOut(*first, line)) {
                return;
            }
            first = &line;
        } else if (line.rank < kRanks) {
            seen_[line.rank] = &line;
        }
        if (line.aside) {
            return aside_.append(line);
        }
        if (line.rank < kRanks) {
            late_ = late_ || line.rank < highest_;
            highest_ = line.rank > highest_ ? line.rank : highest_;
        }
        lines_.append(line);
    }

    void addMissing(char key, Rule rule, std::string_view content, const Line &before) {
        Line *const line = work_.newLine(content, before);
        if (line != nullptr) {
            line->key = key;
            work_.report(rule, *line);
            add(*line);
        }
    }

    // The key of the line that is the last one of this section in their order.
    char lastKey() const {
        for (size_t rank = order_.keys.size(); rank-- > 0;) {
            if (seen_[rank] != nullptr) {
                return order_.keys[rank];
            }
        }
        return '\0';
    }

    // Returns all lines in their order, as far as the wanted rules allow.
    LineList inOrder() {
        if (leftOut_) {
            dropLeftOut(lines_);
            dropLeftOut(aside_);
        }
        if (late_ && known_ && work_.wants(Rule::LineOrder)) {
            reportLate();
            lines_ = sorted(lines_);
        }
        return aside_.empty() ? lines_ : merged();
    }

private:
    // A fast path: most lines are attributes, which come last and so are never late.
    void addAttribute(Line &line) {
        line.rank = highest_ = order_.last();
        seen_[line.rank] = &line;
        lines_.append(line);
    }

    // For two lines of a kind that may occur once: returns true if the later one is removed.
    bool isLeftOut(Line &first, Line &later) {
        join(work_, first);
        join(work_, later);
        if (first.text == later.text) {
            return drop(Rule::LineTwice, later);
        }
        if (later.key != 'c') {
            return drop(Rule::LineAgain, later);
        }
        leftOut_ = drop(Rule::ConnAgain, first) || leftOut_;
        return false;
    }

    bool drop(Rule rule, Line &line) {
        if (!work_.wants(rule)) {
            return false;
        }
        work_.report(rule, line);
        leaveOut(line);
        return true;
    }

    static void dropLeftOut(LineList &list) {
        LineList kept;
        for (Line *line = list.first; line != nullptr;) {
            Line *const next = line->next;
            if (line->rank != kNotWritten) {
                kept.append(*line);
            }
            line = next;
        }
        list = kept;
    }

    void reportLate() {
        uint8_t highest = 0;
        for (const Line *line = lines_.first; line != nullptr; line = line->next) {
            if (line->rank < highest) {
                work_.report(Rule::LineOrder, *line);
            }
            highest = line->rank > highest ? line->rank : highest;
        }
    }

    static LineList sorted(LineList list) {
        LineList kinds[kRanks + 1];
        for (Line *line = list.first; line != nullptr;) {
            Line *const next = line->next;
            kinds[line->rank].append(*line);
            line = next;
        }
        LineList all;
        for (const LineList &kind : kinds) {
            all.append(kind);
        }
        return all;
    }

    // Inserts the lines that were moved here at the end of their kinds.
    LineList merged() {
        LineList all;
        Line *coming = sorted(aside_).first;
        const auto take = [&all](Line *&line) {
            Line *const next = line->next;
            all.append(*line);
            line = next;
        };
        for (Line *line = lines_.first; line != nullptr; take(line)) {
            while (coming != nullptr && coming->rank < line->rank) {
                take(coming);
            }
        }
        while (coming != nullptr) {
            take(coming);
        }
        return all;
    }

    Workspace &work_;
    const Order &order_;
    LineList lines_;
    LineList aside_;
    Line *seen_[kRanks + 1] = {}; // the last is null
    uint8_t highest_ = 0;
    bool late_ = false;
    bool leftOut_ = false; // a line that had been added
    bool known_ = true;    // every line is of a kind that may be here
};

class Arranger {
public:
    explicit Arranger(Workspace &work) : work_(work), session_(work, kSessionOrder) {}

    LineList run() {
        Line *const end = work_.lines + work_.entryCount;
        Line *media = work_.lines;
        while (media != end && media->key != 'm') {
            add(session_, *media++);
        }
        LineList descriptions;
        for (Line *line = media; line != end;) {
            if (line->isWhole) {
                descriptions.append(*line++);
                continue;
            }
            Section description(work_, kMediaOrder);
            do {
                addBelow(description, *line++);
            } while (line != end && line->key != 'm');
            descriptions.append(description.inOrder());
        }
        addMissing(media != end ? *media : *(end - 1), media != end);
        LineList all = session_.inOrder();
        all.append(descriptions);
        return all;
    }

private:
    static void add(Section &section, Line &line) {
        if (line.rank == kNotWritten) {
            return;
        }
        Line *const extra = line.extra;
        section.add(line);
        if (extra != nullptr) {
            section.add(*extra);
        }
    }

    // Adds a line after an m= line, which may be one of the session.
    void addBelow(Section &description, Line &line) {
        const bool ofSession = line.key != 'a' && isOneOf(kOfSession, line.key);
        if (!ofSession || !work_.wants(Rule::LineLevel)) {
            return add(description, line);
        }
        work_.report(Rule::LineLevel, line);
        line.aside = true;
        add(session_, line);
    }

    // `next` is the first m= line or, without one, the last line.
    void addMissing(const Line &next, bool hasMedia) {
        if (work_.goesOn) {
            return; // the missing lines may follow the empty line
        }
        const Line *const end = work_.lines + work_.entryCount;
        const Line *begin = work_.lines;
        while (begin != end - 1 && begin->rank == kNotWritten) {
            ++begin;
        }
        if (!session_.has('v') && begin->key != '\0' && work_.wants(Rule::VersionMissing)) {
            session_.addMissing('v', Rule::VersionMissing, kVersionLine, *begin);
        }
        const Line &second = begin->key == 'v' && begin + 1 != end ? begin[1] : *begin;
        if (!session_.has('o') && work_.wants(Rule::OriginMissing)) {
            session_.addMissing('o', Rule::OriginMissing, kOriginLine, second);
        }
        if (!session_.has('s') && work_.wants(Rule::NameMissing)) {
            const bool more = second.key == 'o' && &second + 1 != end;
            session_.addMissing('s', Rule::NameMissing, kNameLine, more ? (&second)[1] : second);
        }
        if (session_.has('t') || session_.has('r') || !work_.wants(Rule::TimeMissing)) {
            return;
        }
        const char last = session_.lastKey();
        if (isOneOf(kAfterTime, last)) {
            const Line *const after = session_.has('z')   ? session_.first('z')
                                      : session_.has('k') ? session_.first('k')
                                                          : session_.first('a');
            session_.addMissing('t', Rule::TimeMissing, kTimeLine, *after);
        } else if (hasMedia && isOneOf(kNeedTime, last)) {
            session_.addMissing('t', Rule::TimeMissing, kTimeLine, next);
        }
    }

    Workspace &work_;
    Section session_;
};

} // namespace

LineList arrange(Workspace &work) {
    return Arranger(work).run();
}

} // namespace sdpline::tidy

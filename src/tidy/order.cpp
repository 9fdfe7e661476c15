// Repairs of the order of lines (RFC 4566 section 5): lines that belong to the session or to a
// media description, duplicate and misplaced lines, and missing lines.
#include "tidy/runs.hpp"
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
        if (seen_[line.rank] == nullptr) {
            seen_[line.rank] = &line;
        }
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
        Line *line = work_.lines;
        uint32_t count = 1; // the first m= line too
        for (; line != end && line->key != 'm'; ++line) {
            count += line->count;
        }
        given_ = work_.memory.array<Line *>(count);
        if (given_ == nullptr) {
            return {};
        }
        Line *const media = line;
        for (line = work_.lines; line != media; ++line) {
            eachLineOf(*line, [&](Line &one) {
                given_[givenCount_++] = &one;
                add(session_, one);
            });
        }
        if (media != end) {
            given_[givenCount_++] = media;
        }
        LineList descriptions;
        while (line != end) {
            descriptions.append(line->isInOrder ? wholeDescription(line) : description(line));
        }
        if (work_.memory.hasFailed()) {
            return {};
        }
        addMissing(media != end ? media : nullptr);
        LineList all = session_.inOrder();
        all.append(descriptions);
        endLast(all);
        return all;
    }

private:
    // Calls `use` for each line of an entry, in the order of the text.
    template <class Use>
    void eachLineOf(Line &entry, Use use) {
        const std::span<Line> more = unfold(work_, entry);
        use(entry);
        last_ = entry.rank != kNotWritten || last_ == nullptr ? &entry : last_;
        for (Line &line : more) {
            use(line);
            last_ = &line;
        }
    }

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

    // A media description whose lines stay. `line` is set to the line after it.
    LineList wholeDescription(Line *&line) {
        LineList list;
        const Line *const end = work_.lines + work_.entryCount;
        do {
            if (line->rank != kNotWritten) {
                list.append(*line);
                last_ = line;
            }
            ++line;
        } while (line != end && line->key != 'm');
        return list;
    }

    LineList description(Line *&line) {
        Section section(work_, kMediaOrder);
        const Line *const end = work_.lines + work_.entryCount;
        do {
            eachLineOf(*line++, [&](Line &one) { addBelow(section, one); });
        } while (line != end && line->key != 'm');
        return section.inOrder();
    }

    // Adds a line end to the last line of the given text if another line follows it now.
    void endLast(const LineList &all) {
        if (last_->end.empty() && last_->rank != kNotWritten && last_ != all.last) {
            last_->end = work_.lineEnd;
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

    // `media` is the first m= line, null for none.
    void addMissing(const Line *media) {
        if (work_.goesOn) {
            return; // the missing lines may follow the empty line
        }
        uint32_t first = 0;
        while (first != givenCount_ - 1 && given_[first]->rank == kNotWritten) {
            ++first;
        }
        const Line &begin = *given_[first];
        if (!session_.has('v') && begin.key != '\0' && work_.wants(Rule::VersionMissing)) {
            session_.addMissing('v', Rule::VersionMissing, kVersionLine, begin);
        }
        const uint32_t second = begin.key == 'v' ? lineAfter(first) : first;
        if (!session_.has('o') && work_.wants(Rule::OriginMissing)) {
            session_.addMissing('o', Rule::OriginMissing, kOriginLine, *given_[second]);
        }
        if (!session_.has('s') && work_.wants(Rule::NameMissing)) {
            const uint32_t third = given_[second]->key == 'o' ? lineAfter(second) : second;
            session_.addMissing('s', Rule::NameMissing, kNameLine, *given_[third]);
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
        } else if (media != nullptr && isOneOf(kNeedTime, last)) {
            session_.addMissing('t', Rule::TimeMissing, kTimeLine, *media);
        }
    }

    uint32_t lineAfter(uint32_t which) const {
        return which + 1 != givenCount_ ? which + 1 : which;
    }

    Workspace &work_;
    Section session_;
    Line **given_ = nullptr; // the lines of the session as they were given, and the first m= line
    uint32_t givenCount_ = 0;
    Line *last_ = nullptr; // of the given text
};

} // namespace

LineList arrange(Workspace &work) {
    if (work.takenMedia != nullptr) {
        splitTaken(work);
    }
    return Arranger(work).run();
}

} // namespace sdpline::tidy

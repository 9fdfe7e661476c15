#include "tidy/runs.hpp"

#include <utility>

#include "tidy/cutter.hpp"

namespace sdpline::tidy {

namespace {

// Takes a line, or consecutive attributes.
Line takeLines(Cutter &cutter, uint32_t number) {
    const char *const begin = cutter.line().data();
    const char key = keyOf(cutter.line());
    std::string_view end;
    uint32_t count = 0;
    do {
        ++count;
        end = cutter.end();
        cutter.advance();
    } while (key == 'a' && !cutter.done() && keyOf(cutter.line()) == 'a');
    const std::string_view text(begin, static_cast<size_t>(end.data() - begin));
    Line line = lineOf(text, text, end, number, key);
    line.count = count;
    return line;
}

// The number of entries that the rest of a text needs.
uint32_t countEntries(Cutter cutter) {
    uint32_t count = 0;
    for (; !cutter.done(); ++count) {
        takeLines(cutter, 0);
    }
    return count;
}

// The start of a line, and its number.
struct Place {
    const char *at;
    uint32_t number;
};

// Several lines of the given text as one entry: those before `end`.
Line runOf(const Workspace &work, Place begin, Place end, char key) {
    const std::string_view lineEnd = endBefore(work.text.data(), end.at);
    const std::string_view text(begin.at, static_cast<size_t>(lineEnd.data() - begin.at));
    Line line = lineOf(text, text, lineEnd, begin.number, key);
    line.count = end.number - begin.number;
    return line;
}

// The same for media descriptions.
Line mediaOf(const Workspace &work, Place begin, Place end, bool isInOrder) {
    Line line = runOf(work, begin, end, 'm');
    line.isInOrder = isInOrder;
    return line;
}

} // namespace

std::span<Line> unfold(Workspace &work, Line &entry) {
    if (entry.count == 1) {
        return {};
    }
    bool hasInnerEnd = false;
    const std::string_view lines(entry.text.data(), entry.text.size() + entry.end.size());
    Cutter cutter(lines, '\n', hasInnerEnd);
    const Line first = takeLines(cutter, entry.number);
    const uint32_t count = countEntries(cutter);
    auto *const more = work.memory.array<Line>(count);
    if (more == nullptr) {
        return {};
    }
    entry = first;
    uint32_t number = first.number + first.count;
    for (Line *line = more; line != more + count; ++line) {
        *line = takeLines(cutter, number);
        number += line->count;
    }
    return {more, count};
}

void splitTaken(Workspace &work) {
    Line *const entries = work.lines + work.takenEntry;
    const Line taken = entries[0];
    const bool lastIsInOrder = std::exchange(entries[2].isInOrder, false);
    const Place begin = {taken.text.data(), taken.number};
    const Place end = {taken.end.data() + taken.end.size(), taken.number + taken.count};
    Place first = {nullptr, 0};
    Place last = {work.takenMedia, taken.number};
    bool hasInnerEnd = false;
    Cutter cutter({begin.at, static_cast<size_t>(end.at - begin.at)}, '\n', hasInnerEnd);
    for (; cutter.line().data() != last.at; cutter.advance(), ++last.number) {
        if (first.at == nullptr && keyOf(cutter.line()) == 'm') {
            first = {cutter.line().data(), last.number};
        }
    }
    if (first.at == nullptr) {
        entries[0] = runOf(work, begin, last, taken.key);
        entries[1] = mediaOf(work, last, end, lastIsInOrder);
        return;
    }
    entries[0] = runOf(work, begin, first, taken.key);
    entries[1] = mediaOf(work, first, last, true);
    entries[2] = mediaOf(work, last, end, lastIsInOrder);
}

} // namespace sdpline::tidy

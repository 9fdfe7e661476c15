// SdpTidyText: calls the decoder and, if that refuses the text, the passes over its lines, and then
// the decoder again.
#include <algorithm>
#include <cstddef>

#include "tidy/decode.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

// The buffer is sufficient for a text of about 1 KB with lines of the usual length. For a longer
// text a block is made.
constexpr size_t kBuffer = 6144;
static_assert(kBuffer > Workspace::kLeastBuffer);
constexpr uint32_t kBlockTimes = 7;
constexpr uint32_t kBlockMore = 1536;

// ---- The repaired text

// Calls `use` for each line that is written, in the order of writing.
template <class Use>
void eachLine(const Workspace &work, const LineList &arranged, Use use) {
    if (!work.inOrder) [[unlikely]] {
        for (Line *line = arranged.first; line != nullptr; line = line->next) {
            use(*line);
        }
        return;
    }
    Line *const end = work.lines + work.entryCount;
    for (Line *line = work.lines; line != end; ++line) {
        if (line->rank != kNotWritten) {
            use(*line);
        }
    }
}

uint32_t countCrLf(std::string_view text) {
    uint32_t count = 0;
    for (size_t at = text.find("\r\n"); at != std::string_view::npos;
         at = text.find("\r\n", at + 2)) {
        ++count;
    }
    return count;
}

size_t sizeOf(const Workspace &work, const LineList &arranged) {
    size_t size = work.tail.size();
    eachLine(work, arranged, [&](const Line &line) { size += line.size(); });
    return size;
}

// The number of CR LF in the lines and after them.
[[gnu::noinline]] uint32_t countCr(const Workspace &work, const LineList &arranged) {
    uint32_t count = countCrLf(work.tail);
    eachLine(work, arranged, [&](const Line &line) {
        count += countCrLf(line.text) + (line.end.size() == 2 ? 1 : 0);
    });
    return count;
}

SDPLINE_INLINE void writeLine(Draft &draft, const Line &line) {
    const bool isCut = !line.more.empty();
    const std::string_view last = isCut ? line.more : line.text;
    if (isCut) {
        draft << line.text;
    }
    if (last.data() + last.size() == line.end.data()) [[likely]] {
        draft << std::string_view(last.data(), last.size() + line.end.size());
    } else {
        draft << last << line.end;
    }
}

void writeWithoutCr(Draft &draft, std::string_view text) {
    for (size_t at = text.find("\r\n"); at != std::string_view::npos; at = text.find("\r\n")) {
        draft << text.substr(0, at);
        text = withoutFirst(text, at + 1);
    }
    draft << text;
}

void writeLineWithoutCr(Draft &draft, const Line &line) {
    writeWithoutCr(draft, line.text);
    draft << line.more << withoutFirst(line.end, line.end.size() == 2 ? 1 : 0);
}

// Sets the new numbers of the lines, and calls `write` for each.
template <class Write>
void writeLines(const Workspace &work, const LineList &arranged, Write write) {
    uint32_t number = 1;
    eachLine(work, arranged, [&](Line &line) {
        line.newNumber = number;
        number += line.count;
        write(line);
    });
}

// Two functions, because the draft of the first one can be in registers.
std::string_view linesOf(Workspace &work, const LineList &arranged, size_t size) {
    Draft draft(work.memory, size);
    writeLines(work, arranged, [&](const Line &line) { writeLine(draft, line); });
    return (draft << work.tail).text();
}

[[gnu::noinline]] std::string_view linesWithoutCr(Workspace &work, const LineList &arranged,
                                                  size_t size) {
    Draft draft(work.memory, size);
    writeLines(work, arranged, [&](const Line &line) { writeLineWithoutCr(draft, line); });
    writeWithoutCr(draft, work.tail);
    const Line &first = work.lines[0];
    work.report(Rule::LineEndSize, first, first.original.data() + first.original.size());
    return draft.text();
}

std::string_view textOf(Workspace &work, const LineList &arranged, uint32_t limit) {
    const size_t size = sizeOf(work, arranged);
    work.memory.leaveBuffer(size + (work.foundCount() + 2) * sizeof(SDPTidyRow));
    if (size > limit && work.wants(Rule::LineEndSize)) {
        const uint32_t count = countCr(work, arranged);
        if (count != 0 && size - count <= limit) {
            return linesWithoutCr(work, arranged, size);
        }
    }
    return linesOf(work, arranged, size);
}

// ---- The report

uint32_t placeOf(const Workspace &work, const Line &line) {
    return static_cast<uint32_t>(line.original.data() - work.text.data());
}

SDPTidyRow rowOf(const Workspace &work, const Found &found) {
    const Line &line = *found.line;
    return {static_cast<uint32_t>(found.rule), line.number, found.offset + 1,
            placeOf(work, line) + found.offset, line.newNumber};
}

// Sorts the rows in the order of the text, by counting.
[[gnu::noinline]] bool sortRows(Workspace &work, SDPTidyRow *rows, uint32_t count) {
    auto *const starts = work.memory.array<uint32_t>(work.lineCount + 2);
    if (starts == nullptr) {
        return false;
    }
    std::fill_n(starts, work.lineCount + 2, 0u);
    for (const Found *found = work.found(); found != work.found() + count; ++found) {
        ++starts[found->line->number + 1];
    }
    for (uint32_t line = 1; line < work.lineCount + 2; ++line) {
        starts[line] += starts[line - 1];
    }
    for (const Found *found = work.found(); found != work.found() + count; ++found) {
        rows[starts[found->line->number]++] = rowOf(work, *found);
    }
    return true;
}

// The rows of the report, in the order of the text; null without memory.
SDPTidyRow *rowsOf(Workspace &work) {
    const uint32_t count = work.foundCount();
    auto *const rows = work.memory.array<SDPTidyRow>(count);
    if (rows == nullptr) {
        return nullptr;
    }
    uint32_t last = 0;
    bool areSorted = true;
    for (uint32_t row = 0; row < count; ++row) {
        const Found &found = work.found()[row];
        areSorted = areSorted && found.line->number >= last;
        last = found.line->number;
        rows[row] = rowOf(work, found);
    }
    return areSorted || sortRows(work, rows, count) ? rows : nullptr;
}

// The offset of one of several lines, which are counted from 0.
uint32_t beginOf(std::string_view lines, uint32_t which) {
    size_t begin = 0;
    for (; which != 0; --which) {
        begin = lines.find('\n', begin) + 1;
    }
    return static_cast<uint32_t>(begin);
}

// Converts the place of a failure in the repaired text to one in the given text. For a line that
// was written again it is the start of the line.
[[gnu::noinline]] SDPFailure inGivenText(const Workspace &work, const LineList &lines,
                                         SDPFailure failure) {
    if (failure.ulLine == 0) {
        return failure; // of the whole text
    }
    const Line *found = nullptr;
    eachLine(work, lines, [&](const Line &line) {
        found = failure.ulLine - line.newNumber < line.count ? &line : found;
    });
    if (found != nullptr) {
        const uint32_t which = failure.ulLine - found->newNumber;
        const bool same = found->text.data() == found->original.data() && found->more.empty();
        failure.ulLine = found->number + which;
        failure.ulColumn = same ? failure.ulColumn : 1;
        failure.ulOffset =
            placeOf(work, *found) + beginOf(found->text, which) + failure.ulColumn - 1;
        return failure;
    }
    // The empty line that ends the description, or the end of the text.
    failure.ulLine = work.lineCount + 1;
    failure.ulColumn = 1;
    failure.ulOffset = static_cast<uint32_t>(work.text.size() - work.tail.size());
    return failure;
}

// ---- One text

class Tidying {
public:
    Tidying(const Request &request, SDPTidyReport &report)
        : request_(request), report_(report),
          work_(buffer_, kBlockTimes * request.text.ulLen + kBlockMore, viewOf(request.text),
                request.rules, request.decode.bRtpFamily == 1) {}

    // The block of the rows and the repaired text; null if there is neither.
    SDPMemCp *block() const { return work_.memory.block(); }

    // Returns the decoder's result for the repaired text, or for the given text if nothing could be
    // repaired.
    SDPResult run() {
        if (const SDPFailure &failure = report_.stFailure; failure.ulLine != 0) {
            work_.takenCount = failure.ulLine - 1;
            work_.takenSize = failure.ulOffset - (failure.ulColumn - 1);
        }
        readLines(work_);
        if (work_.memory.hasFailed()) {
            return SDP_TIDY_NO_MEMORY;
        }
        if (work_.hasSecondVersion) {
            return report_.stFailure.ulResult;
        }
        LineList lines;
        if (!work_.inOrder) {
            lines = arrange(work_);
        }
        const std::string_view text = textOf(work_, lines, request_.decode.ulMaxBodySize);
        if (work_.memory.hasFailed()) {
            return SDP_TIDY_NO_MEMORY;
        }
        return work_.foundCount() != 0 ? decodeAgain(lines, text) : report_.stFailure.ulResult;
    }

private:
    SDPResult decodeAgain(const LineList &lines, std::string_view text) {
        const SipString repaired = {static_cast<uint32_t>(text.size()),
                                    const_cast<char *>(text.data())};
        const SDPResult result = decode(repaired, request_.decode, report_);
        report_.pstRows = rowsOf(work_);
        if (report_.pstRows == nullptr) {
            SdpLine *line = report_.pstLine;
            SdpLibReleaseSdp(&line);
            report_.pstLine = nullptr;
            return SDP_TIDY_NO_MEMORY;
        }
        report_.ulNoOfRows = work_.foundCount();
        if (result != 0) {
            report_.stRemaining = inGivenText(work_, lines, failureOf(result));
            return result;
        }
        report_.enOutcome = SDP_TIDY_REPAIRED;
        report_.strText = repaired;
        return 0;
    }

    const Request &request_;
    SDPTidyReport &report_;
    alignas(std::max_align_t) char buffer_[kBuffer]; // without a value
    Workspace work_;
};

SDPResult repair(const Request &request, SDPTidyReport &report) {
    Tidying tidying(request, report);
    const SDPResult result = tidying.run();
    SDPMemCp *memCp = tidying.block();
    if (report.pstRows != nullptr) {
        report.pstMemCp = memCp;
    } else {
        SipMmReleaseBufMem(&memCp);
    }
    return result;
}

} // namespace

} // namespace sdpline::tidy

using namespace sdpline::tidy;

extern "C" {

SDPResult SdpTidyText(const SipString *pstText, const SDPTidyOptions *pstOptions,
                      SDPTidyReport *pstReport) {
    Request request;
    if (!begin(pstText, pstOptions, pstReport, request)) {
        return SDP_TIDY_ARGUMENT;
    }
    const SDPResult result = decodeGiven(request, *pstReport);
    if (result == 0 || isOfMemory(pstReport->stFailure)) {
        return result;
    }
    return repair(request, *pstReport);
}

void SdpTidyRelease(SDPTidyReport *pstReport) {
    if (pstReport != nullptr) {
        SdpLine *line = pstReport->pstLine;
        SDPMemCp *memCp = pstReport->pstMemCp;
        SdpLibReleaseSdp(&line);
        SipMmReleaseBufMem(&memCp);
        clear(*pstReport);
    }
}

} // extern "C"

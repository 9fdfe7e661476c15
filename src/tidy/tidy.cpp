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
constexpr size_t kBuffer = 8192;
constexpr uint32_t kBlockTimes = 7;
constexpr uint32_t kBlockMore = 1536;

// ---- The repaired text

// Adds a line end to the last line of the given text if another line follows it now.
void endLast(Workspace &work, LineList &lines) {
    Line &last = work.lines[work.lineCount - 1];
    if (last.end.empty() && last.rank != kNotWritten && &last != lines.last) {
        last.end = work.lineEnd;
        lines.size += last.end.size();
    }
}

// The number of CR LF in the lines and after them.
uint32_t countCr(const Workspace &work, const LineList &lines) {
    uint32_t count = 0;
    for (const Line *line = lines.first; line != nullptr; line = line->next) {
        count += line->end.size() == 2 ? 1 : 0;
    }
    for (size_t at = work.tail.find("\r\n"); at != std::string_view::npos;
         at = work.tail.find("\r\n", at + 2)) {
        ++count;
    }
    return count;
}

void writeTail(Draft &draft, std::string_view tail, bool withoutCr) {
    while (withoutCr) {
        const size_t at = tail.find("\r\n");
        if (at == std::string_view::npos) {
            break;
        }
        draft << tail.substr(0, at);
        tail.remove_prefix(at + 1);
    }
    draft << tail;
}

std::string_view textOf(Workspace &work, LineList &lines, uint32_t limit) {
    endLast(work, lines);
    const size_t size = lines.size + work.tail.size();
    bool withoutCr = false;
    if (size > limit && work.wants(Rule::LineEndSize)) {
        const uint32_t count = countCr(work, lines);
        withoutCr = count != 0 && size - count <= limit;
    }
    work.memory.leaveBuffer(size + (work.foundCount() + 2) * sizeof(SDPTidyRow));
    Draft draft(work.memory, size);
    uint32_t number = 0;
    for (Line *line = lines.first; line != nullptr; line = line->next) {
        line->newNumber = ++number;
        if (withoutCr && line->end.size() == 2) {
            line->end.remove_prefix(1);
        }
        if (line->end.data() == line->text.data() + line->text.size()) {
            draft << std::string_view(line->text.data(), line->text.size() + line->end.size());
        } else {
            draft << line->text << line->end;
        }
    }
    writeTail(draft, work.tail, withoutCr);
    if (withoutCr) {
        const Line &first = work.lines[0];
        work.report(Rule::LineEndSize, first, first.original.data() + first.original.size());
    }
    return draft.text();
}

// ---- The report

SDPTidyRow rowOf(const Workspace &work, const Found &found) {
    const Line &line = *found.line;
    const Line &given = work.lines[line.number - 1];
    const auto begin = static_cast<uint32_t>(given.original.data() - work.text.data());
    return {static_cast<uint32_t>(found.rule), line.number, found.offset + 1, begin + found.offset,
            line.newNumber};
}

// Sorts the rows in the order of the text, by counting.
bool sortRows(Workspace &work, SDPTidyRow *rows, uint32_t count) {
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
    uint32_t done = 0;
    for (; done < count; ++done) {
        rows[done] = rowOf(work, work.found()[done]);
        if (done != 0 && rows[done].ulLine < rows[done - 1].ulLine) {
            break;
        }
    }
    return done == count || sortRows(work, rows, count) ? rows : nullptr;
}

// Converts the place of a failure in the repaired text to one in the given text. For a line that
// was written again it is the start of the line.
SDPFailure inGivenText(const Workspace &work, const LineList &lines, SDPFailure failure) {
    if (failure.ulLine == 0) {
        return failure; // of the whole text
    }
    for (const Line *line = lines.first; line != nullptr; line = line->next) {
        if (line->newNumber != failure.ulLine) {
            continue;
        }
        const Line &given = work.lines[line->number - 1];
        const bool same =
            line->text.data() == line->original.data() && line->text.data() != nullptr;
        failure.ulLine = line->number;
        failure.ulColumn = same ? failure.ulColumn : 1;
        failure.ulOffset =
            static_cast<uint32_t>(given.original.data() - work.text.data()) + failure.ulColumn - 1;
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
            work_.takenSize = failure.ulOffset;
        }
        if (!cutLines(work_)) {
            return SDP_TIDY_NO_MEMORY;
        }
        if (work_.hasSecondVersion) {
            return report_.stFailure.ulResult;
        }
        repairLines(work_);
        LineList lines = arrange(work_);
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
    if (result == 0 || isOfMemory(pstReport->stFailure.pcCheck)) {
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
        *pstReport = {};
    }
}

} // extern "C"

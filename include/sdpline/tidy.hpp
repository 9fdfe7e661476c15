/*
 * tidy.hpp: repairs of bodies that the decoder refuses, in C++20. Header-only over libsdpline_tidy;
 * sdptidy.h describes what is repaired and what never is.
 *
 *     auto tidied = sdpline::tidy(text);
 *     if (tidied && tidied->body()) {
 *         for (const sdpline::Repair repair : tidied->repairs()) {
 *             log(repair.message()); // 3:3: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3]
 *         }
 *         use(*tidied->body());
 *     }
 *
 * The conventions of sdpline.hpp apply: results, one decode at a time under decodeMutex(), nothing
 * thrown except by std::string. A Tidied owns the data that its views refer to, except the text of
 * a body that was not repaired: that is the caller's.
 */
#ifndef SDPLINE_TIDY_HPP
#define SDPLINE_TIDY_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "sdpline/sdpline.hpp"
#include "sdpline/sdptidy.h"

namespace sdpline {
inline namespace v1 {

/* The set of rules that may repair: the sets of sdptidy.h, and single rules by number or name. */
class TidyRules {
public:
    /* The default set: rules that lose nothing and do not change the session. */
    TidyRules() : bits_(SdpTidyRulesOf(SDP_TIDY_DEFAULT)) {}

    static TidyRules none() { return TidyRules(0); }
    static TidyRules withOptional() {
        return TidyRules(TidyRules().bits_ | SdpTidyRulesOf(SDP_TIDY_OPTIONAL));
    }

    /* The set with, or without, a rule SDP_TIDY_.... A number that is not a repair changes nothing.
     */
    TidyRules with(std::uint32_t rule) const { return TidyRules(bits_ | bitOf(rule)); }
    TidyRules without(std::uint32_t rule) const { return TidyRules(bits_ & ~bitOf(rule)); }

    bool contains(std::uint32_t rule) const { return (bits_ & bitOf(rule)) != 0; }
    std::uint64_t bits() const { return bits_; }

    /* The number of the rule of that name, which is compared without case. */
    static std::optional<std::uint32_t> numberOf(std::string_view name) {
        const auto size = static_cast<std::uint32_t>(name.size());
        const SDPTidyRule *const rule = SdpTidyRuleByName(name.data(), size);
        return rule != nullptr ? std::optional(rule->enRule) : std::nullopt;
    }

    friend bool operator==(const TidyRules &, const TidyRules &) = default;

private:
    explicit TidyRules(std::uint64_t bits) : bits_(bits) {}

    static std::uint64_t bitOf(std::uint32_t rule) {
        const SDPTidyRule *const row = SdpTidyRuleAt(rule);
        return row != nullptr && row->enSet != SDP_TIDY_DOUBT ? SDP_TIDY_BIT(rule) : 0;
    }

    std::uint64_t bits_;
};

/* One repair, or one doubt. Lines and columns count from 1, offsets from 0, in bytes of the given
 * text. */
struct Repair {
    const SDPTidyRule *rule = nullptr; /* never null; static */
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t offset = 0;
    std::uint32_t newLine = 0; /* in the repaired text; 0: the line was removed */

    std::string_view name() const { return rule->pcName; }

    /* "3:3: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3]" */
    std::string message() const {
        std::string text;
        internal::appendNumber(text, line);
        text += ':';
        internal::appendNumber(text, column);
        text.append(": ").append(rule->pcWrong).append(": ").append(rule->pcDone);
        text.append(" [").append(rule->pcName).append(", ").append(rule->pcReference).append("]");
        return text;
    }
};

namespace internal {

struct MakeRepair {
    Repair operator()(const SDPTidyRow &row) const {
        return {SdpTidyRuleAt(row.enRule), row.ulLine, row.ulColumn, row.ulOffset, row.ulNewLine};
    }
};

} // namespace internal

/* The repairs of a report, in the order of the text. */
class Repairs {
public:
    Repairs(const SDPTidyRow *rows, std::uint32_t count) : rows_(rows), count_(count) {}

    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    Repair operator[](std::size_t index) const {
        internal::insist(index < count_);
        return internal::MakeRepair()(rows_[index]);
    }

    class Iterator {
    public:
        using value_type = Repair;
        using difference_type = std::ptrdiff_t;
        using reference = Repair;
        using pointer = void;
        using iterator_category = std::input_iterator_tag;

        explicit Iterator(const SDPTidyRow *row) : row_(row) {}
        Repair operator*() const { return internal::MakeRepair()(*row_); }
        Iterator &operator++() {
            ++row_;
            return *this;
        }
        Iterator operator++(int) { return Iterator(row_++); }
        friend bool operator==(const Iterator &, const Iterator &) = default;

    private:
        const SDPTidyRow *row_;
    };
    Iterator begin() const { return Iterator(rows_); }
    Iterator end() const { return Iterator(rows_ + count_); }

private:
    const SDPTidyRow *rows_;
    std::uint32_t count_;
};

class Tidied;

namespace internal {

Result<Tidied> tidiedBy(decltype(&SdpTidyText) operation, std::string_view text,
                        const SDPTidyOptions &options);

} // namespace internal

/* The result for one text. */
class Tidied {
public:
    Tidied(Tidied &&other) noexcept
        : report_(std::exchange(other.report_, {})), body_(std::move(other.body_)),
          error_(other.error_) {}
    Tidied &operator=(Tidied &&other) noexcept {
        std::swap(report_, other.report_);
        std::swap(body_, other.body_);
        std::swap(error_, other.error_);
        return *this;
    }
    ~Tidied() { SdpTidyRelease(&report_); }

    bool isUnchanged() const { return report_.enOutcome == SDP_TIDY_UNCHANGED; }
    bool isRepaired() const { return report_.enOutcome == SDP_TIDY_REPAIRED; }
    bool isRefused() const { return report_.enOutcome == SDP_TIDY_REFUSED; }

    /* The repaired text, or else the given one. */
    std::string_view text() const & { return internal::viewOf(report_.strText); }
    std::string_view text() const && = delete;

    /* The repairs that were made or tried; from findDoubts(), the doubts. */
    Repairs repairs() const & { return {report_.pstRows, report_.ulNoOfRows}; }
    Repairs repairs() const && = delete;

    /* The body; nullopt for a refused text. It may be moved out. */
    std::optional<Body> &body() & { return body_; }
    const std::optional<Body> &body() const & { return body_; }
    std::optional<Body> body() && { return std::move(body_); }

    /* Why the repaired text was refused, with the place in the given text; nullopt if it was not.
     */
    const std::optional<Error> &error() const { return error_; }

private:
    friend Result<Tidied> internal::tidiedBy(decltype(&SdpTidyText), std::string_view,
                                             const SDPTidyOptions &);

    explicit Tidied(const SDPTidyReport &report) : report_(report) {
        if (report_.pstLine != nullptr) {
            body_ = Body::adopt(std::exchange(report_.pstLine, nullptr));
        } else {
            error_ = internal::libraryError(report.stRemaining.ulResult);
            error_->line = report.stRemaining.ulLine;
            error_->column = report.stRemaining.ulColumn;
            error_->offset = report.stRemaining.ulOffset;
        }
    }

    SDPTidyReport report_;
    std::optional<Body> body_;
    std::optional<Error> error_;
};

namespace internal {

inline Result<Tidied> tidiedBy(decltype(&SdpTidyText) operation, std::string_view text,
                               const SDPTidyOptions &options) {
    if (text.empty() || text.size() > SDP_MAX_LONG_BODY) {
        return refusedArgument("the text is empty or longer than 65535 bytes");
    }
    const SipString given = lent(text);
    const DecodeTurn turn;
    if (turn.refused()) {
        return busy();
    }
    SDPTidyReport report = {};
    const SDPResult code = operation(&given, &options, &report);
    if (code == SDP_TIDY_NO_MEMORY) {
        SdpTidyRelease(&report);
        return noMemory();
    }
    Tidied tidied(report);
    if (tidied.body() && lacksAProtocol(*tidied.body()->record())) {
        return noMemory();
    }
    return tidied;
}

/* With null options the settings of the process apply. */
inline Result<Tidied> tidyUnder(decltype(&SdpTidyText) operation, std::string_view text,
                                const TidyRules &rules, const DecodeOptions *options) {
    SDPDecodeOptions decode = {};
    if (options != nullptr) {
        decode = {options->rtpFamily ? 1u : 0u, options->maxBodySize};
    }
    return tidiedBy(operation, text, {rules.bits(), options != nullptr ? &decode : nullptr});
}

} // namespace internal

/* Decodes the text, after repairs where they are necessary and allowed: see SdpTidyText. An Error
 * is not about the text: memory is exhausted, or the thread is already decoding. */
inline Result<Tidied> tidy(std::string_view text, const TidyRules &rules = {}) {
    return internal::tidyUnder(SdpTidyText, text, rules, nullptr);
}
inline Result<Tidied> tidy(std::string_view text, const TidyRules &rules,
                           const DecodeOptions &options) {
    return internal::tidyUnder(SdpTidyText, text, rules, &options);
}

/* Decodes the text and finds what other readers read differently: see SdpTidyFindDoubts. */
inline Result<Tidied> findDoubts(std::string_view text) {
    return internal::tidyUnder(SdpTidyFindDoubts, text, {}, nullptr);
}
inline Result<Tidied> findDoubts(std::string_view text, const DecodeOptions &options) {
    return internal::tidyUnder(SdpTidyFindDoubts, text, {}, &options);
}

} // namespace v1
} // namespace sdpline

#endif

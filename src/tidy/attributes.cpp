// Repairs of the a= line (RFC 4566 section 5.13): white space around its parts, a missing colon or
// value. The form that the decoder accepts follows from the attribute's shape.
#include "tidy/attributes.hpp"

#include <array>

#include "tidy/fields.hpp"
#include "tidy/shapes.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

// Parameters of a=silenceSupp, all unspecified (RFC 3108 section 5.6.3.2).
constexpr std::string_view kSilenceParams = " - - - -";

// The bytes that end a name.
constexpr auto kEndsName = [] {
    std::array<bool, 256> ends = {};
    ends[':'] = ends[' '] = ends['\t'] = true;
    return ends;
}();

std::string_view nameOf(std::string_view value) {
    const char *at = value.data();
    const char *const end = at + value.size();
    while (end - at >= 8) {
        const uint64_t marks = bytesBelow(' ' + 1, at) | bytesEqual(':', at);
        if (marks != 0) {
            at += bytesBefore(marks);
            break;
        }
        at += 8;
    }
    while (at != end && !kEndsName[static_cast<uint8_t>(*at)]) {
        ++at;
    }
    return {value.data(), static_cast<size_t>(at - value.data())};
}

// An attribute's name, and the text after it. `value` is the text after "a=".
struct Attribute {
    explicit Attribute(std::string_view value)
        : name(nameOf(value)), rest(withoutFirst(value, name.size())), shape(shapeOf(name)) {}

    std::string_view name;
    std::string_view rest;
    Shape shape;
};

constexpr bool needsValue(Shape shape) {
    return shape != Shape::Flag && shape != Shape::MaybeWords && shape != Shape::Any;
}

// Whether a text has nothing but blanks. Most texts do not even end in one.
bool isBlankText(std::string_view text) {
    return text.empty() || (isBlank(text.back()) && withoutBlanksBefore(text).empty());
}

class AttributeLine {
public:
    AttributeLine(Workspace &work, Line &line, const Attribute &attribute)
        : work_(work), line_(line), name_(attribute.name), rest_(attribute.rest),
          shape_(attribute.shape) {}

    void repair() {
        if (name_.empty()) {
            return;
        }
        if (rest_.empty()) {
            return repairBare();
        }
        if (rest_.front() == ':') {
            rest_.remove_prefix(1);
            return isBlankText(rest_) && !isTextOfBlanks() ? valueMissing() : repairValue();
        }
        if (withoutBlanksBefore(rest_).empty()) {
            return needsValue(shape_) ? valueMissing() : trailing();
        }
        addColon();
    }

private:
    // In "a=fmtp: " the blank is a text.
    bool isTextOfBlanks() const {
        return !rest_.empty() && (shape_ == Shape::Text || shape_ == Shape::Any);
    }

    void repairBare() {
        if (needsValue(shape_)) {
            valueMissing();
        }
    }

    // Removes the colon, or the line if the attribute needs a value.
    void valueMissing() {
        if (!work_.wants(Rule::ValueMissing)) {
            return;
        }
        work_.report(Rule::ValueMissing, line_, name_.data() + name_.size());
        if (needsValue(shape_)) {
            leaveOut(line_);
        } else {
            writeNameAlone();
        }
    }

    void trailing() {
        if (work_.wants(Rule::TrailingSpace)) {
            work_.report(Rule::TrailingSpace, line_, rest_.data());
            writeNameAlone();
        }
    }

    // "a=fmtp 97 ...", "a=rtpmap 97 ...", and "a=ptime : 20"
    void addColon() {
        std::string_view value = withoutBlanksBefore(rest_);
        value.remove_prefix(value.front() == ':' ? 1 : 0);
        if (withoutBlanksBefore(value).empty()) {
            return valueMissing();
        }
        if (shape_ == Shape::Flag || !work_.wants(Rule::AttrColon)) {
            return;
        }
        work_.report(Rule::AttrColon, line_, rest_.data());
        rest_ = value;
        write(name_, rest_);
        repairValue();
    }

    void repairValue() {
        switch (shape_) {
        case Shape::Words:
        case Shape::MaybeWords: return repairWords();
        case Shape::Rtpmap: return repairRtpmap(work_, line_, rest_);
        case Shape::Silence: return repairSilence();
        default: return;
        }
    }

    void repairWords() {
        Fields fields(rest_);
        const bool leads = fields.leading() != nullptr;
        if (!fields.repairable(work_) || (leads && !work_.wants(Rule::SpaceRun)) ||
            (!leads && !fields.needsWriting())) {
            return;
        }
        if (leads) {
            work_.report(Rule::SpaceRun, line_, fields.leading());
        }
        fields.write(work_, line_, begin());
    }

    // Repairs a value that is only "on" or "off", and blanks before it.
    void repairSilence() {
        const std::string_view value = withoutBlanksBefore(rest_);
        const bool leads = value.size() != rest_.size();
        const bool bare = value == "on" || value == "off";
        if ((!leads && !bare) || (leads && !work_.wants(Rule::SpaceRun)) ||
            (bare && !work_.wants(Rule::SilenceParams))) {
            return;
        }
        if (leads) {
            work_.report(Rule::SpaceRun, line_, rest_.data());
        }
        if (bare) {
            work_.report(Rule::SilenceParams, line_, value.data() + value.size());
        }
        write(name_, value, bare ? kSilenceParams : std::string_view());
    }

    // Returns "a=", the name and the colon.
    std::string_view begin() {
        return (Draft(work_.memory, name_.size() + 3) << "a=" << name_ << ":").text();
    }

    // Writes the attribute without colon and value.
    void writeNameAlone() { write(name_, {}); }

    // Writes the attribute with its value; without a value there is no colon.
    void write(std::string_view name, std::string_view text, std::string_view after = {}) {
        Draft draft(work_.memory, name.size() + text.size() + after.size() + 3);
        draft << "a=" << name << (text.empty() ? "" : ":") << text << after;
        line_.text = draft.text();
    }

    Workspace &work_;
    Line &line_;
    std::string_view name_;
    std::string_view rest_;
    Shape shape_;
};

// The form of words with one blank between each two. The most frequent fault is a blank before the
// only one.
Look lookAtWords(std::string_view words, Cut &cut) {
    if (countBlanks(words) != kNotEven) {
        return Look::Plain;
    }
    const std::string_view word = withoutBlanksBefore(words);
    if (word.size() == words.size() || word.empty() || wordOf(word).size() != word.size()) {
        return Look::Other;
    }
    cut = {Rule::SpaceRun, words.data(), words.data(), word.data()};
    return Look::Cut;
}

// `rest` is the text after the name.
Look lookAtForm(std::string_view rest, Shape shape, Cut &cut) {
    if (rest.empty()) {
        return needsValue(shape) ? Look::Other : Look::Plain;
    }
    const bool hasColon = rest.front() == ':';
    if (rest.size() == 1 || !hasColon) {
        if (needsValue(shape) || (!hasColon && !withoutBlanksBefore(rest).empty())) {
            return Look::Other;
        }
        cut = {hasColon ? Rule::ValueMissing : Rule::TrailingSpace, rest.data(), rest.data(),
               rest.data() + rest.size()};
        return Look::Cut;
    }
    switch (shape) {
    case Shape::Text:
    case Shape::Any: return Look::Plain;
    case Shape::Words:
    case Shape::MaybeWords: return lookAtWords(withoutFirst(rest, 1), cut);
    default: return Look::Other;
    }
}

// Many attributes are a=rtpmap, whose name needs no lookup.
Look lookAtParts(std::string_view value, Cut &cut) {
    constexpr char rtpmap[] = "rtpmap:";
    if (beginsWith(value, rtpmap)) {
        return lookAtRtpmap(withoutFirst(value, sizeof rtpmap - 1), cut);
    }
    const std::string_view name = nameOf(value);
    return name.empty() ? Look::Other
                        : lookAtForm(withoutFirst(value, name.size()), shapeOf(name), cut);
}

} // namespace

Look lookAtAttribute(const Workspace &work, std::string_view value, Cut &cut) {
    const Look look = lookAtParts(value, cut);
    if (look != Look::Cut) {
        return look;
    }
    return work.wants(cut.rule) && !endsTwice(work, value) ? Look::Cut : Look::Plain;
}

void repairAttribute(Workspace &work, Line &line, std::string_view value) {
    AttributeLine(work, line, Attribute(value)).repair();
}

} // namespace sdpline::tidy

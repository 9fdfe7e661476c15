#include "commands/tidysummary.hpp"

#include <algorithm>
#include <iomanip>
#include <tuple>

#include "output/maskedorigin.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr int kCountWidth = 7;
const std::vector<std::string> kOutcomes = {"repaired", "tried", "refused"};

} // namespace

void TidySummary::body(const Found &body, const sdpline::Tidied &tidied, Redactor *redactor) {
    ++(tidied.isRefused() ? refused_ : tidied.isRepaired() ? repaired_ : unchanged_);
    uint64_t seen = 0;
    for (const sdpline::Repair repair : tidied.repairs()) {
        const SDPTidyRule &rule = *repair.rule;
        if ((seen & SDP_TIDY_BIT(rule.enRule)) == 0) {
            const std::string place = placeName(body, redactor) + ':' +
                                      std::to_string(body.line + repair.line - 1) + ':' +
                                      std::to_string(repair.column);
            count({tidied.isRefused() ? "tried" : "repaired", rule.pcName,
                   std::string(rule.pcWrong) + ": " + rule.pcDone + " [" + rule.pcName + ", " +
                       rule.pcReference + ']',
                   1, place});
        }
        seen |= SDP_TIDY_BIT(rule.enRule);
    }
    if (tidied.error()) {
        const Diagnostic diagnostic = diagnosticOf(*tidied.error(), body);
        const std::string name(nameOf(diagnostic));
        std::string place = placeName(body, redactor);
        if (diagnostic.offset) {
            const LinePart part = linePartAt(body, *diagnostic.offset, redactor);
            place += ':' + std::to_string(part.number) + ':' + std::to_string(part.column);
        }
        count({"refused", name, diagnostic.sentence + " [" + name + ']', 1, place});
    }
}

void TidySummary::count(const Count &one) {
    const auto [at, isNew] = counts_.try_emplace(one.outcome + (' ' + one.name), one);
    at->second.bodies += isNew ? 0 : 1;
}

std::vector<TidySummary::Count> TidySummary::sorted() const {
    std::vector<Count> list;
    for (const auto &[key, one] : counts_) {
        list.push_back(one);
    }
    const auto before = [](const Count &one) {
        return std::tuple(std::ranges::find(kOutcomes, one.outcome) - kOutcomes.begin(),
                          -static_cast<int64_t>(one.bodies), one.name);
    };
    std::ranges::sort(list, {}, before);
    return list;
}

void TidySummary::print(std::ostream &out) const {
    for (const Count &one : sorted()) {
        out << std::setw(kCountWidth) << one.bodies << ' ' << one.outcome << ": " << one.sentence
            << ", first at " << one.first << '\n';
    }
    out << "tidied " << counted(unchanged_ + repaired_ + refused_, "body", "bodies") << " in "
        << counted(files_, "file", "files") << ": " << unchanged_ << " unchanged, " << repaired_
        << " repaired, " << refused_ << " refused\n";
}

nlohmann::ordered_json TidySummary::json() const {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Count &one : sorted()) {
        const bool isCheck = one.outcome == kOutcomes.back();
        list.push_back({{"outcome", one.outcome},
                        {isCheck ? "check" : "rule", one.name},
                        {"bodies", one.bodies},
                        {"first", one.first}});
    }
    return {{"counts", std::move(list)},
            {"summary",
             {{"files", files_},
              {"bodies", unchanged_ + repaired_ + refused_},
              {"unchanged", unchanged_},
              {"repaired", repaired_},
              {"refused", refused_}}}};
}

} // namespace cli

// Repairs do not change the values that other readers find: media, ports, protocols, formats and
// addresses as libosip2, GStreamer, sofia-sip and libre read them, in every case that is repaired.
// Where one reads another value afterwards, docs/repairs.md has a row with the reason.
#include <gtest/gtest.h>

#include <fstream>
#include <iostream>
#include <map>
#include <set>

#include "support/peers/peers.hpp"
#include "tidy/tidied.hpp"
#include "tidy/tidycases.hpp"

namespace {

using tidytest::Tidied;
using tidytest::TidyCase;

// Equal but for directions, which no rule touches, and for the formats that one reader sorts.
bool sameStreams(const peers::Streams &left, const peers::Streams &right) {
    return std::ranges::equal(left, right, [](const peers::Stream &a, const peers::Stream &b) {
        return a.media == b.media && a.port == b.port && a.protocol == b.protocol &&
               a.formats == b.formats && a.address == b.address;
    });
}

std::string describeAll(const peers::Streams &streams) {
    std::string text;
    for (const peers::Stream &stream : streams) {
        text += peers::describe(stream) + '\n';
    }
    return text;
}

// "| NameEmpty, SpaceRun | osip | ..." of the table of differences: rule and reader.
std::set<std::string> listedDifferences() {
    std::ifstream in(SDPLINE_REPAIRS);
    std::set<std::string> rows;
    bool inTable = false;
    for (std::string line; std::getline(in, line);) {
        inTable = line.starts_with("| rule | reader |") || (inTable && line.starts_with("|"));
        if (inTable && !line.starts_with("| rule") && !line.starts_with("| ---")) {
            const size_t second = line.find(" | ");
            rows.insert(line.substr(2, line.find(" | ", second + 3) - 2));
        }
    }
    return rows;
}

std::set<std::string> rulesOf(const Tidied &tidied) {
    std::set<std::string> rules;
    for (const SDPTidyRow &row : tidied.rows) {
        rules.insert(SdpTidyRuleAt(row.enRule)->pcName);
    }
    return rules;
}

// How the texts of the cases were read.
struct Counts {
    int same = 0;
    int differ = 0;
    int refusedBefore = 0; // and read after: the repaired text alone
    int refusedAfter = 0;  // and read before
    int refused = 0;
};

class Reading {
public:
    Reading() : listed_(listedDifferences()) {}

    void read(const peers::Peer &peer, const TidyCase &current) {
        const Tidied tidied = tidytest::tidied(current.body(), current.rules(), current.options());
        const auto before = peer.read(current.body());
        const auto after = peer.read(tidied.text);
        Counts &counts = counts_[std::string(peer.name)];
        if (!before) {
            ++(after ? counts.refusedBefore : counts.refused);
        } else if (after && sameStreams(*before, *after)) {
            ++counts.same;
        } else {
            ++(after ? counts.differ : counts.refusedAfter);
            expectListed(peer, current, tidied,
                         describeAll(*before) + "---- after:\n" +
                             (after ? describeAll(*after) : "refused\n"));
        }
    }

    const std::set<std::string> &listed() const { return listed_; }
    const std::set<std::string> &used() const { return used_; }
    const std::map<std::string, Counts> &counts() const { return counts_; }

private:
    // One of the rules that made a repair has a row for this reader.
    void expectListed(const peers::Peer &peer, const TidyCase &current, const Tidied &tidied,
                      const std::string &what) {
        bool found = false;
        for (const std::string &rule : rulesOf(tidied)) {
            const std::string row = rule + " | " + std::string(peer.name);
            if (listed_.contains(row)) {
                used_.insert(row);
                found = true;
            }
        }
        EXPECT_TRUE(found) << peer.name << " reads " << current.file << ':' << current.at << ", \""
                           << current.title << "\", in another way:\n"
                           << what;
    }

    std::set<std::string> listed_;
    std::set<std::string> used_;
    std::map<std::string, Counts> counts_;
};

TEST(TidySafety, OthersReadTheSameStreamsBeforeAndAfter) {
    Reading reading;
    for (const TidyCase &current : tidytest::readTidyCases()) {
        for (const peers::Peer &peer : peers::all()) {
            if (current.text) {
                reading.read(peer, current);
            }
        }
    }
    for (const auto &[name, counts] : reading.counts()) {
        std::cout << name << ": " << counts.same << " the same, " << counts.differ
                  << " in another way, " << counts.refusedBefore << " the repaired text alone, "
                  << counts.refusedAfter << " the given text alone, " << counts.refused
                  << " neither\n";
        EXPECT_GT(counts.same, 10) << name;
    }
    if (peers::all().size() == 4) {
        EXPECT_EQ(reading.used(), reading.listed()) << "a row of docs/repairs.md that is not so";
    }
}

} // namespace

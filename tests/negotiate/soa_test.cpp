// Compares answers with those of sofia-sip's offer/answer engine: the cases in which the two differ
// are those of docs/differences.md.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>

#include <sofia-sip/soa.h>
#include <sofia-sip/soa_tag.h>
#include <sofia-sip/su.h>
#include <sofia-sip/su_wait.h>

#include "negotiate/documents.hpp"
#include "support/peers/peers.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

// The answer of the engine; empty if there is none. It has all common formats in the offer's order,
// like our answers.
std::string answerBySoa(su_root_t *root, const std::string &offer, const std::string &local) {
    soa_session_t *const session = soa_create("default", root, nullptr);
    soa_set_params(session, SOATAG_RTP_SELECT(SOA_RTP_SELECT_COMMON),
                   SOATAG_RTP_SORT(SOA_RTP_SORT_REMOTE), TAG_END());
    const auto sizeOf = [](const std::string &text) { return static_cast<issize_t>(text.size()); };
    std::string text;
    const char *answer = nullptr;
    isize_t size = 0;
    if (soa_set_user_sdp(session, nullptr, local.data(), sizeOf(local)) >= 0 &&
        soa_set_remote_sdp(session, nullptr, offer.data(), sizeOf(offer)) >= 0 &&
        soa_generate_answer(session, nullptr) >= 0 &&
        soa_get_local_sdp(session, nullptr, &answer, &size) > 0) {
        text = answer;
    }
    soa_destroy(session);
    return text;
}

const peers::Peer &sofia() {
    return *std::find_if(peers::all().begin(), peers::all().end(),
                         [](const peers::Peer &one) { return one.name == "sofia"; });
}

// The text that its parser reads. The engine omits the formats of rejected streams, and writes
// words that it knows in small letters.
std::string streamsOf(const std::string &text) {
    std::string all;
    for (peers::Stream stream : sofia().read(text).value_or(peers::Streams())) {
        stream.address.clear();
        if (stream.port == 0) {
            stream.formats.clear();
        }
        all += peers::describe(stream) + '\n';
    }
    std::transform(all.begin(), all.end(), all.begin(), [](char byte) {
        return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
    });
    return all;
}

std::set<std::string> differing() {
    std::set<std::string> titles;
    su_init();
    su_root_t *const root = su_root_create(nullptr);
    size_t same = 0;
    for (const Case &current : readCases(SDPLINE_NEGOTIATE_CASES)) {
        const bool asked = current.has("offer") && current.has("local");
        if (!asked || current.has("previous") || !current.blocks.at("local").words.empty()) {
            continue;
        }
        const auto offer = bodyOf(current, "offer");
        const auto local = bodyOf(current, "local");
        const auto answer = sdpline::answer(*offer, *local);
        const std::string ours = *answer->body.encode();
        const std::string theirs = answerBySoa(root, *offer->encode(), *local->encode());
        if (theirs.empty() || streamsOf(ours) != streamsOf(theirs)) {
            titles.insert(current.title);
        } else {
            ++same;
        }
    }
    su_root_destroy(root);
    su_deinit();
    EXPECT_GT(same, 80u) << "nothing is compared";
    return titles;
}

// The last column of the table: "| ... | ... | one title; another one |"
std::set<std::string> listed() {
    std::set<std::string> titles;
    std::ifstream in(SDPLINE_DIFFERENCES);
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with("| ") || line.starts_with("| difference |") ||
            line.starts_with("| ---")) {
            continue;
        }
        const size_t end = line.rfind(" |");
        size_t begin = line.rfind("| ", end - 1) + 2;
        while (begin < end) {
            const size_t stop = std::min(line.find("; ", begin), end);
            titles.insert(line.substr(begin, stop - begin));
            begin = stop + 2;
        }
    }
    return titles;
}

TEST(NegotiateSoa, DiffersInTheCasesThatAreListed) {
    SdpSetSupMedProtoRtpAvpf(1);
    const auto found = differing();
    SdpSetSupMedProtoRtpAvpf(0);
    const auto known = listed();
    for (const std::string &title : found) {
        EXPECT_EQ(known.count(title), 1u) << "not in the table: " << title;
    }
    for (const std::string &title : known) {
        EXPECT_EQ(found.count(title), 1u) << "no longer differs: " << title;
    }
}

} // namespace

} // namespace negotiate_test

// Comes between the reader of inputs and the user: passes on only what is selected, and writes
// bodies to a folder.
#pragma once

#include <set>
#include <string>

#include "input/input.hpp"

namespace cli {

class Filter : public InputUser {
public:
    // The selection is that of the user.
    explicit Filter(InputUser &user) : user_(user), wanted_(user.selection()) {}

    void files(size_t count, uint64_t bytes) override { user_.files(count, bytes); }
    void bytesRead(uint64_t count) override { user_.bytesRead(count); }
    void message(const Found &whole) override;
    void body(const Found &found) override;
    std::shared_ptr<const Prepared> prepare(const Found &found) const override;
    bool wantsMessages() const override { return user_.wantsMessages(); }
    unsigned jobs() const override { return user_.jobs(); }
    void problem(const InputProblem &problem) override { user_.problem(problem); }
    void problemAt(const Found &place, Problem::Kind kind, const std::string &text) override;
    std::string packetOf(const Found &found) override { return user_.packetOf(found); }
    void fileDone(bool read) override { user_.fileDone(read); }

    // After the last input: reports that nothing was selected.
    void finish(const std::string &path);

private:
    bool takes(const Found &found) const;
    void extract(const Found &found);

    InputUser &user_;
    const Selection &wanted_;
    std::set<std::string> written_;
    size_t seen_ = 0;
    size_t taken_ = 0;
};

} // namespace cli

// An input that must hold exactly one body, and where its m= lines are.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands/commands.hpp"

namespace cli {

// Reads the input. Whatever keeps it from being one accepted body is reported on standard error.
class OneBody : public BodyUser {
public:
    // A redactor learns the values of the body, and masks what is reported of it.
    OneBody(const DecodeOptions &options, const std::string &path, Redactor *shared = nullptr);

    void body(const Found &found) override;

    // Null where there is not exactly one body, it is refused, or the input cannot be read.
    const sdpline::Body *get() const {
        return count_ == 1 && body_ && status() != kUnusable ? &*body_ : nullptr;
    }

    // "offer.sip:9:1": the m= line of the stream, or the beginning of the body without one.
    std::string placeOf(std::optional<uint32_t> stream) const;

private:
    size_t count_ = 0;
    std::optional<sdpline::Body> body_;
    std::string name_;
    size_t line_ = 1;
    std::vector<size_t> mediaLines_;
};

} // namespace cli

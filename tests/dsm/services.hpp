// Core services that a test can make fail: this program's definitions win over libsipcore's, and
// pass every call on to it that they are not told to refuse.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace dsmtest {

// While it lives, SipMmCreateBufMem answers `result` and makes no block.
class NoBlocks {
public:
    explicit NoBlocks(uint32_t result);
    ~NoBlocks();
    NoBlocks(const NoBlocks &) = delete;
    NoBlocks &operator=(const NoBlocks &) = delete;
};

// While it lives, memcpy_s copies nothing and fails, and the reports of SIPAbnormalSecureFunc are
// kept.
class NoCopies {
public:
    NoCopies();
    ~NoCopies();
    NoCopies(const NoCopies &) = delete;
    NoCopies &operator=(const NoCopies &) = delete;

    const std::vector<std::pair<std::string, uint32_t>> &reports() const { return reports_; }

private:
    friend struct Reporter;
    std::vector<std::pair<std::string, uint32_t>> reports_;
};

} // namespace dsmtest

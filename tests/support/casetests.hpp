// Registers a test for each case of a document.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/documents.hpp"

namespace support {

// Registers Test(case) as "Cases_connection.AddressWithTtl", by the prefix, the document and the
// title. The cases must live as long as the program.
template <class Test, class Case>
bool registerCases(const std::string &prefix, const std::vector<Case> &cases) {
    for (const Case &current : cases) {
        const std::string suite = prefix + testName(current.file.substr(0, current.file.find('.')));
        testing::RegisterTest(suite.c_str(), testName(current.title).c_str(), nullptr, nullptr,
                              current.file.c_str(), current.at,
                              [&current]() -> Test * { return new Test(current); });
    }
    return true;
}

} // namespace support

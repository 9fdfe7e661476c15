// Runs the tests, then checks that every failing check was reached.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/unreached.hpp"

namespace {

using sdpline::Check;

bool isUnreachable(Check check) {
    return std::any_of(std::begin(support::kUnreachable), std::end(support::kUnreachable),
                       [check](const auto &row) { return row.check == check; });
}

class EveryCheckFails : public testing::Environment {
public:
    void TearDown() override {
        if (testing::GTEST_FLAG(filter) != "*") {
            return; // a part of the tests reaches a part of the checks
        }
        for (size_t i = 0; i < sdpline::kCheckCount; ++i) {
            const auto check = static_cast<Check>(i);
            const bool reached = sdpline::checkHits[i] != 0;
            EXPECT_NE(reached, isUnreachable(check))
                << "check " << sdpline::row(check).name << " of " << sdpline::row(check).function
                << (reached ? " is listed as unreachable" : " was never reached");
        }
    }
};

} // namespace

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new EveryCheckFails);
    return RUN_ALL_TESTS();
}

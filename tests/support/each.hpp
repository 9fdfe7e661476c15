// A function over a table of its arguments and results.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string_view>
#include <utility>

namespace support {

template <class Input = std::string_view, class Output = std::string_view, class Function>
void expectEach(const Function &function,
                std::initializer_list<std::pair<Input, Output>> inputsAndOutputs) {
    for (const auto &[input, output] : inputsAndOutputs) {
        EXPECT_EQ(function(input), output) << "of " << testing::PrintToString(input);
    }
}

} // namespace support

// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text_reading.h"

#include <gtest/gtest.h>

TEST(TokenStream, TakesTheLongestNumericBeginning) {
    const std::tuple<const char*, double, bool> cases[] = {
        {"2000.5", 2000.5, false}, {"1e3", 1000.0, false}, {"12abc", 12.0, false},
        {"abc", 0.0, true},        {"", 0.0, true},        {"nan", 0.0, true},
        {"+5", 5.0, false},        {"1e999", 0.0, true},   {"+-5", 0.0, true}};
    for (const auto& [text, value, failed] : cases) {
        TokenStream stream(text);
        EXPECT_DOUBLE_EQ(stream.real(), value) << text;
        EXPECT_EQ(stream.failed(), failed) << text;
    }
    TokenStream tooLarge("99999999999");
    EXPECT_EQ(tooLarge.integer(), 0);
    EXPECT_TRUE(tooLarge.failed());
}

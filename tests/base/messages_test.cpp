// Inputs and choosers, with and without an operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// Accepts the initial value of an input, rounded to two decimals.
struct TakesStart : UnattendedMessages {
    std::optional<int> inputInteger(const InputTexts&, int start, const IntegerBounds&) override {
        return start;
    }
    std::optional<double> inputNumber(const InputTexts&, double start,
                                      const NumberBounds&) override {
        return std::round(start * 100) / 100;
    }
};

TEST(Messages, InputsBeginWithinTheirBounds) {
    TakesStart handler;
    installMessageHandler(&handler);
    for (const auto& [start, expected] : std::vector<std::pair<int, int>>{{-9, -3}, {5, 5}, {9, 8}})
        EXPECT_EQ(askForInteger({"t", "n"}, start, {-3, 8}), expected);
    // What the field rounds down lies below the bound.
    for (const auto& [start, expected] : std::vector<std::pair<double, double>>{
             {-0.5, 0.253}, {0.5, 0.5}, {9.0, 1.0}, {none, 0.253}})
        EXPECT_EQ(askForNumber({"t", "n"}, start, {0.253, 1.0, 2}), expected);

    EXPECT_EQ(askForInteger({"t", "n"}, 4, {5, 4}), std::nullopt);
    for (const NumberBounds& bounds : {NumberBounds{1.0, 0.0}, NumberBounds{none, 1.0}})
        EXPECT_EQ(askForNumber({"t", "n"}, 0.5, bounds), std::nullopt);
    installMessageHandler(nullptr);
}

TEST(Messages, WithoutAWindowEverythingIsCancelled) {
    EXPECT_FALSE(askQuestion("really?"));
    EXPECT_EQ(askForInteger({"t", "n"}, 4, {0, 9}), std::nullopt);
    EXPECT_EQ(askForText({"t", "n"}, "start"), std::nullopt);
    EXPECT_EQ(waitForFileToSave("t", "/", "All (*)"), "");
    chooseFileToSave("t", "/", "All (*)", [](const QString&) { ADD_FAILURE(); });
}

} // namespace

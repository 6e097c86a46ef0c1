// Inputs, questions and choosers, with and without an operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"

#include "support/scripted_messages.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// Accepts the initial value of an input, or gives an answer of its own.
class TakesStart : public UnattendedMessages {
public:
    TakesStart() : previous_(installMessageHandler(this)) {}
    ~TakesStart() override { installMessageHandler(previous_); }
    std::optional<int> inputInteger(const InputTexts&, int start, const IntegerBounds&) override {
        return start;
    }
    std::optional<double> inputNumber(const InputTexts&, double start,
                                      const NumberBounds&) override {
        startOfNumber = start;
        return std::isnan(answer) ? start : answer;
    }
    double answer = none;
    double startOfNumber = none;

private:
    MessageHandler* previous_;
};

TEST(Messages, InputsBeginWithinTheirBounds) {
    TakesStart handler;
    for (const auto& [start, expected] : std::vector<std::pair<int, int>>{{-9, -3}, {5, 5}, {9, 8}})
        EXPECT_EQ(askForInteger({"t", "n"}, start, {-3, 8}), expected);
    for (const auto& [start, expected] :
         std::vector<std::pair<double, double>>{{-0.5, 0.25}, {0.5, 0.5}, {9.0, 1.0}, {none, 0.25}})
        EXPECT_EQ(askForNumber({"t", "n"}, start, {0.25, 1.0, 1}), expected);
    // Rounded to one decimal by the field.
    handler.answer = 0.2;
    EXPECT_EQ(askForNumber({"t", "n"}, 0.25, {0.25, 1.0, 1}), 0.25);

    EXPECT_EQ(askForInteger({"t", "n"}, 4, {4, 4}), 4);
    EXPECT_EQ(askForInteger({"t", "n"}, 4, {5, 4}), std::nullopt);
    for (const NumberBounds& bounds : {NumberBounds{1.0, 0.0}, NumberBounds{none, 1.0}})
        EXPECT_EQ(askForNumber({"t", "n"}, 0.5, bounds), std::nullopt);
}

TEST(Messages, WithoutAWindowEverythingIsCancelled) {
    MessageHandler* previous = installMessageHandler(nullptr);
    EXPECT_FALSE(askQuestion("really?"));
    EXPECT_EQ(askForInteger({"t", "n"}, 4, {0, 9}), std::nullopt);
    EXPECT_EQ(askForNumber({"t", "n"}, 4, {0, 9, 2}), std::nullopt);
    EXPECT_EQ(askForText({"t", "n"}, "start"), std::nullopt);
    EXPECT_EQ(chooseFileToOpen("t", "/", "All (*)") + waitForFileToSave("t", "/", "All (*)"), "");
    OpenChooser chooser;
    chooseFileToSave("t", "/", "All (*)", [](const QString&) { ADD_FAILURE(); });
    chooseColor(
        "t", {}, [](const RgbColor&) { ADD_FAILURE(); }, chooser);
    installMessageHandler(previous);
}

TEST(Messages, AScriptAnswersEachRequestOnce) {
    ScriptedMessages messages;
    messages.expect(MessageLevel::Information, "done", "Plug-in");
    messages.expectQuestion("more?", true, "Plug-in");
    messages.expectInteger("how many?", 7);
    messages.expectNumber("how much?", std::nullopt);
    messages.expectText("name?", "a&b");
    messages.expectColorChoice("Color of a", RgbColor{1, 2, 3});
    messages.expectFileChoice("Save", "/tmp/x.roi");
    showInformation("done", "Plug-in");
    EXPECT_TRUE(askQuestion("more?", "Plug-in"));
    EXPECT_EQ(askForInteger({"t", "how many?"}, 1, {0, 9}), 7);
    EXPECT_EQ(askForNumber({"t", "how much?"}, 1, {0, 9, 3}), std::nullopt);
    EXPECT_EQ(askForText({"t", "name?"}, {}), "a&b");
    RgbColor color;
    OpenChooser chooser;
    chooseColor(
        "Color of a", {}, [&](const RgbColor& chosen) { color = chosen; }, chooser);
    EXPECT_EQ(color, (RgbColor{1, 2, 3}));
    EXPECT_EQ(waitForFileToSave("Save", {}, {}), "/tmp/x.roi");
}

TEST(Messages, AChooserClosesOnceAndWithItsSubject) {
    QString closed;
    {
        OpenChooser chooser;
        chooser.close();
        chooser.hold([&] {
            closed += '1';
            chooser.close();
        });
        chooser.hold([&] { closed += '2'; });
        EXPECT_EQ(closed, "1");
    }
    EXPECT_EQ(closed, "12");
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_table.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

FeedbackRow ofOneThermometer() {
    FeedbackRow record;
    record.volume = 30;
    record.condition = "Up_7";
    record.regionSignals = {1012.34564f, 987.25f};
    record.values.live = record.values.computed = true;
    record.values.Baseline1 = 1000.5f;
    record.values.RelativeLevel = 0.1f;
    record.values.FbLevel1 = -1;
    record.values.TargetLevel = 7;
    record.levelShown = true;
    record.milliseconds = 41;
    return record;
}

} // namespace

TEST(FeedbackTable, RowsHoldWhatWasComputedAndShown) {
    const auto withChange = [](void (*change)(FeedbackRow&)) {
        FeedbackRow record = ofOneThermometer();
        change(record);
        return record;
    };
    const std::pair<FeedbackRow, QByteArray> cases[] = {
        {ofOneThermometer(),
         "31 Up_7 1012.34564 987.25 n/a 1000.5 n/a 0.100000001 -1 n/a 7 n/a 0 41"},
        {withChange([](FeedbackRow& record) {
             record.values.pair = record.values.noFeedback = true; // which hides one only
             record.values.TargetLevel = noTargetLevel;
             record.regionSignals = {1.0f, 2.0f, 3.0f, 4.0f};
         }),
         "31 Up_7 1 2 3 1000.5 0 n/a -1 4 n/a 0 0 41"},
        {withChange([](FeedbackRow& record) {
             record.values.noFeedback = true;
             record.levelShown = false;
             record.condition = "a\tb\r\n";
             record.regionSignals = {NAN};
         }),
         "31 a~b~~ n/a n/a n/a 1000.5 n/a 0.100000001 n/a n/a 7 n/a 1 41"},
        {withChange([](FeedbackRow& record) { record.values.classifier = true; }),
         "31 Up_7 1012.34564 987.25 n/a n/a n/a n/a -1 n/a n/a n/a n/a 41"},
        {withChange([](FeedbackRow& record) { record.values.computed = false; }), // a curve
         "31 Up_7 1012.34564 987.25 n/a n/a n/a n/a n/a n/a n/a n/a 0 41"},
        {FeedbackRow(), "1 n/a n/a n/a n/a n/a n/a n/a n/a n/a n/a n/a n/a 0"}};
    for (const auto& [record, expected] : cases) {
        QByteArray line = expected;
        line.replace(' ', '\t').replace('~', ' ');
        EXPECT_EQ(feedbackTableRow(record, 3).toStdString(), (line + '\n').toStdString());
    }
    EXPECT_EQ(feedbackTableHead(2).toStdString(),
              "volume\tcondition\troi1\troi2\tbaseline1\tbaseline2\trelative_level\tshown_level1\t"
              "shown_level2\ttarget1\ttarget2\tsuppressed\tmilliseconds\n");
}

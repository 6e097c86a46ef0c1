// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_library.h"

#include <gtest/gtest.h>

namespace {

/// Two classes that overlap so much that the solver needs thousands of iterations.
PatternSet overlapping() {
    PatternSet patterns;
    patterns.nrOfFeatures = 2;
    for (int i = 0; i < 60; ++i)
        patterns.append(i % 2 ? 1.0 : -1.0,
                        std::vector{double(i * 7919 % 61), double(i * 104729 % 67)});
    return patterns;
}

TEST(SVMTrainer, EndsEarlyWhenItIsStopped) {
    std::stop_source stop;
    stop.request_stop();
    SVMModel model;
    SVMOptions options;
    options.C = 1e9;
    EXPECT_EQ(SVMTrainer(stop.get_token()).train(overlapping(), options, model),
              SVMResult::Stopped);
    EXPECT_TRUE(model.isEmpty());
    std::vector<double> predicted;
    EXPECT_EQ(SVMTrainer(stop.get_token()).crossValidate(overlapping(), options, 5, 1, predicted),
              SVMResult::Stopped);
    options.C = 1;
    EXPECT_EQ(SVMTrainer().train(overlapping(), options, model), SVMResult::Done);
    EXPECT_EQ(model.nrOfClasses(), 2);
}

} // namespace

// What a machine says of a pattern, and how often it is right.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_library.h"

/// The answer of a machine.
struct SVMPrediction {
    double label = 0.0; ///< of the predicted class
    /// Of two classes: the decision value, above 0 for class 1 whatever the order of the model's
    /// labels. Of more: the predicted label.
    double output = 0.0;
    /// From 1. Of two classes 1 where the output is above 0, else 2. Of more the number by the
    /// model's own labels: the slot of the most votes, the first one on a tie, names its label.
    int classNumber = 1;
    /// Decision values by pair, in double; of two classes the output.
    std::vector<double> pairValues;
};

/// A pair votes for its first class where its decision value is above 0, else for its second.
[[nodiscard]] SVMPrediction predict(const SVMModel& model, std::span<const double> features);

/// True when the first class of a two-class model is not class 1: its decision values change sign.
/// Class 1 is the label 1, also where the other one is -1 or 2.
[[nodiscard]] bool signIsFlipped(const SVMModel& model);

/// Predictions of all exemplars with their targets.
struct PredictionReport {
    std::vector<SVMPrediction> predictions;
    std::vector<double> targets;
    int nrOfRight = 0;
    /// Labels in rising order, and how often a target (row) got a label (column).
    std::vector<double> labels;
    std::vector<int> confusion;

    [[nodiscard]] double percentRight() const;
};
[[nodiscard]] PredictionReport predictAll(const SVMModel& model, const PatternSet& patterns);

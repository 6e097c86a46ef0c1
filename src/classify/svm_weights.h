// The weights of features in a trained machine.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_library.h"

/// One row of weights, one for each feature.
struct SVMWeights {
    int label = 1; ///< of the class that the weights speak for
    std::vector<double> values;
};

/// In the linear sense, whatever the kernel: sums of coefficient times support vector. Two classes
/// give one row, positive where a feature speaks for class 1. More give one for each class, in the
/// order of rising labels: the sum of the weights of its pairs, with the sign in which they speak
/// for it.
[[nodiscard]] std::vector<SVMWeights> svmWeights(const SVMModel& model);

/// The constants b: -rho of each pair; of two classes with the sign that fits the weights.
[[nodiscard]] std::vector<double> svmConstants(const SVMModel& model);

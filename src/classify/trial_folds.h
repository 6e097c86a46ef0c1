// The folds of feature elimination: trials of two classes, as many of each. Those of
// cross-validation are libsvm's, or runs (svm_library.h, cross_validation.h).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/pattern_set.h"

#include <QStringList>
#include <random>
#include <span>
#include <vector>

/// Exemplars by class, numbered from 0 in the whole set of patterns.
struct TrialFold {
    std::vector<int> class1;
    std::vector<int> class2;

    [[nodiscard]] std::vector<int> exemplars() const; ///< class 1 first
};

/// Label 1 is class 1, any other one class 2.
[[nodiscard]] inline bool isOfClass1(double label) {
    return label == 1.0;
}

/// Puts the exemplars into random order and deals each class into folds of (trials of the class) /
/// nrOfFolds, without the remainder, in that order.
[[nodiscard]] std::vector<TrialFold> dealFolds(const PatternSet& patterns,
                                               std::vector<int> exemplars, int nrOfFolds,
                                               std::mt19937& generator);
/// The exemplars of all folds but one.
[[nodiscard]] std::vector<int> exemplarsOfOthers(const std::vector<TrialFold>& folds,
                                                 size_t leftOut);
/// Two lines for each fold, with the exemplars' numbers from 1; each begins with `prefix`.
[[nodiscard]] QStringList foldLines(const QString& prefix, const std::vector<TrialFold>& folds);

// What training and testing write into the log.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/cross_validation.h"
#include "classify/svm_prediction.h"

#include <QStringList>

/// How many exemplars each class has.
[[nodiscard]] QString trialCountsReport(const QStringList& classes, const std::vector<int>& counts);

/// Number of folds that a cross-validation of these patterns has.
[[nodiscard]] int nrOfFolds(const PatternSet& patterns, const CrossValidationOptions& folds);
/// How the folds are made, with the seed that repeats them.
[[nodiscard]] QString foldsReport(const PatternSet& patterns, const CrossValidationOptions& folds);
/// A line for each C, and the one that was taken.
[[nodiscard]] QString searchReport(const CSearch& search, const PatternSet& patterns,
                                   const CrossValidationOptions& folds);
[[nodiscard]] QString crossValidationReport(const CrossValidation& validation,
                                            const PatternSet& patterns,
                                            const CrossValidationOptions& folds);
/// A blank line, C and kernel.
[[nodiscard]] QString trainingHeading(const SVMOptions& options);
/// b, or of more classes all of them.
[[nodiscard]] QString constantsReport(const std::vector<double>& constants);
/// Output and target of each exemplar, and the accuracy, after training and after a test.
[[nodiscard]] QString trainingPredictions(const PredictionReport& report);
[[nodiscard]] QString testPredictions(const PredictionReport& report);
/// Accuracy and p with its count.
[[nodiscard]] QString permutationReport(const PermutationTest& test, int nrOfExemplars);

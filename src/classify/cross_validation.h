// How well a machine generalises: folds, the search for C, and what chance would give.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_tasks.h"

#include <QStringList>

enum class FoldKind {
    Random, ///< libsvm's: exemplars dealt at random
    ByRun   ///< each run is left out once: trials of one run are not independent
};

struct CrossValidationOptions {
    FoldKind folds = FoldKind::Random;
    int nrOfFolds = 10; ///< of Random; as many as exemplars where there are fewer
    unsigned seed = 1;  ///< of the folds; the same one for all values of C, and in the log

    bool operator==(const CrossValidationOptions&) const = default;
};

/// What is wrong with cross-validating these patterns so, as a sentence; empty if nothing is: fewer
/// than 2 folds, exemplars or classes; for folds by run fewer than 2 runs, or a run without which
/// only one class is left.
[[nodiscard]] QString faultOfFolds(const PatternSet& patterns,
                                   const CrossValidationOptions& options);

struct CrossValidation {
    SVMResult result = SVMResult::Done;
    std::vector<double> predictedLabels; ///< of each exemplar
    int nrOfRight = 0;
    std::string printed; ///< by libsvm
};
/// On the caller's thread.
[[nodiscard]] CrossValidation crossValidate(const PatternSet& patterns, const SVMOptions& options,
                                            const CrossValidationOptions& folds,
                                            std::stop_token stop = {});

/// One value of C that was tried.
struct CTrial {
    double exponent = 0.0; ///< C = e^exponent
    int nrOfRight = 0;
};
struct CSearch {
    SVMResult result = SVMResult::Done;
    std::vector<CTrial> trials; ///< from exponent -5 in steps of 0.5 while below 15
    /// The exponent of the first trial with the most right, truncated to an integer: -5 unless a
    /// later trial was strictly better.
    int bestExponent = -5;
    double C = 1.0; ///< e^bestExponent; because of the truncation it may not be one that was tried
};
/// One value after the other goes to the next free thread; the result doesn't depend on their
/// number.
[[nodiscard]] CSearch searchC(const PatternSet& patterns, const SVMOptions& options,
                              const CrossValidationOptions& folds, ProgressReporter& progress,
                              int nrOfThreads = oneThreadPerCore);

/// The accuracy of shuffled labels beside that of the true ones.
struct PermutationTest {
    SVMResult result = SVMResult::Done;
    int nrOfRight = 0;                 ///< with the true labels
    std::vector<int> shuffledRight;    ///< with each shuffling
    [[nodiscard]] int atLeast() const; ///< shufflings with at least as many right
    /// (atLeast() + 1) / (shufflings + 1): the true labelling counts as one of them (B. Phipson and
    /// G. K. Smyth, Statistical Applications in Genetics and Molecular Biology 9, 2010, article
    /// 39).
    [[nodiscard]] double p() const;
};
/// Labels are shuffled within runs, by generators with the seeds that follow that of the folds. The
/// result doesn't depend on the number of threads.
[[nodiscard]] PermutationTest testByPermutation(const PatternSet& patterns,
                                                const SVMOptions& options,
                                                const CrossValidationOptions& folds,
                                                int nrOfPermutations, ProgressReporter& progress,
                                                int nrOfThreads = oneThreadPerCore);

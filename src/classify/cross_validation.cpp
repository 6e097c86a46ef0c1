// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/cross_validation.h"

#include "classify/shuffling.h"
#include "classify/svm_prediction.h"
#include "classify/svm_tasks.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

/// Numbers of exemplars by run.
using ExemplarsOfRuns = std::map<int, std::vector<int>>;

/// One run where they aren't known.
ExemplarsOfRuns exemplarsOfRuns(const PatternSet& patterns) {
    ExemplarsOfRuns result;
    for (int i = 0; i < patterns.count(); ++i)
        result[patterns.runs.empty() ? 0 : patterns.runs[size_t(i)]].push_back(i);
    return result;
}

std::vector<int> exemplarsOfOthers(const ExemplarsOfRuns& runs, int leftOut) {
    std::vector<int> others;
    for (const auto& [run, exemplars] : runs)
        if (run != leftOut)
            others.insert(others.end(), exemplars.begin(), exemplars.end());
    std::sort(others.begin(), others.end());
    return others;
}

bool othersHaveTwoClasses(const PatternSet& patterns) {
    const ExemplarsOfRuns runs = exemplarsOfRuns(patterns);
    return std::all_of(runs.begin(), runs.end(), [&](const auto& run) {
        const std::vector<int> others = exemplarsOfOthers(runs, run.first);
        return std::any_of(others.begin(), others.end(), [&](int exemplar) {
            return patterns.labels[size_t(exemplar)] != patterns.labels[size_t(others.front())];
        });
    });
}

SVMResult leaveRunsOut(const PatternSet& patterns, const SVMOptions& options, SVMTrainer& trainer,
                       std::vector<double>& predictedLabels) {
    const ExemplarsOfRuns runs = exemplarsOfRuns(patterns);
    std::vector<double> predicted(patterns.labels.size());
    for (const auto& [run, exemplars] : runs) {
        SVMModel model;
        const SVMResult result =
            trainer.train(patterns.exemplars(exemplarsOfOthers(runs, run)), options, model);
        if (result != SVMResult::Done)
            return result;
        for (const int exemplar : exemplars)
            predicted[size_t(exemplar)] = predict(model, patterns.features(exemplar)).label;
    }
    predictedLabels = std::move(predicted);
    return SVMResult::Done;
}

int countRight(const PatternSet& patterns, const std::vector<double>& predictedLabels) {
    int count = 0;
    for (size_t i = 0; i < predictedLabels.size(); ++i)
        count += predictedLabels[i] == patterns.labels[i] ? 1 : 0;
    return count;
}

PatternSet withShuffledLabels(const PatternSet& patterns, unsigned seed) {
    PatternSet result = patterns;
    std::mt19937 generator(seed);
    for (const auto& [run, exemplars] : exemplarsOfRuns(patterns)) {
        std::vector<int> sources = exemplars;
        shuffle(std::span(sources), generator);
        for (size_t i = 0; i < exemplars.size(); ++i)
            result.labels[size_t(exemplars[i])] = patterns.labels[size_t(sources[i])];
    }
    return result;
}

} // namespace

QString faultOfFolds(const PatternSet& patterns, const CrossValidationOptions& options) {
    if (patterns.count() < 2)
        return "Cross-validation needs at least 2 exemplars.";
    if (labelCounts(patterns).size() < 2)
        return "Cross-validation needs exemplars of at least 2 classes.";
    if (options.folds == FoldKind::Random)
        return options.nrOfFolds < 2 ? "Cross-validation needs at least 2 folds." : QString();
    if (patterns.nrOfRuns() < 2)
        return "Leaving out one run at a time needs exemplars of at least 2 runs.";
    if (!othersHaveTwoClasses(patterns))
        return "When one of the runs is left out, the other runs have only one class.";
    return {};
}

CrossValidation crossValidate(const PatternSet& patterns, const SVMOptions& options,
                              const CrossValidationOptions& folds, std::stop_token stop) {
    CrossValidation validation;
    SVMTrainer trainer(std::move(stop));
    validation.result =
        folds.folds == FoldKind::ByRun
            ? leaveRunsOut(patterns, options, trainer, validation.predictedLabels)
            : trainer.crossValidate(patterns, options, std::min(folds.nrOfFolds, patterns.count()),
                                    folds.seed, validation.predictedLabels);
    validation.nrOfRight = countRight(patterns, validation.predictedLabels);
    validation.printed = trainer.printed();
    return validation;
}

CSearch searchC(const PatternSet& patterns, const SVMOptions& options,
                const CrossValidationOptions& folds, ProgressReporter& progress, int nrOfThreads) {
    CSearch search;
    for (double exponent = -5.0; exponent < 15.0; exponent += 0.5)
        search.trials.push_back({exponent, 0});
    const auto tryC = [&](int index, const std::stop_token& stop) {
        CTrial& trial = search.trials[size_t(index)];
        SVMOptions tried = options;
        tried.C = std::exp(trial.exponent);
        const CrossValidation validation = crossValidate(patterns, tried, folds, stop);
        trial.nrOfRight = validation.nrOfRight;
        return validation.result;
    };
    search.result = doSVMTasks(int(search.trials.size()), tryC, progress, nrOfThreads);
    int most = 0;
    for (const CTrial& trial : search.trials)
        if (trial.nrOfRight > most) {
            most = trial.nrOfRight;
            search.bestExponent = int(trial.exponent);
        }
    search.C = std::exp(double(search.bestExponent));
    return search;
}

int PermutationTest::atLeast() const {
    return int(std::count_if(shuffledRight.begin(), shuffledRight.end(),
                             [this](int right) { return right >= nrOfRight; }));
}

double PermutationTest::p() const {
    return double(atLeast() + 1) / double(shuffledRight.size() + 1);
}

PermutationTest testByPermutation(const PatternSet& patterns, const SVMOptions& options,
                                  const CrossValidationOptions& folds, int nrOfPermutations,
                                  ProgressReporter& progress, int nrOfThreads) {
    PermutationTest test;
    test.shuffledRight.resize(size_t(std::max(nrOfPermutations, 0)));
    // Task 0 has the true labels.
    const auto validate = [&](int index, const std::stop_token& stop) {
        const CrossValidation validation =
            index == 0 ? crossValidate(patterns, options, folds, stop)
                       : crossValidate(withShuffledLabels(patterns, folds.seed + unsigned(index)),
                                       options, folds, stop);
        (index == 0 ? test.nrOfRight : test.shuffledRight[size_t(index) - 1]) =
            validation.nrOfRight;
        return validation.result;
    };
    test.result = doSVMTasks(int(test.shuffledRight.size()) + 1, validate, progress, nrOfThreads);
    return test;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/cross_validation.h"

#include "classify/classify_data.h"
#include "classify/svm_prediction.h"

#include <cmath>

namespace {

CrossValidationOptions byRun() {
    CrossValidationOptions folds;
    folds.folds = FoldKind::ByRun;
    return folds;
}

/// Puts each class into a run of its own.
void dealRunsByClass(PatternSet& patterns) {
    for (size_t i = 0; i < patterns.runs.size(); ++i)
        patterns.runs[i] = patterns.labels[i] == 1.0 ? 4 : 9;
}

} // namespace

TEST(CrossValidation, SaysWhyPatternsCanNotBeDealtIntoFolds) {
    PatternSet patterns;
    CrossValidationOptions folds;
    // One sentence, and how the patterns or folds come to deserve it.
    const std::pair<const char*, std::function<void()>> faults[] = {
        {"Cross-validation needs at least 2 exemplars",
         [&] { patterns = patterns.exemplars(std::vector{0}); }},
        {"Cross-validation needs exemplars of at least 2 classes",
         [&] { std::ranges::fill(patterns.labels, 1.0); }},
        {"Cross-validation needs at least 2 folds", [&] { folds.nrOfFolds = 1; }},
        {"Leaving out one run", [&] { folds = byRun(), patterns.runs.clear(); }},
        {"When one of the runs", [&] { folds = byRun(), dealRunsByClass(patterns); }}};
    for (const auto& [begin, spoil] : faults) {
        patterns = plantedPatterns({});
        folds = {};
        EXPECT_EQ(faultOfFolds(patterns, folds), QString());
        EXPECT_EQ(faultOfFolds(patterns, byRun()), QString());
        spoil();
        EXPECT_TRUE(faultOfFolds(patterns, folds).startsWith(begin)) << begin;
    }
}

TEST(CrossValidation, LeavesOutOneRunAfterTheOther) {
    const PatternSet patterns = plantedPatterns({.strength = 0.4, .runs = 3, .classes = 3});
    const CrossValidation validation = crossValidate(patterns, {}, byRun());
    ASSERT_EQ(validation.result, SVMResult::Done);
    int nrOfRight = 0;
    for (const int run : {0, 1, 2}) {
        std::vector<int> tested, others;
        for (int i = 0; i < patterns.count(); ++i)
            (patterns.runs[size_t(i)] == run ? tested : others).push_back(i);
        SVMModel model;
        ASSERT_EQ(SVMTrainer().train(patterns.exemplars(others), {}, model), SVMResult::Done);
        const PredictionReport report = predictAll(model, patterns.exemplars(tested));
        for (size_t i = 0; i < tested.size(); ++i)
            EXPECT_EQ(validation.predictedLabels[size_t(tested[i])], report.predictions[i].label);
        nrOfRight += report.nrOfRight;
    }
    EXPECT_EQ(validation.nrOfRight, nrOfRight);
    EXPECT_LT(nrOfRight, patterns.count()) << "too easy to tell a mistake";
    EXPECT_GT(nrOfRight, patterns.count() / 2);
}

TEST(CrossValidation, NoMoreFoldsThanExemplars) {
    const PatternSet patterns = plantedPatterns({.trials = 6, .strength = 3.0});
    CrossValidationOptions many;
    many.nrOfFolds = 999;
    const CrossValidation validation = crossValidate(patterns, {}, many);
    EXPECT_EQ(validation.nrOfRight, 6);
    EXPECT_EQ(QByteArray::fromStdString(validation.printed).count("optimization finished"), 6);
}

// The first best exponent of these data was looked at: it is cut towards 0.
TEST(CrossValidation, TheFirstBestCIsTruncated) {
    RecordedProgress quiet;
    CrossValidationOptions folds;
    folds.nrOfFolds = 3;
    for (const auto& [seed, threads, firstBest, truncated] :
         {std::tuple(16u, 1, -0.5, 0), {12u, 2, 0.5, 0}, {55u, 5, 2.0, 2}}) {
        const PatternSet patterns =
            plantedPatterns({.trials = 30, .features = 8, .strength = 0.8, .seed = seed});
        SVMOptions options;
        options.kernel = SVMKernel::RBF;
        const CSearch search = searchC(patterns, options, folds, quiet, threads);
        ASSERT_EQ(search.trials.size(), 40u);
        CTrial best;
        for (size_t i = 0; i < 40; ++i) {
            EXPECT_EQ(search.trials[i].exponent, -5.0 + 0.5 * double(i));
            options.C = std::exp(search.trials[i].exponent);
            EXPECT_EQ(search.trials[i].nrOfRight,
                      crossValidate(patterns, options, folds).nrOfRight);
            if (search.trials[i].nrOfRight > best.nrOfRight)
                best = search.trials[i];
        }
        EXPECT_EQ(best.exponent, firstBest);
        EXPECT_EQ(search.bestExponent, truncated);
        EXPECT_DOUBLE_EQ(search.C, std::exp(double(truncated)));
    }
    const PatternSet easy = plantedPatterns({.trials = 12, .strength = 5.0});
    EXPECT_EQ(searchC(easy, {}, folds, quiet).bestExponent, -5) << "all are equally good";
}

TEST(CrossValidation, StopsWhenAsked) {
    const PatternSet patterns = plantedPatterns({});
    RecordedProgress cancelling;
    cancelling.cancelAt = 0;
    EXPECT_EQ(searchC(patterns, {}, {}, cancelling).result, SVMResult::Stopped);
    EXPECT_EQ(testByPermutation(patterns, {}, {}, 100, cancelling).result, SVMResult::Stopped);
}

TEST(PermutationTest, CountsTheTrueLabelsAsOneOfTheShufflings) {
    PermutationTest test;
    test.nrOfRight = 7;
    test.shuffledRight = {6, 7, 8, 1};
    EXPECT_EQ(test.atLeast(), 2);
    EXPECT_DOUBLE_EQ(test.p(), 0.6);
}

TEST(PermutationTest, TheNumberOfThreadsDoesNotMatter) {
    const PatternSet patterns = plantedPatterns({.trials = 24, .strength = 2.0, .runs = 2});
    RecordedProgress quiet;
    const PermutationTest one = testByPermutation(patterns, {}, byRun(), 30, quiet, 1);
    EXPECT_EQ(one.nrOfRight, crossValidate(patterns, {}, byRun()).nrOfRight);
    EXPECT_LT(one.p(), 0.05);
    for (const int threads : {2, 5})
        EXPECT_EQ(testByPermutation(patterns, {}, byRun(), 30, quiet, threads).shuffledRight,
                  one.shuffledRight);
}

// Where each run has one class, a shuffling within runs changes nothing.
TEST(PermutationTest, LabelsStayInTheirRun) {
    PatternSet patterns = plantedPatterns({.trials = 24, .strength = 0.5});
    dealRunsByClass(patterns);
    RecordedProgress quiet;
    const PermutationTest test = testByPermutation(patterns, {}, {}, 5, quiet);
    EXPECT_EQ(test.atLeast(), 5);
    EXPECT_EQ(test.shuffledRight, std::vector<int>(5, test.nrOfRight));
}

// On noise p is uniform: the distance of its distribution stays below the Kolmogorov bound for a
// probability of 0.1 %, 1.95 / sqrt(n).
TEST(PermutationTest, PIsUniformOnNoise) {
    std::vector<double> ps;
    RecordedProgress quiet;
    CrossValidationOptions folds;
    folds.nrOfFolds = 4;
    constexpr int dataSets = 40;
    for (unsigned seed = 1; seed <= dataSets; ++seed) {
        folds.seed = 1000 * seed;
        const PatternSet noise =
            plantedPatterns({.trials = 32, .features = 4, .strength = 0.0, .seed = seed});
        ps.push_back(testByPermutation(noise, {}, folds, 19, quiet).p());
    }
    std::sort(ps.begin(), ps.end());
    double distance = 0.0;
    for (size_t i = 0; i < ps.size(); ++i) // p is at most as small as uniform: ties make it larger
        distance = std::max(distance, std::abs(double(i + 1) / dataSets - ps[i]));
    EXPECT_LT(distance, 1.95 / std::sqrt(double(dataSets)));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/feature_elimination.h"

#include "classify/classify_data.h"
#include "classify/shuffling.h"
#include "classify/svm_weights.h"
#include "classify/voxel_scores.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>

namespace {

PatternSet smallPatterns() {
    return plantedPatterns({.trials = 20, .features = 12, .informative = 4, .strength = 1.5});
}

EliminationResult eliminate(const PatternSet& patterns, const EliminationOptions& options,
                            const VoxelList* places = nullptr, int nrOfThreads = 1) {
    RecordedProgress quiet;
    EliminationResult result = eliminateFeatures(patterns, options, places, quiet, nrOfThreads);
    EXPECT_EQ(result.result, SVMResult::Done);
    return result;
}

/// Voxels in a row along x.
VoxelList row(int count) {
    VoxelList voxels;
    for (int x = 0; x < count; ++x)
        voxels.append(x, 3, 2);
    return voxels;
}

bool sameResult(const EliminationResult& a, const EliminationResult& b) {
    return a.voxels == b.voxels && a.weights == b.weights && a.meanAccuracy == b.meanAccuracy &&
           a.log == b.log;
}

/// The exemplars of a line of the log, after its ": ".
std::vector<int> exemplarsIn(const QString& line) {
    std::vector<int> numbers;
    for (const QString& word : line.section(": ", -1).split(' '))
        numbers.push_back(word.toInt());
    return numbers;
}

} // namespace

// f = (P / 100)^(1 / S); P = 25 in 2 steps gives f = 1/2.
TEST(FeatureElimination, NumbersOfVoxelsFollowTheLevelFactor) {
    EXPECT_EQ(voxelsAtLevels(200, 2, 25.0), (std::vector{200, 100, 50}));
    EXPECT_EQ(voxelsAtLevels(10, 2, 25.0), (std::vector{10, 5, 3})) << "halves up";
    EXPECT_EQ(voxelsAtLevels(7, 3, 100.0), (std::vector{7, 7, 7, 7}));
    EXPECT_EQ(voxelsAtLevels(1, 1, 49.0).back(), 0);
    // 0.5^(1/3) = 0.7937: 4.76, 3.97, 3.17.
    EXPECT_EQ(voxelsAtLevels(6, 3, 50.0), (std::vector{6, 5, 4, 3}));
    EliminationOptions options;
    EXPECT_EQ(voxelsAfterUnivariateSelection(9, options), 9);
    options.univariateSelection = true;
    EXPECT_EQ(voxelsAfterUnivariateSelection(9, options), 5) << "4.5";
}

TEST(FeatureElimination, SaysWhyPatternsCanNotBeUsed) {
    struct Case {
        QString text;
        QString detail;
        EliminationOptions options = quickOptions();
        std::vector<double> firstLabels = {}; ///< in the place of 1, -1, 1, -1
    };
    const auto with = [](int first, int second) {
        return EliminationOptions{
            .firstLevelFolds = first, .secondLevelFolds = second, .steps = 3, .svm = {}};
    };
    EliminationOptions univariate = quickOptions(), percent = quickOptions();
    univariate.univariateSelection = true;
    univariate.univariatePercent = 4.0;
    percent.steps = 1;
    percent.finalPercent = 4.0;
    const QString twoClasses = "At present RFE only works for learning tasks with 2 classes.";
    const QString stop = "Can not continue!";
    const std::vector<Case> cases = {
        {"Not enough classes for RFE", twoClasses, quickOptions(), std::vector(20, 1.0)},
        {"Too many classes for RFE", twoClasses, quickOptions(), {1, -1, 1, 2}},
        {"Unequal number of trials (9/11) per class!",
         "At present, RFE requires an equal number of trials per classs",
         quickOptions(),
         {-1}},
        {"Not enough trials (10 / 10) for learning when using \"11\" first-level folds", stop,
         with(11, 2)},
        {"Not enough trials (6 / 6) for learning when using \"7\" second-level folds", stop,
         with(3, 7)},
        {"Each level needs at least 2 folds.", stop, with(3, 1)},
        {"Each level needs at least 2 folds.", stop, with(1, 2)},
        {"Univariate selection removes too many voxels.",
         "Increase percent selection value or skip univariate selection", univariate},
        {"RFE selection removes too many voxels.", "Increase percent selection value", percent}};
    EXPECT_FALSE(faultOfElimination(smallPatterns(), with(2, 2)));
    EXPECT_FALSE(faultOfElimination(smallPatterns(), with(10, 9))) << "one trial in each fold";
    for (const Case& fault : cases) {
        PatternSet patterns = smallPatterns();
        std::ranges::copy(fault.firstLabels, patterns.labels.begin());
        RecordedProgress quiet;
        const EliminationResult result = eliminateFeatures(patterns, fault.options, nullptr, quiet);
        ASSERT_TRUE(result.fault) << fault.text.toStdString();
        EXPECT_EQ(result.fault->text, fault.text);
        EXPECT_EQ(result.fault->detail, fault.detail);
        EXPECT_TRUE(result.log.isEmpty() && result.voxels.empty());
    }
}

// Each of the 6 orders of 3 values comes in a sixth of the draws, within 5 standard deviations.
TEST(Shuffling, AllOrdersAreEquallyProbable) {
    constexpr int draws = 6000;
    std::map<std::vector<int>, int> counts;
    std::mt19937 generator(1);
    for (int draw = 0; draw < draws; ++draw) {
        std::vector<int> values = {1, 2, 3};
        shuffle(std::span(values), generator);
        ++counts[values];
    }
    ASSERT_EQ(counts.size(), 6u);
    for (const auto& [order, count] : counts)
        EXPECT_NEAR(count, draws / 6.0, 5.0 * std::sqrt(draws * 5.0 / 36.0));
}

TEST(FeatureElimination, TheLogTellsEachStep) {
    const EliminationResult result = eliminate(smallPatterns(), quickOptions());
    // 0.3^(1/3) = 0.669: 12, 8.03, 5.36, 3.35.
    EXPECT_EQ(result.nrOfVoxels, (std::vector{12.0, 8.0, 5.0, 3.0}));
    // Folds have a line for each class, and each first-level fold four levels of two folds.
    ASSERT_EQ(result.log.size(), 2 + 3 * 2 + 3 * (1 + 4 * 7 + 3) + 1);
    const std::pair<int, QString> lines[] = {
        {0, "Random orders with seed 1"},
        {1, "First-level folds:"},
        {2, "Fold 1 patterns for class 1: "},
        {8, "RFE: no. of trials=12  no. of features=12"},
        {9, "   RFE level 0: Fold 1 patterns for class 1: "},
        {12, "   RFE level 0: Fold 2 patterns for class 2: "},
        {13, "   Running SVM with C=1 and linear kernel"},
        {15, "   Average accuracy value for separate test data set: "},
        {16, "   RFE level 0- Voxels reduced from N_prev=12 to N=8"},
        {32, "   RFE level 2- Voxels reduced from N_prev=5 to N=3"},
        {40, "RFE: no. of trials=12  no. of features=12"},
        {104, QString("No. of RFE voxels per fold: 3  No. of unique voxels merged over folds: %1 "
                      "from which top 3 voxels have been finally selected.")
                  .arg(result.mergedVoxels)}};
    for (const auto& [number, begin] : lines)
        EXPECT_TRUE(result.log[number].startsWith(begin)) << result.log[number].toStdString();
    EXPECT_TRUE(result.log[15].endsWith('%'));

    // Exemplars of class 1 have the odd numbers here. No trial is in two folds, and the trials of a
    // fold have no part in its levels.
    std::set<int> dealt;
    bool sorted = true;
    for (int line = 2; line < 8; ++line) {
        const std::vector<int> exemplars = exemplarsIn(result.log[line]);
        dealt.insert(exemplars.begin(), exemplars.end());
        sorted = sorted && std::ranges::is_sorted(exemplars);
        for (const int exemplar : exemplars)
            EXPECT_EQ(exemplar % 2, (line + 1) % 2) << line;
    }
    EXPECT_EQ(dealt.size(), 18u);
    EXPECT_FALSE(sorted);
    for (const int line : {2, 3, 9, 10, 11, 12})
        for (const int exemplar : exemplarsIn(result.log[line]))
            EXPECT_EQ(dealt.erase(exemplar), 1u) << exemplar;
}

TEST(FeatureElimination, TheNumberOfThreadsDoesNotMatterAndTheSeedDoes) {
    EliminationOptions options = quickOptions();
    const EliminationResult one = eliminate(smallPatterns(), options);
    for (const int threads : {2, 5})
        EXPECT_TRUE(sameResult(eliminate(smallPatterns(), options, nullptr, threads), one));
    options.svm.kernel = SVMKernel::RBF; // of no effect
    EXPECT_TRUE(sameResult(eliminate(smallPatterns(), options), one));
    options.seed = 2;
    EXPECT_FALSE(sameResult(eliminate(smallPatterns(), options), one));
    RecordedProgress cancelling;
    cancelling.cancelAt = 0;
    const EliminationResult stopped =
        eliminateFeatures(smallPatterns(), options, nullptr, cancelling);
    EXPECT_EQ(stopped.result, SVMResult::Stopped);
    EXPECT_TRUE(stopped.voxels.empty());
}

TEST(FeatureElimination, AllVoxelsStayAt100Percent) {
    EliminationOptions options = quickOptions();
    options.finalPercent = 100.0;
    const EliminationResult result = eliminate(smallPatterns(), options);
    EXPECT_EQ(result.voxels.size(), 12u);
    EXPECT_EQ(result.mergedVoxels, 12);
    EXPECT_EQ(result.nrOfVoxels, std::vector(4, 12.0));
    // Weights are means: smaller than those of a machine on all trials, since fewer leave a wider
    // margin. A sum over the folds would be larger.
    SVMModel model;
    ASSERT_EQ(SVMTrainer().train(smallPatterns(), {}, model), SVMResult::Done);
    const std::vector<double> whole = svmWeights(model)[0].values;
    double squares = 0.0;
    for (size_t i = 0; i < 12; ++i) {
        EXPECT_GE(std::abs(result.weights[i > 0 ? i - 1 : 0]), std::abs(result.weights[i]));
        squares += result.weights[i] * result.weights[i];
    }
    const double expected = std::inner_product(whole.begin(), whole.end(), whole.begin(), 0.0);
    EXPECT_LT(squares, expected);
    EXPECT_GT(squares, 0.05 * expected);
}

TEST(FeatureElimination, FindsTheVoxelsThatCarryADistinction) {
    const PatternSet patterns =
        plantedPatterns({.trials = 40, .features = 200, .informative = 20, .strength = 1.6});
    EliminationOptions options;
    options.steps = 4;
    options.finalPercent = 12.5;
    RecordedProgress reporter;
    const EliminationResult result = eliminateFeatures(patterns, options, nullptr, reporter);
    ASSERT_EQ(result.voxels.size(), 25u);
    int found = 0;
    for (size_t i = 0; i < result.voxels.size(); ++i) {
        if (result.voxels[i] >= 20)
            continue;
        ++found;
        // Even features are higher in class 1.
        EXPECT_EQ(result.weights[i] > 0.0, result.voxels[i] % 2 == 0) << result.voxels[i];
    }
    EXPECT_GE(found, 15);
    ASSERT_EQ(result.meanAccuracy.size(), 5u);
    for (const double accuracy : result.meanAccuracy)
        EXPECT_GT(accuracy, 70.0);
    EXPECT_TRUE(std::is_sorted(reporter.values.begin(), reporter.values.end()));
    EXPECT_EQ(reporter.values.back(), 100);
}

// The test fold has no part in the choice: on noise the accuracy stays at chance at each level,
// over the data sets within 4 standard deviations.
TEST(FeatureElimination, IsRightByChanceOnNoise) {
    constexpr int dataSets = 20;
    std::vector<double> sums(4, 0.0);
    for (unsigned seed = 1; seed <= dataSets; ++seed) {
        const PatternSet noise =
            plantedPatterns({.trials = 24, .features = 40, .strength = 0.0, .seed = seed});
        EliminationOptions options = quickOptions();
        options.univariateSelection = seed % 2 == 0;
        const std::vector<double> accuracy = eliminate(noise, options).meanAccuracy;
        for (size_t level = 0; level < 4; ++level)
            sums[level] += accuracy[level] / dataSets;
    }
    for (const double mean : sums)
        EXPECT_NEAR(mean, 50.0, 4.0 * 50.0 / std::sqrt(24.0 * dataSets));
}

TEST(FeatureElimination, UnivariateScoresAreRatiosOrMeans) {
    PatternSet patterns;
    patterns.nrOfFeatures = 4;
    for (int i = 0; i < 20; ++i) {
        const double sign = i % 4 < 2 ? 1.0 : -1.0;
        if (i % 2)
            patterns.append(1.0, std::vector{2 + 0.1 * sign, 9 + 3 * sign, 5.0, -30 + sign});
        else
            patterns.append(2.0, std::vector{1 + sign, sign, 1 + sign, -20 + 40 * sign});
    }
    const double ratios[] = {20.0, 3.0, 5.0, -0.5}; // feature 2 has no deviation in class 1
    const double means[] = {2.0, 9.0, 5.0, -20.0};
    for (size_t feature = 0; feature < 4; ++feature) {
        EXPECT_NEAR(univariateScores(patterns, false)[feature], ratios[feature], 1e-9);
        EXPECT_NEAR(univariateScores(patterns, true)[feature], means[feature], 1e-9);
    }
    EliminationOptions options = quickOptions();
    options.finalPercent = 100.0;
    options.univariateSelection = options.univariateMeansOnly = true;
    options.univariatePercent = 25.0;
    EXPECT_EQ(eliminate(patterns, options).voxels, std::vector{1});
    options.univariateMeansOnly = false;
    EXPECT_EQ(eliminate(patterns, options).voxels, std::vector{0});
}

TEST(ScoreSmoothing, IsAWeightedMeanOfListedNeighbours) {
    // Of FWHM 2 the weights at 0, 1 and 2 voxels are 1, 1/2 and 1/16; 3 is beyond 3 deviations.
    const std::vector<double> scores = {0.0, 0.0, 0.0, 17.0, 0.0, 0.0, 0.0};
    const std::vector<double> smoothed = smoothedScores(scores, row(7), 2.0);
    const double whole = 1.0 + 2 * 0.5 + 2 * 0.0625;
    EXPECT_NEAR(smoothed[3], 17.0 / whole, 1e-4);
    EXPECT_NEAR(smoothed[2], 8.5 / whole, 1e-4);
    EXPECT_NEAR(smoothed[1], 17.0 * 0.0625 / (whole - 0.0625), 1e-4) << "at the edge";
    EXPECT_EQ(smoothed[0], 0.0);
    EXPECT_EQ(smoothedScores(scores, row(7), 0.0), scores);
    // Neighbours in space, in any order of the list: d^2 = 3 weighs 1/8, d^2 = 4 1/16.
    for (const auto& [x, y, z, expected] : {std::tuple(9, 9, 9, 9.0 / 9), {8, 8, 10, 9.0 / 17}}) {
        VoxelList pair;
        pair.append(x, y, z);
        pair.append(8, 8, 8);
        EXPECT_NEAR(smoothedScores(std::vector{9.0, 0.0}, pair, 2.0)[1], expected, 1e-4);
    }
}

// Voxels that carry the distinction stand side by side: smoothing keeps neighbours of them.
TEST(ScoreSmoothing, TakesPartInTheRanking) {
    EliminationOptions options = quickOptions();
    options.smoothRanking = true;
    const VoxelList places = row(12);
    EXPECT_TRUE(
        sameResult(eliminate(smallPatterns(), options), eliminate(smallPatterns(), quickOptions())))
        << "places are not known";
    EXPECT_FALSE(sameResult(eliminate(smallPatterns(), options, &places),
                            eliminate(smallPatterns(), quickOptions(), &places)));
}

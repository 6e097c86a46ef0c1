// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/cross_validation.h"

#include "classify/classify_data.h"
#include "support/files.h"

#include <QTemporaryDir>
#include <cmath>

namespace {

CrossValidationOptions byRun() {
    CrossValidationOptions folds;
    folds.folds = FoldKind::ByRun;
    return folds;
}

/// Numbers of the exemplars of a run, or of all others.
std::vector<int> exemplarsOf(const PatternSet& patterns, int run, bool others) {
    std::vector<int> numbers;
    for (int i = 0; i < patterns.count(); ++i)
        if ((patterns.runs[size_t(i)] == run) != others)
            numbers.push_back(i);
    return numbers;
}

/// One sentence, and how the patterns or folds come to deserve it.
struct FoldFault {
    const char* begin;
    void (*spoil)(PatternSet&, CrossValidationOptions&);
};

} // namespace

TEST(CrossValidation, SaysWhyPatternsCanNotBeDealtIntoFolds) {
    const FoldFault faults[] = {
        {"Cross-validation needs at least 2 exemplars",
         [](PatternSet& p, CrossValidationOptions&) { p = p.exemplars(std::vector{0}); }},
        {"Cross-validation needs exemplars of at least 2 classes",
         [](PatternSet& p, CrossValidationOptions&) { p.labels.assign(p.labels.size(), 1.0); }},
        {"Cross-validation needs at least 2 folds",
         [](PatternSet&, CrossValidationOptions& o) { o.nrOfFolds = 1; }},
        {"Leaving out one run",
         [](PatternSet& p, CrossValidationOptions& o) { o = byRun(), p.runs.clear(); }},
        {"When one of the runs",
         [](PatternSet& p, CrossValidationOptions& o) {
             o = byRun();
             for (size_t i = 0; i < p.runs.size(); ++i)
                 p.runs[i] = p.labels[i] == 1.0 ? 0 : 1;
         }},
    };
    for (const FoldFault& fault : faults) {
        PatternSet patterns = plantedPatterns({});
        CrossValidationOptions folds;
        EXPECT_EQ(faultOfFolds(patterns, folds), QString());
        EXPECT_EQ(faultOfFolds(patterns, byRun()), QString());
        fault.spoil(patterns, folds);
        EXPECT_TRUE(faultOfFolds(patterns, folds).startsWith(fault.begin)) << fault.begin;
    }
}

// Leaving runs out by hand, with libsvm's own programs.
TEST(CrossValidation, LeavesOutOneRunAfterTheOther) {
    const PatternSet patterns = plantedPatterns({.strength = 0.4, .runs = 3, .classes = 3});
    const CrossValidation validation = crossValidate(patterns, {}, byRun());
    ASSERT_EQ(validation.result, SVMResult::Done);
    const QTemporaryDir folder;
    const auto path = [&](const char* name) { return folder.filePath(name); };
    int nrOfRight = 0;
    for (const int run : {0, 1, 2}) {
        const std::vector<int> tested = exemplarsOf(patterns, run, false);
        writeFile(path("train"), toolText(patterns.exemplars(exemplarsOf(patterns, run, true))));
        writeFile(path("test"), toolText(patterns.exemplars(tested)));
        runTool("svm-train", {"-q", "-t", "0", path("train"), path("model")});
        runTool("svm-predict", {path("test"), path("model"), path("predicted")});
        const QList<QByteArray> predicted = contentOf(path("predicted")).trimmed().split('\n');
        ASSERT_EQ(size_t(predicted.size()), tested.size());
        for (size_t i = 0; i < tested.size(); ++i) {
            const double label = predicted[qsizetype(i)].toDouble();
            EXPECT_EQ(validation.predictedLabels[size_t(tested[i])], label) << tested[i];
            nrOfRight += label == patterns.labels[size_t(tested[i])] ? 1 : 0;
        }
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
    struct Case {
        unsigned seed;
        int threads;
        double best;
        int truncated;
    };
    RecordedProgress quiet;
    CrossValidationOptions folds;
    folds.nrOfFolds = 3;
    for (const Case& data : {Case{16, 1, -0.5, 0}, Case{12, 2, 0.5, 0}, Case{55, 5, 2.0, 2}}) {
        const PatternSet patterns =
            plantedPatterns({.trials = 30, .features = 8, .strength = 0.8, .seed = data.seed});
        SVMOptions options;
        options.kernel = SVMKernel::RBF;
        const CSearch search = searchC(patterns, options, folds, quiet, data.threads);
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
        EXPECT_EQ(best.exponent, data.best);
        EXPECT_EQ(search.bestExponent, data.truncated);
        EXPECT_DOUBLE_EQ(search.C, std::exp(double(data.truncated)));
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
    for (size_t i = 0; i < patterns.runs.size(); ++i)
        patterns.runs[i] = patterns.labels[i] == 1.0 ? 4 : 9;
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

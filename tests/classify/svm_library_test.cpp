// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_library.h"

#include "classify/classify_data.h"
#include "classify/svm_model_file.h"
#include "classify/svm_prediction.h"
#include "support/files.h"

#include <QTemporaryDir>

namespace {

/// Patterns of classes whose means differ, in the order of these labels. More begin with the same.
PatternSet labelledPatterns(const std::vector<int>& labels, int exemplarsPerClass) {
    const int classes = int(labels.size());
    PatternSet patterns = plantedPatterns({.trials = exemplarsPerClass * classes,
                                           .features = 6,
                                           .informative = 6,
                                           .strength = 1.2,
                                           .classes = classes});
    for (size_t i = 0; i < patterns.labels.size(); ++i)
        patterns.labels[i] = labels[i % labels.size()];
    return patterns;
}

/// Two classes that overlap so much that the solver would need millions of iterations.
PatternSet overlapping(int count = 60) {
    PatternSet patterns;
    patterns.nrOfFeatures = 2;
    for (int i = 0; i < count; ++i)
        patterns.append(i % 2 ? 1.0 : -1.0,
                        std::vector{double(i * 7919 % 61), double(i * 104729 % 67)});
    return patterns;
}

SVMOptions endless() {
    SVMOptions options;
    options.C = 1e9;
    return options;
}

struct ToolCase {
    SVMOptions options; ///< the tool takes its numbers as float, so that these are exact as floats
    std::vector<int> labels;
};

class SVMTools : public testing::TestWithParam<ToolCase> {};

TEST_P(SVMTools, GiveTheSameModelPredictionsAndFolds) {
    const auto& [options, labels] = GetParam();
    const QTemporaryDir folder;
    const QString patternPath = folder.filePath("patterns");
    const QString toolModel = folder.filePath("tool.svm"), ownModel = folder.filePath("own.svm");
    const PatternSet patterns = labelledPatterns(labels, 20);
    writeFile(patternPath, toolText(patterns));
    QStringList arguments{"-t", QString::number(int(options.kernel)),
                          "-c", QString::number(options.C),
                          "-d", QString::number(options.degree)};
    if (options.gamma != 0.0)
        arguments += {"-g", QString::number(options.gamma)};
    runTool("svm-train", arguments + QStringList{patternPath, toolModel});

    SVMModel model;
    ASSERT_EQ(SVMTrainer().train(patterns, options, model), SVMResult::Done);
    const std::vector<int> swapped{-1, 1};
    EXPECT_EQ(model.labels(), labels == swapped ? std::vector({1, -1}) : labels);
    ASSERT_TRUE(model.save(ownModel));
    EXPECT_EQ(contentOf(ownModel).toStdString(), contentOf(toolModel).toStdString());

    ASSERT_TRUE(readModelFile(toolModel, model));
    EXPECT_EQ(model.nrOfFeatures(), 6);
    const PatternSet others = labelledPatterns(labels, 40);
    writeFile(patternPath, toolText(others));
    runTool("svm-predict", {patternPath, toolModel, folder.filePath("predicted")});
    QByteArray predicted;
    for (const SVMPrediction& prediction : predictAll(model, others).predictions)
        predicted += QByteArray::number(prediction.label) + '\n';
    EXPECT_EQ(predicted, contentOf(folder.filePath("predicted")));

    // The tool never seeds the random numbers: the C library then begins as with seed 1.
    std::vector<double> labelsOfFolds;
    ASSERT_EQ(SVMTrainer().crossValidate(others, options, 5, 1, labelsOfFolds), SVMResult::Done);
    int right = 0;
    for (size_t i = 0; i < labelsOfFolds.size(); ++i)
        right += labelsOfFolds[i] == others.labels[i];
    const QByteArray printed =
        runTool("svm-train", arguments + QStringList{"-v", "5", patternPath});
    EXPECT_TRUE(printed.contains("Cross Validation Accuracy = " +
                                 QByteArray::number(100.0 * right / others.count()) + "%\n"))
        << right << printed.right(60).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Kernels, SVMTools,
                         testing::Values(ToolCase{{SVMKernel::Linear, 1.0}, {1, -1}},
                                         ToolCase{{SVMKernel::Linear, 0.0625}, {-1, 1}},
                                         ToolCase{{SVMKernel::Polynomial, 20.0, 0.75, 2}, {1, -1}},
                                         ToolCase{{SVMKernel::RBF, 3.0}, {2, 1, 4, 3}},
                                         ToolCase{{SVMKernel::RBF, 0.5, 0.25}, {-1, 1}},
                                         ToolCase{{SVMKernel::Linear, 1.0}, {1, 2, 3, 4}}));

TEST(SVMTrainer, DealsOtherFoldsWithAnotherSeed) {
    const PatternSet patterns = labelledPatterns({1, -1}, 40);
    std::vector<double> first, second, other;
    ASSERT_EQ(SVMTrainer().crossValidate(patterns, {}, 5, 7, first), SVMResult::Done);
    ASSERT_EQ(SVMTrainer().crossValidate(patterns, {}, 5, 7, second), SVMResult::Done);
    ASSERT_EQ(SVMTrainer().crossValidate(patterns, {}, 5, 8, other), SVMResult::Done);
    EXPECT_EQ(first, second);
    EXPECT_NE(first, other);
}

// Stop is looked at only where the solver prints: it is left there, in the midst of its work.
TEST(SVMTrainer, LeavesTheSolverWhenItIsStopped) {
    std::stop_source stop;
    stop.request_stop();
    SVMModel model;
    SVMTrainer trainer(stop.get_token());
    EXPECT_EQ(trainer.train(overlapping(), endless(), model), SVMResult::Stopped);
    EXPECT_EQ(trainer.printed(), ".");
    EXPECT_TRUE(model.isEmpty());
    std::vector<double> predicted;
    EXPECT_EQ(trainer.crossValidate(overlapping(), endless(), 5, 1, predicted), SVMResult::Stopped);
    EXPECT_EQ(trainer.printed(), "..");
    EXPECT_TRUE(predicted.empty());
    // What was left is of no harm to the next work, nor is the lock of the folds still held.
    EXPECT_EQ(SVMTrainer().train(overlapping(), {}, model), SVMResult::Done);
    EXPECT_EQ(SVMTrainer().crossValidate(overlapping(), {}, 5, 1, predicted), SVMResult::Done);
    EXPECT_EQ(predicted.size(), 60U);
}

TEST(SVMTrainer, KeepsWhatLibsvmPrintsFromTheConsole) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const PatternSet oneClass = labelledPatterns({1}, 3);
    SVMModel model;
    std::vector<double> predicted;
    SVMTrainer trainer, tired;
    EXPECT_EQ(trainer.train(oneClass, {}, model), SVMResult::Done);
    EXPECT_EQ(trainer.crossValidate(oneClass, {}, 3, 1, predicted), SVMResult::Done);
    EXPECT_NE(trainer.printed().find("only one class"), std::string::npos);
    EXPECT_EQ(trainer.printed().find("gave up"), std::string::npos);
    EXPECT_EQ(tired.train(overlapping(6), endless(), model), SVMResult::Done);
    EXPECT_NE(tired.printed().find("WARNING: libsvm gave up"), std::string::npos);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\nWARNING: reaching max number of iterations\n");
}

} // namespace

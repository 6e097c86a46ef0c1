// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_model_file.h"
#include "classify/svm_prediction.h"
#include "classify/svm_weights.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <numeric>

namespace {

SVMModel loaded(const QByteArray& content) {
    const QTemporaryDir folder;
    const ScriptedMessages messages;
    writeFile(folder.filePath("model.svm"), content);
    SVMModel model;
    EXPECT_TRUE(readModelFile(folder.filePath("model.svm"), model));
    return model;
}

/// Decision value: 4 x feature - 1, above 0 for the first label.
QByteArray twoClassModel(const QByteArray& labels) {
    return "svm_type c_svc\nkernel_type linear\nnr_class 2\ntotal_sv 2\nrho 1\nlabel " + labels +
           "\nnr_sv 1 1\nSV\n1 1:2 \n-1 1:-2 \n";
}

/// Three classes with numbers that are easy to follow.
const QByteArray threeClassModel =
    "svm_type c_svc\nkernel_type rbf\ngamma 0.5\nnr_class 3\ntotal_sv 4\nrho 0 1 -2\n"
    "label 3 1 2\nnr_sv 1 2 1\nSV\n"
    "0.5 0.25 1:1 3:2 \n-0.3 0.7 2:1 \n-0.2 0 1:4 \n-0.25 -0.7 3:1 \n";

TEST(TwoClassModel, SpeaksForItsClass1WhateverTheOrderOfItsLabels) {
    struct Case {
        const char* labels;
        double first, second; ///< class 1 and 2
        bool flipped;
    };
    for (const Case& c : {Case{"1 -1", 1, -1, false},
                          {"-1 1", 1, -1, true},
                          {"1 2", 1, 2, false},
                          {"2 1", 1, 2, true},
                          {"4 3", 4, 3, false},
                          {"-2 3", 3, -2, true}}) {
        SCOPED_TRACE(c.labels);
        const SVMModel model = loaded(twoClassModel(c.labels));
        const double sign = c.flipped ? -1.0 : 1.0;
        EXPECT_EQ(signIsFlipped(model), c.flipped);
        for (const double feature : {1.0, 0.25, -1.0}) { // a value of exactly 0 is class 2
            const SVMPrediction prediction = predict(model, std::vector{feature});
            EXPECT_EQ(prediction.output, sign * (4.0 * feature - 1.0));
            EXPECT_EQ(prediction.pairValues, std::vector{prediction.output});
            EXPECT_EQ(prediction.classNumber, prediction.output > 0.0 ? 1 : 2);
            EXPECT_EQ(prediction.label, prediction.output > 0.0 ? c.first : c.second);
        }
        const std::vector<SVMWeights> weights = svmWeights(model);
        ASSERT_EQ(weights.size(), 1U);
        EXPECT_EQ(weights[0].label, c.first);
        EXPECT_EQ(weights[0].values, std::vector{sign * 4.0});
        EXPECT_EQ(svmConstants(model), std::vector{-sign});
    }
}

TEST(SVMWeights, OfSeveralClassesAddTheirPairsByRisingLabel) {
    const SVMModel model = loaded(threeClassModel);
    // By hand: pair (3, 1) has -0.3, -0.3, 1; pair (3, 2) 0.25, 0, 0.25; pair (1, 2) 0, 0.7, -0.7.
    const std::vector<std::vector<double>> expected{
        {0.3, 1.0, -1.7}, {-0.25, -0.7, 0.45}, {-0.05, -0.3, 1.25}};
    const std::vector<SVMWeights> weights = svmWeights(model);
    ASSERT_EQ(weights.size(), 3U);
    for (size_t row = 0; row < 3; ++row) {
        EXPECT_EQ(weights[row].label, int(row) + 1);
        for (size_t f = 0; f < 3; ++f)
            EXPECT_NEAR(weights[row].values[f], expected[row][f], 1e-15) << row << ' ' << f;
    }
    EXPECT_EQ(svmConstants(model), (std::vector{0.0, -1.0, 2.0}));
}

// With a linear kernel the decision values, which libsvm computes, follow from weights and
// constants.
TEST(SVMWeights, ReproduceTheDecisionValuesOfALinearMachine) {
    const SVMModel model = loaded(QByteArray(threeClassModel).replace("rbf\ngamma 0.5", "linear"));
    const std::vector<double> features{0.7, -1.3, 2.9};
    const std::vector<double> pairs = predict(model, features).pairValues;
    const std::vector<double> b = svmConstants(model);
    const double margins[] = {pairs[0] - b[0], pairs[1] - b[1], pairs[2] - b[2]};
    // The slots are of labels 3, 1, 2; the weights rise by label.
    const double expected[] = {margins[2] - margins[0], -margins[1] - margins[2],
                               margins[0] + margins[1]};
    const std::vector<SVMWeights> weights = svmWeights(model);
    for (size_t row = 0; row < 3; ++row)
        EXPECT_NEAR(
            std::inner_product(features.begin(), features.end(), weights[row].values.begin(), 0.0),
            expected[row], 1e-12);
}

/// With the only feature at 0, only the constants decide: one for each pair.
SVMPrediction votesOf(const QByteArray& rho) {
    return predict(loaded("svm_type nu_svc\nkernel_type linear\nnr_class 3\ntotal_sv 2\nrho " +
                          rho + "\nlabel 5 2 9\nnr_sv 1 1 0\nSV\n1 0 1:1\n-1 0 1:-1\n"),
                   std::vector{0.0});
}

TEST(SVMPrediction, OfSeveralClassesIsTheLabelOfMostVotes) {
    // The fourth is a tie of all; 0 is the second's.
    constexpr std::pair<const char*, int> votes[] = {
        {"-1 -1 -1", 5}, {"1 -1 -1", 2}, {"1 1 1", 9}, {"-1 1 -1", 5}, {"0 0 -1", 2}};
    for (const auto& [rho, label] : votes) {
        const SVMPrediction prediction = votesOf(rho);
        EXPECT_EQ(prediction.classNumber, label) << rho;
        EXPECT_EQ(prediction.label, label);
        EXPECT_EQ(prediction.output, label);
        EXPECT_EQ(prediction.pairValues.size(), 3U);
    }
}

TEST(PredictionReport, CountsWhatIsRightAndWhatIsTakenForWhat) {
    PatternSet patterns;
    patterns.nrOfFeatures = 1;
    for (const auto& [label, feature] :
         {std::pair(1.0, 1.0), {1.0, 2.0}, {1.0, -1.0}, {-1.0, -1.0}, {0.0, 1.0}})
        patterns.append(label, std::vector{feature});
    const PredictionReport report = predictAll(loaded(twoClassModel("-1 1")), patterns);
    // The machine takes features below 0.25 for label 1.
    EXPECT_EQ(report.labels, (std::vector{-1.0, 0.0, 1.0}));
    EXPECT_EQ(report.confusion, (std::vector{0, 0, 1, 1, 0, 0, 2, 0, 1}));
    EXPECT_EQ(report.targets, patterns.labels);
    EXPECT_EQ(report.predictions.size(), 5U);
    EXPECT_EQ(report.nrOfRight, 1);
    EXPECT_DOUBLE_EQ(report.percentRight(), 20.0);
    EXPECT_EQ(PredictionReport().percentRight(), 0.0);
}

TEST(SVMModelFile, TakesWhatLibsvmCanRead) {
    constexpr std::pair<const char*, const char*> changes[] = {
        {"\n", "\r\n"},
        {" \n", "\n"},
        {"rbf", "sigmoid\ncoef0 -1"},
        {"label", "probA 1 1 1\nprobB 0 0 1e-5\nlabel"}};
    for (const auto& [from, to] : changes)
        EXPECT_EQ(faultOfModelFile(QByteArray(threeClassModel).replace(from, to)), "") << to;
}

TEST(SVMModelFile, SaysWhatIsWrong) {
    struct Damage {
        const char *from, *to, *fault;
    };
    for (const auto& [from, to, fault] : std::initializer_list<Damage>{
             {"c_svc", "one_class", "Line 1: this svm_type can not be used."},
             {"rbf", "precomputed", "Line 2: this kernel_type"},
             {"gamma", "alpha", "Line 3: \"alpha\" is unknown."},
             {"0.5\n", "-0.5\n", "Line 3: \"gamma\" has a value"},
             {"0.5\n", "nan\n", "Line 3: \"gamma\" has a value"},
             {"nr_class 3", "nr_class 1", "Line 4: \"nr_class\" has a value"},
             {"nr_class 3", "nr_class 1001", "Line 4: \"nr_class\" has a value"},
             {"nr_class 3", "nr_class 1000", "Line 6: \"rho\" has 3 values instead of 499500."},
             {"nr_class 3", "nr_class", "Line 4: \"nr_class\" has 0 values"},
             {"nr_class 3\n", "", "Line 5: \"nr_class\" must stand before \"rho\"."},
             {"total_sv 4", "total_sv 4294967300", "Line 5: \"total_sv\" has a value"},
             {"total_sv 4", "total_sv 5", "\"nr_sv\" and \"total_sv\" do not agree"},
             {"total_sv 4", "total_sv 4\ntotal_sv 4", "Line 6: \"total_sv\" appears twice."},
             {"rho 0 1", "rho 0 inf", "Line 6: \"rho\" has a value"},
             {"3 1 2", "3 1 1", "two classes have the same label"},
             {"3 1 2", "3 1", "Line 7: \"label\" has 2 values instead of 3."},
             {"label 3 1 2\n", "", "\"label\" is missing"},
             {"rbf\ngamma 0.5", "rbf", "\"gamma\" is missing"},
             {"rbf", "polynomial", "\"degree\" is missing"},
             {"nr_sv 1 2 1", "nr_sv 5 -2 1", "Line 8: \"nr_sv\" has a value"},
             {"SV\n", "SV 1\n", "Line 9: \"SV\" does not stand alone."},
             {"SV\n", "\nSV\n", "Line 9: the line is empty."},
             {"0.5 0.25 ", "0.5 ", "Line 10: a coefficient is not a finite number."},
             {"-0.3 0.7 2:1", "-0.3", "Line 11: coefficients are missing."},
             {"1:1 3:2", "3:1 3:2", "Line 10: the numbers of the features do not rise"},
             {"1:1 3:2", "0:1 3:2", "Line 10: the numbers of the features"},
             {"1:1 3:2", "1:1 16777217:2", "from 1 to 16777216 at most"},
             {"1:1 3:2", "1:1 3:-inf", "Line 10: feature 3 is not a finite number."},
             {"-0.7 3:1 \n", "-0.7 3:1 \n1 1 3:1\n", "Line 14: there is more data than stated."},
             {"-0.7 3:1 \n", "-0.7 3:1 ", "Line 13: the file ends here."},
             {"gamma", "g\x01mma", "It is not a text file."}}) {
        const QString found = faultOfModelFile(QByteArray(threeClassModel).replace(from, to));
        EXPECT_TRUE(found.contains(fault)) << to << ": " << found.toStdString();
    }
    const QByteArray empty =
        QByteArray(twoClassModel("1 2")).replace("1:2", "").replace("1:-2", "");
    EXPECT_EQ(faultOfModelFile(empty), "Line 11: no support vector has a feature.");
}

TEST(SVMModelFile, RefusesAModelThatWasCutAnywhere) {
    for (qsizetype bytes = 0; bytes < threeClassModel.size(); ++bytes)
        EXPECT_NE(faultOfModelFile(threeClassModel.left(bytes)), "") << bytes;
}

// Whatever passes the check is read by libsvm, and silently.
TEST(SVMModelFile, KeepsWhatLibsvmCanNotReadFromIt) {
    testing::internal::CaptureStderr();
    for (qsizetype at = 0; at < threeClassModel.size(); ++at)
        for (const char character : {' ', '\n', ':', '9', '-', '\0'}) {
            QByteArray changed = threeClassModel;
            changed[at] = character;
            if (faultOfModelFile(changed).isEmpty()) {
                EXPECT_EQ(svmWeights(loaded(changed)).size(), 3U) << at << character;
            }
        }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(SVMModelFile, ShowsAMessageAndKeepsTheModel) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("model.svm");
    ScriptedMessages messages;
    SVMModel model = loaded(threeClassModel);
    for (const char* fault : {"It can not be opened for reading.", "Line 1: the file ends here."}) {
        messages.expectCritical("ERROR: The model file \"" + path + "\" can not be used!\n\n" +
                                fault);
        EXPECT_FALSE(readModelFile(path, model));
        EXPECT_EQ(model.nrOfClasses(), 3);
        writeFile(path, "svm_type");
    }
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/pattern_file.h"
#include "classify/training/machine_training.h"
#include "classify/training/mean_response.h"
#include "classify/training/pattern_creation.h"
#include "classify/training/training_fixture.h"
#include "classify/training/training_reports.h"
#include "classify/training/weight_maps.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"

namespace {

class ClassifierTrainingTest : public TrainingFixture {
protected:
    void estimateTwoRuns() {
        training.addRuns({writeRun("one"), writeRun("two")});
        training.options.estimate = TrialEstimate::Beta;
        ASSERT_TRUE(training.estimateTrials());
    }
    void makePatternsOfTwoRuns() {
        estimateTwoRuns();
        loadRegion();
        ASSERT_TRUE(training.createPatterns());
    }
    /// A file of patterns with a feature that is the label times `signal`, and one of noise.
    void writePatterns(const std::vector<double>& labels, const QString& name = "x.mvp",
                       double signal = 1.0) {
        PatternSet patterns;
        patterns.nrOfFeatures = 2;
        for (const double label : labels)
            patterns.append(label, std::vector{signal * label, double(patterns.count() % 3)});
        EXPECT_TRUE(writePatternFile(path(name), patterns, PatternFileForm::Binary));
        training.choosePatterns(path(name));
    }
    [[nodiscard]] bool hasLogged(const QString& text) const {
        return logged.contains(text) || (ADD_FAILURE() << logged.toStdString(), false);
    }
};

TEST(WeightThresholds, ShowSmallWeights) {
    SVMWeights weights;
    weights.values = {0.001, -0.004, 0.0};
    OverlayThresholds thresholds = weightThresholds({weights});
    EXPECT_EQ(thresholds, (OverlayThresholds{0.004f / 10.0f, 0.004f, 1}));
    changeWeightThreshold(thresholds, 0.003f);
    EXPECT_EQ(thresholds, (OverlayThresholds{0.003f, 0.004f, 1}));
    changeWeightThreshold(thresholds, 0.005f);
    EXPECT_EQ(thresholds, (OverlayThresholds{0.005f, 0.01f, 1}));
    changeStrongestWeight(thresholds, 0.001f);
    EXPECT_EQ(thresholds, (OverlayThresholds{0.005f, 0.01f, 1}));
    changeWeightThreshold(thresholds, 0.0f);
    EXPECT_EQ(thresholds.Threshold, smallestWeightThreshold);
    weights.values = {0.02};
    EXPECT_EQ(weightThresholds({weights}), (OverlayThresholds{0.01f, 0.02f, 1}));
}

} // namespace

TEST_F(ClassifierTrainingTest, RunsBecomeTrialsPatternsAMachineAndMaps) {
    training.addRuns({writeRun("one"), writeRun("two"), path("one.fmr")});
    EXPECT_EQ(training.runs().size(), 2);
    EXPECT_EQ(training.conditions(), QStringList({"Fixation", "Faces", "Houses", "Tools"}));
    EXPECT_EQ(training.selectedConditions(), QStringList({"Faces", "Houses", "Tools"}));
    ASSERT_TRUE(training.suggestWindow());
    EXPECT_EQ(training.options.postOnset, 4 - 2 - 1);
    EXPECT_TRUE(hasLogged("Interval: 4  Frequency: 4"));
    training.options.postOnset = 5;
    training.options.estimate = TrialEstimate::Beta;
    ASSERT_TRUE(training.estimateTrials());
    EXPECT_EQ(parseTrialSettings(content("SingleTrialGLMSettings.txt")), training.options);
    EXPECT_TRUE(hasLogged("Estimated 9 trials of \"two.fmr\": \"two_Trials.fmp\"\n"));
    EXPECT_TRUE(std::ranges::is_sorted(display.progress)) << "from 0 to 100 once for both runs";

    TrialMaps maps;
    ASSERT_TRUE(readTrialMaps(path("two_Trials.fmp"), maps));
    ASSERT_EQ(maps.names.join(' '), "Faces_Trial-1 Faces_Trial-2 Faces_Trial-3 Houses_Trial-1 "
                                    "Houses_Trial-2 Houses_Trial-3 Tools_Trial-1 Tools_Trial-2 "
                                    "Tools_Trial-3");
    // Each pair of voxels responds to its own condition, with a beta of 100.
    for (int map = 0; map < 8; ++map)
        for (size_t voxel = size_t(map / 3) * 2; voxel < size_t(map / 3) * 2 + 2; ++voxel)
            EXPECT_NEAR(maps.map(map)[regionVoxels().offset(voxel, trainingSize)], 100.0, 6.0);
    EXPECT_EQ(training.classes(),
              (std::vector<TrialClass>{{"Faces", 6}, {"Houses", 6}, {"Tools", 6}}));
    EXPECT_EQ(training.choices.class2, "Houses");

    loadRegion();
    ASSERT_TRUE(training.createPatterns());
    EXPECT_TRUE(hasLogged("No. of all training data trials per class: Faces - 6, Houses - 6\n"));
    EXPECT_EQ(training.patternPath(), path("Train_ROI 1_Faces-Houses_6-6.mvp"));
    EXPECT_EQ(parseVoxels(content(voxelsFileName)), regionVoxels());
    PatternSet patterns;
    ASSERT_TRUE(training.readPatterns(patterns));
    EXPECT_EQ(patterns.labels, (std::vector<double>{1, 1, 1, -1, -1, -1, 1, 1, 1, -1, -1, -1}));
    EXPECT_EQ(patterns.runs, (std::vector<int>{0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(float(patterns.features(7)[3]), maps.map(1)[regionVoxels().offset(3, trainingSize)]);

    training.choices.crossValidates = true;
    training.choices.folds.folds = FoldKind::ByRun;
    training.choices.scaling.mode = ScalingMode::Standardize;
    logged.clear();
    hooks.clear();
    ASSERT_TRUE(training.train());
    EXPECT_TRUE(logged.startsWith("Features have been standardized (mean = 0, s = 1\n"));
    EXPECT_TRUE(hasLogged("2-fold cross validation accuracy: 100%\n\nRunning SVM with C=1 and "
                          "linear kernel\n"));
    EXPECT_TRUE(hasLogged("SVM training result - value of b: "));
    EXPECT_TRUE(hasLogged("Accuracy (full training set): 100%\n"));
    EXPECT_EQ(training.modelPath(), path("Model_ROI 1_Faces-Houses_6-6.svm"));
    EXPECT_EQ(hooks, QStringList({"maps"}));
    QtCortivoDoc& document = *training.weightMaps.document();
    EXPECT_EQ(document.contrasts.ContrastNames, QStringList({"SVM Weights"}));
    const auto weight = [&](size_t voxel) {
        return document.maps.map(0)[regionVoxels().offset(voxel, trainingSize)];
    };
    EXPECT_GT(weight(0), 0.1f); // speaks for faces
    EXPECT_LT(weight(2), -0.1f);
    EXPECT_EQ(document.maps.map(0)[0], 0.0f);
    float largest = 0.0f;
    for (size_t voxel = 0; voxel < 6; ++voxel)
        largest = std::max(largest, std::fabs(weight(voxel)));
    EXPECT_EQ(training.weightMaps.thresholds, (OverlayThresholds{0.01f, largest, 1}));
    const double output = training.predictions().predictions[5].output;

    // The scaling comes back with the model, whatever is chosen meanwhile.
    training.choices.trainingPatterns = false;
    ASSERT_TRUE(training.createPatterns());
    EXPECT_EQ(filesNamed("Test*.mvp"), QStringList({"Test_ROI 1_Faces-Houses_6-6.mvp"}));
    training.choices.scaling = {};
    ASSERT_TRUE(training.chooseModel(training.modelPath()));
    logged.clear();
    ASSERT_TRUE(training.test());
    EXPECT_TRUE(hasLogged("Features have been standardized"));
    EXPECT_TRUE(hasLogged("Test data - prediction accuracy (assuming labels are known): 100%\n"));
    EXPECT_NEAR(training.predictions().predictions[5].output, output, 1e-6); // libsvm rounds
    EXPECT_EQ(training.predictions().confusion, (std::vector<int>{6, 0, 0, 6}));
}

TEST_F(ClassifierTrainingTest, SeveralClassesHaveAMapEachOfWhichOneCanBeSeenAlone) {
    training.choices.multiClass = true;
    training.choices.crossValidates = training.choices.searchLinear = true;
    training.choices.folds.nrOfFolds = 3;
    makePatternsOfTwoRuns();
    ASSERT_TRUE(training.train());
    EXPECT_EQ(logged.count("Testing parameter C="), 40);
    EXPECT_TRUE(hasLogged("Testing parameter C=0.00673795 with 3-fold cross validation - "
                          "Accuracy: 100%\n"));
    EXPECT_TRUE(hasLogged("Setting C to value resulting in best generalization performance: "
                          "C=0.00673795\n"));
    EXPECT_NEAR(training.choices.svm.C, std::exp(-5.0), 1e-12);
    EXPECT_TRUE(hasLogged("SVM training result - values of b's: "));
    EXPECT_EQ(training.weightMaps.names().last(), "SVM Pref Weights, Class 3");
    EXPECT_EQ(training.weightMaps.document()->maps.NrOfShownMaps, 3);
    const size_t ofTools = regionVoxels().offset(4, trainingSize);
    const float weight = training.weightMaps.document()->maps.map(2)[ofTools];
    EXPECT_GT(weight, training.weightMaps.document()->maps.map(0)[ofTools]);
    training.weightMaps.select(2);
    EXPECT_EQ(training.weightMaps.document()->maps.NrOfShownMaps, 1);
    EXPECT_EQ(training.weightMaps.document()->maps.map(0)[ofTools], weight);
    EXPECT_EQ(training.weightMaps.document()->contrasts.ContrastColors[0], (RgbColor{0, 0, 255}));
    training.weightMaps.select(3); // none
    training.estimateTrials();
    EXPECT_TRUE(training.weightMaps.names().isEmpty());
    EXPECT_EQ(hooks.last(), "leaving");
}

TEST_F(ClassifierTrainingTest, WithoutARunTheWeightsAreNotShown) {
    writePatterns({1, -1, 1, -1, 1, -1}, "Learn_a_b.c.mvp");
    training.choices.svm.kernel = SVMKernel::RBF;
    ASSERT_TRUE(training.train());
    EXPECT_TRUE(hasLogged("Running SVM with C=1 and RBF (radial basis function) kernel\n"));
    EXPECT_EQ(training.modelPath(), path("Model_a_b.c.svm"));
    EXPECT_TRUE(training.test());
    EXPECT_TRUE(hasLogged("the weights are not shown as maps."));
    EXPECT_EQ(training.weightMaps.document(), nullptr);

    training.addRuns({writeRun("one")});
    put(voxelsFileName, voxelsText(regionVoxels()));
    ASSERT_TRUE(training.train());
    EXPECT_TRUE(hasLogged("Expected 6 ROI voxels, but 2 SVM features found"));
    EXPECT_TRUE(training.weightMaps.names().isEmpty());

    logged.clear();
    training.choices.nrOfPermutations = 20;
    training.choices.folds.nrOfFolds = 3;
    ASSERT_TRUE(training.testByPermutations());
    EXPECT_TRUE(hasLogged("Cross-validated accuracy: 100%\np = "));
    EXPECT_TRUE(hasLogged(" of 20 shufflings were at least as accurate\n"));
    EXPECT_LT(training.permutationTest().p(), 0.5);
}

TEST_F(ClassifierTrainingTest, WhatCanNotBeEstimatedIsSaid) {
    const auto expectRefused = [this](const QString& message) {
        messages.expectWarning(message);
        EXPECT_FALSE(training.estimateTrials()) << message.toStdString();
    };
    const auto chooseRunWith = [this](const char* before, const char* after) {
        training.clearRuns();
        training.addRuns({writeRun("one", trainingProtocol().replace(before, after))});
        training.selectConditions({"Faces", "Houses"});
    };
    expectRefused("No time course data available*");
    chooseRunWith("Time: Volumes", "Time: msec");
    expectRefused("At present, protocols must have \"volume\" resolution.\n\nYou may convert the "
                  "resolution of protocol \"one.prt\" from*");
    for (const char* damage : {"46 45", "45 2147483647"}) {
        chooseRunWith("45 46", damage);
        expectRefused("The protocol of \"one.fmr\" has a*");
    }
    chooseRunWith("", "");
    training.selectConditions(QStringList{"Faces", "Dogs"});
    expectRefused("At least one protocol does not contain all selected conditions!");
    training.selectConditions({});
    messages.expectWarning("No condition selected; you must*");
    EXPECT_FALSE(training.suggestWindow());
    training.selectConditions({"Faces", "Houses"});
    training.options.postOnset = 57; // 60 points of 60 volumes
    expectRefused("Can not estimate all trials!\n\nNot enough data points*");
    training.options.postOnset = 5;
    training.options.response = TrialResponse::MeanResponse;
    training.options.intensityLimit = 30000; // no voxel
    loadRegion({8, 8, 2});                   // of another run
    expectRefused("The mean response to the trials of \"one.fmr\" is flat*");
    QFile::remove(path("one.prt"));
    expectRefused("At least one protocol not found for checks");
    EXPECT_TRUE(filesNamed("*.fmp").isEmpty());
}

TEST_F(ClassifierTrainingTest, WhatCanNotBeLearntIsSaid) {
    const auto expectRefused = [this](bool (ClassifierTraining::*operation)(),
                                      const QString& message) {
        messages.expectWarning(message);
        EXPECT_FALSE((training.*operation)()) << message.toStdString();
    };
    const auto create = &ClassifierTraining::createPatterns;
    const auto train = &ClassifierTraining::train;
    const auto chance = &ClassifierTraining::testByPermutations;
    TrainingChoices& choices = training.choices;
    expectRefused(&ClassifierTraining::test,
                  "No model file available!\n\nFirst train or load a SVM classifier.");
    expectRefused(chance, "No patterns available!*");
    training.addRuns({writeRun("one")});
    ASSERT_TRUE(training.estimateTrials());
    expectRefused(create, "You must specify/load ROIs before*");
    loadRegion();
    choices.region = 1;
    expectRefused(create, "No ROI selected for SVM data creation");
    choices.region = 0;
    choices.class2 = "Faces";
    expectRefused(create, "Can not continue - two conditions do not differ!\n\nYou must*");
    choices.class2 = "Dogs";
    expectRefused(create, "FMP file \"one_Trials.fmp\" does not contain selected conditions!\n\n"
                          "Can not continue!");
    choices.class2 = "Tools";
    loadRegion({8, 8, 4});
    expectRefused(create, "The maps of \"one_Trials.fmp\" have another size*");
    training.clearTrialFiles();
    expectRefused(create, "No trial data files available!*");
    EXPECT_TRUE(filesNamed("*.mvp").isEmpty());

    writePatterns({1, 1, 1});
    expectRefused(train, "All exemplars are of one class*");
    writePatterns({1, 0.5});
    expectRefused(train, "The patterns have labels that*");
    writePatterns({1, -1}, "x.mvp", 1e19);
    expectRefused(train, "The patterns hold values that are not finite, or too large.*");
    writePatterns({1, -1});
    choices.folds.nrOfFolds = 1;
    expectRefused(chance, "Cross-validation needs at least 2 folds.");
    choices.svm.C = 0.0;
    expectRefused(train, "C must be*");
    choices.svm = SVMOptions{SVMKernel::Polynomial, 1.0, 1e4, 20};
    expectRefused(train, "The training has not led to a classifier*");
    EXPECT_TRUE(filesNamed("*.svm").isEmpty());
}

TEST_F(ClassifierTrainingTest, OneConditionIsAskedAbout) {
    training.addRuns({writeRun("one", trainingProtocol().replace("45 46", "60 61"))});
    training.selectConditions({"Faces"});
    training.options.preOnset = 0;
    training.options.postOnset = 1;
    training.options.zNormalization = true;
    training.options.estimate = TrialEstimate::Beta;
    training.options.intensityLimit = 1003; // which some voxels of the first volume reach
    const QString question = "You have selected only 1 condition.\n\nYou may run single-trial "
                             "analysis, but you need to select at least 2 conditions to perform "
                             "classifier training.\n\nDo you want to coninue?";
    messages.expectQuestion(question, false);
    messages.expectInformation(
        "For classifier training, you need to select at least two conditions.");
    EXPECT_FALSE(training.estimateTrials());
    messages.expectQuestion(question, true);
    EXPECT_TRUE(training.estimateTrials());
    EXPECT_EQ(logged.count("z normalization skipped - less than 3 data points\n"), 3);
    EXPECT_EQ(logged.count("Trial 3 of \"Faces\" begins behind the last volume"), 1);
    TrialMaps maps;
    ASSERT_TRUE(readTrialMaps(path("one_Trials.fmp"), maps));
    for (size_t i = 0; i < trainingSize.samples(); ++i)
        EXPECT_TRUE(maps.map(0)[i] == 0.0f || scriptedSample(i + 3, 0) % 5 >= 3) << i;
    EXPECT_NE(*std::max_element(maps.map(0).begin(), maps.map(0).end()), 0.0f);
    messages.expectWarning("Not enough conditions!*");
    EXPECT_FALSE(training.addTrialFiles({path("one_Trials.fmp")}));
}

TEST_F(ClassifierTrainingTest, WhatIsStoppedHasWrittenNothing) {
    makePatternsOfTwoRuns();
    const QStringList before = filesNamed("*");
    const PatternSet none;
    display.modelCancelled = true;
    training.choices.trainingPatterns = false;
    training.options.preOnset = 1;
    for (const auto operation :
         {&ClassifierTraining::estimateTrials, &ClassifierTraining::createPatterns,
          &ClassifierTraining::train, &ClassifierTraining::testByPermutations})
        EXPECT_FALSE((training.*operation)());
    EXPECT_EQ(filesNamed("*"), before);
    EXPECT_NE(parseTrialSettings(content(trialSettingsFileName)), training.options);
    EXPECT_TRUE(training.modelPath().isEmpty());
    EXPECT_TRUE(hasLogged("The training was stopped.\n"));

    // Nothing begins while something else goes on.
    display.modelCancelled = false;
    int refusals = 0;
    display.whileModelling = [&] {
        if (refusals++ > 0)
            return;
        messages.expectInformation("This has to wait until the run has ended and is saved.");
        EXPECT_FALSE(training.test());
    };
    EXPECT_TRUE(training.train());
    EXPECT_GT(refusals, 0);
}

TEST_F(ClassifierTrainingTest, FilesThatCanNotBeWrittenLeaveTheOthersAsTheyWere) {
    makePatternsOfTwoRuns();
    const QByteArray voxels = content(voxelsFileName);
    session.functionalDocument->regions[0].voxels.append(0, 0, 0);
    QDir().mkdir(path("Test_ROI 1_Faces-Houses_6-6.mvp"));
    training.choices.trainingPatterns = false;
    messages.expectCritical("Unable to open multi-voxel pattern file for writing!");
    EXPECT_FALSE(training.createPatterns());
    EXPECT_EQ(content(voxelsFileName), voxels);

    const QString model = path("Model_ROI 1_Faces-Houses_6-6.svm");
    QDir().mkdir(model);
    messages.expectCritical("Unable to write the model: *");
    EXPECT_FALSE(training.train());
    EXPECT_FALSE(QFile::exists(scalingPath(model)));
    EXPECT_TRUE(training.modelPath().isEmpty());

    const QByteArray settings = content(trialSettingsFileName);
    const QByteArray maps = content("one_Trials.fmp");
    training.options.postOnset = 4;
    const auto expectUnwritable = [&](const QString& name, const QString& message) {
        QFile::rename(path(name), path("kept"));
        QDir().mkdir(path(name));
        messages.expectCritical(message);
        EXPECT_FALSE(training.estimateTrials());
        QDir().rmdir(path(name));
        QFile::rename(path("kept"), path(name));
    };
    expectUnwritable(trialSettingsFileName, "Unable to write the settings of the estimation: *");
    EXPECT_EQ(content("one_Trials.fmp"), maps);
    expectUnwritable("one_Trials.fmp", "Can not open specified file for saving map data !");
    EXPECT_EQ(content(trialSettingsFileName), settings);
}

TEST_F(ClassifierTrainingTest, AModelMustFitThePatterns) {
    writePatterns({1, -1, 1, -1});
    training.choices.scaling.mode = ScalingMode::Range;
    ASSERT_TRUE(training.train());
    loadRegion();
    training.addRuns({writeRun("one")});
    ASSERT_TRUE(training.estimateTrials());
    ASSERT_TRUE(training.createPatterns());
    messages.expectWarning("Classifier does not fit to test data!");
    EXPECT_FALSE(training.test());
    EXPECT_TRUE(hasLogged("Expected 6 ROI voxels, but 2 SVM features found"));
    put("Model_x_scaling.txt", "FileVersion: 1\n");
    messages.expectCritical("The scaling of the model is damaged: *");
    EXPECT_FALSE(training.chooseModel(path("Model_x.svm")));
    QFile::remove(path("Model_x.svm"));
    for (const auto& operation : {std::function([&] { return training.test(); }),
                                  std::function([&] { return training.chooseModel("x"); })}) {
        messages.expectWarning("Can not find specified model file");
        EXPECT_FALSE(operation());
    }
    EXPECT_TRUE((training.choosePatterns(""), !training.train())); // without a message
}

TEST(MeanResponseTest, IsTheMeanOfTheWindowsFromTheirFirstPointOn) {
    TrialOptions options;
    options.preOnset = 1;
    options.postOnset = 2;
    const std::vector<Trial> trials = {{"A", 1, 2, 3}, {"B", 1, 5, 6}, {"A", 2, 0, 4}};
    // Windows 1 to 4 and 4 to 7, whose last point repeats the one before; mean 2, 4, 7, 6.
    EXPECT_EQ(measuredResponse(std::vector<double>{0, 1, 3, 5, 3, 5, 9}, trials, 1, options),
              (std::vector<double>{0.0, 0.4, 1.0, 0.8}));
    EXPECT_TRUE(measuredResponse(std::vector<double>(7, 3.0), trials, 1, options).empty());

    RunVolumes volumes;
    ASSERT_TRUE(volumes.allocate(2, 3));
    const std::vector<int16_t> samples = {1, 5, 9};
    std::copy(samples.begin(), samples.end(), volumes[0].begin());
    volumes[1][1] = 4;
    Reporter quiet;
    EXPECT_EQ(meanCurve(volumes, {}, 5, quiet), (std::vector<double>{7.0, 2.0}));
    EXPECT_EQ(meanCurve(volumes, {0, 1}, 5, quiet), (std::vector<double>{3.0, 2.0}));
}

TEST(TrainingNamesTest, FilesAreNamedAfterWhatIsInThem) {
    EXPECT_EQ(patternFileName(true, "ROI 1-2", {"a/b", "c", "d"}, {3, 4, 5}),
              "Train_ROI 1_2_a_b-c-d_3-4-5.mvp");
    EXPECT_EQ(modelPathOf("/d.e/Train_ROI 1_A-B_3-3.mvp"), "/d.e/Model_ROI 1_A-B_3-3.svm");
    EXPECT_EQ(modelPathOf("Test_x_y.mvp"), "Model_Test_x_y.svm");
    EXPECT_EQ(modelPathOf("Training.mvp"), "Model_Training.svm");
}

// The classifier of a whole session: what it reads, predicts, gives to the subject, saves, and
// finds again in runs that are played.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/classify_data.h"
#include "classify/feature_scaling.h"
#include "classify/pattern_file.h"
#include "classify/trial_fit.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "run/loop/session_fixture.h"

namespace {

constexpr int volumes = 40;

/// Trials at volumes 10 to 13, 20 to 23 and 30 to 33.
const char trials[] = "\nRest\n2\n1 9\n14 19\nColor: 100 100 100\n"
                      "\nUp\n2\n10 13\n30 33\nColor: 255 0 0\n\nDown\n1\n20 23\nColor: 0 255 0\n";

class Screen : public ClassifierScreen {
public:
    QStringList lines;
    void log(const QString& text) override { lines << text; }
    void refreshControls() override {}
    [[nodiscard]] QStringList predictions() const { return lines.filter("Time point:"); }
};

class Subject : public FeedbackScreen {
public:
    [[nodiscard]] QSize frameSize() const override { return {30, 20}; }
    void paintCurve(QPainter&, QSize, const FeedbackCurve&) override {}
    void showPicture() override {}
    void refreshControls() override {}
};

} // namespace

class SessionClassifierTest : public SessionFixture {
protected:
    SessionClassifierTest() {
        writeSession(volumes, 0, {}, defaultProtocol().section("Fixation", 0, 0) + trials);
        session.settings.TargetFolder = path("results/");
        for (const auto& [x, y, z] : {std::tuple(1, 2, 0), {7, 7, 3}, {0, 0, 1}, {4, 1, 2}})
            voxels_.append(x, y, z);
        QDir().mkpath(path("results"));
        put("results/VoxelsUsedForTraining.txt", voxelsText(voxels_));
        trial_.postOnset = 4;
        put("results/SingleTrialGLMSettings.txt", trialSettingsText(trial_));
        EXPECT_TRUE(modelOf({1, -1}, 4).save(model()));
    }
    ~SessionClassifierTest() override { session.classifier.close(); }

    [[nodiscard]] QString model() const { return path("results/Model_test.svm"); }
    void openAndPredict() {
        session.classifier.open(screen_);
        session.classifier.chooseModel(model());
        session.classifier.toggleIncrementalPrediction();
        ASSERT_TRUE(session.classifier.IncrementalPredictionOn());
    }
    void choose(PredictionMode mode) {
        LiveOptions options = session.classifier.options();
        options.mode = mode;
        session.classifier.setOptions(options);
    }
    /// What the volumes in memory give for the trial, whose last point was not measured yet.
    std::vector<double> offline(int onset) {
        const FMRProject& project = session.functionalDocument->project;
        std::vector<size_t> places;
        for (size_t i = 0; i < voxels_.size(); ++i)
            places.push_back(voxels_.offset(i, project.size()));
        std::vector<float> values(places.size());
        const TrialDesign design = trialDesign(trial_, 3, project.TR);
        estimateVoxels(
            {design, trial_.estimate, trial_.zNormalization}, project.volumes,
            std::vector{onset - 2, onset - 1, onset, onset + 1, onset + 2, onset + 3, onset + 3},
            places, values);
        return {values.begin(), values.end()};
    }

    VoxelList voxels_;
    TrialOptions trial_;
    Screen screen_;
};

TEST_F(SessionClassifierTest, ARunIsPredictedVolumeByVolumeAndTheSubjectSeesIt) {
    Subject subject;
    session.feedback.open(subject);
    EXPECT_FALSE(session.feedback.classifierPredicts());
    openAndPredict();
    EXPECT_TRUE(session.feedback.classifierPredicts());
    session.feedback.change(chooseClassifierOutput);
    std::map<int, int> levels; // by volume
    ProbeListener eye(session.listeners, ListenerPlace::Dialogs);
    eye.onEndOfVolume = [&](int v) { levels[v] = session.feedback.values().FbLevel1; };
    session.runButtonPressed();
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_FALSE(session.classifier.IncrementalPredictionOn()) << "the end of the run ends it";
    EXPECT_FALSE(session.feedback.choices().UseSVMOutput);
    EXPECT_EQ(session.classifier.NrOfOnlinePatterns(), 12);

    const QStringList lines = screen_.predictions();
    ASSERT_EQ(lines.size(), 12);
    qsizetype next = 0;
    for (const int onset : {10, 20, 30})
        for (int v = onset + 1; v < onset + 5; ++v) {
            const QStringList words = lines[next++].simplified().split(' ');
            EXPECT_EQ(words[2].toInt(), v);
            const float value = words[words.indexOf("value:") + 1].toFloat();
            EXPECT_NE(value, 0.0f);
            EXPECT_EQ(levels.at(v), int(std::floor(5 * value / 1.5 + 0.5))) << v;
        }
    EXPECT_EQ(levels.at(9), 0);
    EXPECT_EQ(levels.at(15), 0) << "no output, no level";
    session.feedback.close();
}

TEST_F(SessionClassifierTest, OncePerTrialAndASecondRunBeginsAnewWithTheSameSettings) {
    openAndPredict();
    const QStringList opening = screen_.lines;
    EXPECT_EQ(opening[1], "Loaded \"SingleTrialGLMSettings.txt\" file:");
    EXPECT_EQ(opening[4], "Data window pre-onset:                     2");
    EXPECT_EQ(opening.mid(opening.size() - 4),
              (QStringList{"Loaded \"VoxelsUsedForTraining.txt\" file containing 4 voxels",
                           "Output printed if full trial data available", "",
                           "Starting incremental prediction..."}));
    choose(PredictionMode::EndOfTrial);
    session.runButtonPressed();
    ASSERT_EQ(screen_.predictions().size(), 3);
    EXPECT_EQ(
        screen_.lines.mid(screen_.lines.size() - 3),
        (QStringList{"Incremental prediction completed.", "",
                     "Saved estimated patterns to disk as \"OnlineClassifiedPatterns.mvp\""}));
    const QByteArray first = content("results/OnlineClassifiedPatterns.mvp");
    PatternSet saved;
    QString fault;
    ASSERT_TRUE(parsePatternFile(first, PatternFileForm::Text, saved, fault));
    ASSERT_EQ(saved.count(), 3);
    SVMModel machine;
    EXPECT_TRUE(machine.load(model()));
    for (int trial = 0; trial < 3; ++trial) {
        const std::vector<double> features = offline(10 + 10 * trial);
        const double value = predict(machine, features).output;
        EXPECT_TRUE(screen_.predictions()[trial].contains(QString("%1  predicted").arg(value, 9)));
        for (size_t i = 0; i < features.size(); ++i)
            EXPECT_NEAR(saved.features(trial)[i], features[i], 1e-4);
    }
    LiveOptions options = session.classifier.options();
    options.haemodynamicDelay = 7;
    options.trial.postOnset = 4;
    session.classifier.setOptions(options);
    session.classifier.toggleIncrementalPrediction();
    runAgain();
    EXPECT_EQ(session.classifier.options(), options) << "the same file changes nothing";
    EXPECT_EQ(screen_.lines.filter("Training files in").size(), 1);
    EXPECT_EQ(screen_.lines.filter("Loaded \"").size(), 2);
    EXPECT_EQ(content("results/OnlineClassifiedPatterns.mvp"), first);
    EXPECT_EQ(session.classifier.NrOfOnlinePatterns(), 3);

    // New training changes both, when the next run is prepared.
    trial_.postOnset = 5;
    put("results/SingleTrialGLMSettings.txt", trialSettingsText(trial_));
    runAgain();
    EXPECT_EQ(screen_.lines.filter("Training files in").size(), 2);
    EXPECT_EQ(session.classifier.options().trial.postOnset, 5);
    EXPECT_EQ(session.classifier.options().haemodynamicDelay, 7);
}

TEST_F(SessionClassifierTest, WithoutAUsableModelItStaysOff) {
    session.settings.TargetFolder.clear();
    QDir::setCurrent(path("results")); // where there are training files, but of no run
    session.classifier.open(screen_);
    EXPECT_EQ(session.classifier.NrOfVoxelsUsed(), 0);
    messages.expectWarning("No model file available!\n\nFirst train or load a SVM classifier.");
    session.classifier.toggleIncrementalPrediction();
    session.classifier.chooseModel(path("none.svm"));
    messages.expectWarning("Can not find specified model file*");
    session.classifier.toggleIncrementalPrediction();
    put("none.svm", "svm_type c_svc\n");
    messages.expectWarning("Can not use specified model file*");
    session.classifier.toggleIncrementalPrediction();
    EXPECT_FALSE(session.classifier.IncrementalPredictionOn());
    EXPECT_FALSE(QFile::exists(path("results/OnlineClassifiedPatterns.mvp")));
}

TEST_F(SessionClassifierTest, ARunOutlivesAModelThatVanishesAndAFolderThatTakesNoFile) {
    openAndPredict();
    ASSERT_TRUE(QFile::remove(model()));
    ASSERT_TRUE(QDir().mkpath(path("results/OnlineClassifiedPatterns.mvp/in_the_way")));
    messages.expectWarning("WARNING: The model file*");
    messages.expectWarning("WARNING: The estimated patterns of the run could not be saved*");
    session.runButtonPressed();
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_EQ(screen_.predictions().size(), 12);
    EXPECT_EQ(messages.shownModeless().size(), 2);
    ASSERT_TRUE(screen_.lines.last().startsWith("Not saved: "));
    EXPECT_EQ(screen_.lines.filter("The model file \"" + model() + "\" can no longer").size(), 1);
}

TEST_F(SessionClassifierTest, WhatFitsTheRunBadlyIsToldBeforeIt) {
    trial_.intensityLimit = 100;
    trial_.response = TrialResponse::MeanResponse;
    put("results/SingleTrialGLMSettings.txt", trialSettingsText(trial_));
    voxels_.append(8, 0, 0);
    put("results/VoxelsUsedForTraining.txt", voxelsText(voxels_));
    FeatureScaling scaling;
    scaling.options.mode = ScalingMode::Range;
    scaling.minimum = scaling.maximum = {1, 1, 1, 1};
    put("results/Model_test_scaling.txt", scalingText(scaling));
    messages.acceptAnything();
    openAndPredict();
    session.runButtonPressed();
    ASSERT_EQ(messages.shownModeless().size(), 2) << "when it is switched on, and with the run";
    const QString log = screen_.lines.join('\n');
    for (const char* part : {"another response", "scaled features", "darker than 100",
                             "Expected 5 ROI voxels, but 4 SVM"})
        EXPECT_TRUE(log.contains(part)) << part;
    EXPECT_FALSE(messages.shownModeless()[0].contains("outside this run"));
    EXPECT_TRUE(messages.shownModeless()[1].contains("outside this run"));
    EXPECT_TRUE(screen_.predictions().isEmpty());
    EXPECT_TRUE(content("results/OnlineClassifiedPatterns.mvp").isEmpty()) << "no file for none";
}

TEST_F(SessionClassifierTest, ARecoveredRunCompletesItsPatterns) {
    ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [this](int volume) {
        if (volume == 4)
            openAndPredict();
        if (volume == 12)
            choose(PredictionMode::EndOfTrial);
        if (volume == 24)
            session.classifier.toggleIncrementalPrediction();
    };
    const QString journal = recordJournal();
    const QByteArray whole = content("results/OnlineClassifiedPatterns.mvp");
    EXPECT_EQ(screen_.predictions().size(), 3) << "two of the first trial, one of the second";
    operatorHand.onEndOfVolume = [](int) {};
    session.classifier.close();
    session.classifier.chooseModel({});
    session.classifier.setOptions({});
    ASSERT_TRUE(QFile::remove(path("results/OnlineClassifiedPatterns.mvp")));
    cutJournal(journal, 25);
    EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
    EXPECT_EQ(content("results/OnlineClassifiedPatterns.mvp"), whole);
    EXPECT_EQ(session.classifier.modelPath(), model());
    EXPECT_EQ(session.classifier.options().mode, PredictionMode::EndOfTrial);
    EXPECT_FALSE(session.classifier.IncrementalPredictionOn());
}

TEST_F(SessionClassifierTest, TrainingFilesOfAnotherFolderLieBesideTheModel) {
    ASSERT_TRUE(QDir().rename(path("results"), path("training")));
    session.classifier.open(screen_);
    EXPECT_TRUE(screen_.lines.contains("Can not find \"SingleTrialGLMSettings.txt\" file - "
                                       "assuming default settings:"));
    EXPECT_TRUE(screen_.lines.contains("Can not find \"VoxelsUsedForTraining.txt\" file - "
                                       "testing not possible!"));
    EXPECT_EQ(session.classifier.options(), defaultLiveOptions());
    session.classifier.chooseModel(path("training/Model_test.svm"));
    EXPECT_EQ(session.classifier.NrOfVoxelsUsed(), 4);
    EXPECT_EQ(session.classifier.options().trial.postOnset, 4);
    session.classifier.toggleIncrementalPrediction();
    session.changeSettingsFile(path("test-1.vco"));
    EXPECT_FALSE(session.classifier.IncrementalPredictionOn());
    EXPECT_EQ(session.classifier.options(), defaultLiveOptions());
    runAgain();
    EXPECT_EQ(session.classifier.options().trial.postOnset, 4) << "read anew for each series";
}

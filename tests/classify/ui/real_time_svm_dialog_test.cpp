// The dialog of the classifier of a run, driven by its controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/classify_data.h"
#include "classify/ui/real_time_svm_dialog.h"
#include "classify/voxels_file.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

namespace {

constexpr const char* groups[] = {"TrialEstimationApproachGrpBx",
                                  "PointInConditionEstimationApproachGrpBx",
                                  "ContinousPointEstimationApproachGrpBx"};

} // namespace

class RealTimeSVMDialog : public SessionFixture, protected DrivenWindow {
protected:
    RealTimeSVMDialog() {
        writeSession(40, 0);
        session.settings.TargetFolder = path("results/");
        VoxelList voxels;
        voxels.append(1, 2, 0);
        voxels.append(2, 2, 0);
        QDir().mkpath(path("results"));
        put("results/VoxelsUsedForTraining.txt", voxelsText(voxels));
        EXPECT_TRUE(modelOf({1, -1}, 2).save(path("results/Model_a.svm")));
        openRealTimeSVMDialog(session, window);
    }
    QDialog* dialog() { return window.findChild<QDialog*>("RealTimeSVMClassificationDlg"); }
    QString text(const char* label) { return find<QLabel>(label).text().remove('&'); }
    void chooseModel() {
        messages.expectFileChoice("Select SVM File", path("results/Model_a.svm"));
        click("SelectTrainedClassfierFileBtn");
    }
    QString log() { return find<QPlainTextEdit>("LogPredictionsTxEd").toPlainText(); }
    QString predictText() { return find<QPushButton>("PredictBtn").text().remove('&'); }
    const LiveOptions& options() { return session.classifier.options(); }
};

TEST_F(RealTimeSVMDialog, BeginsWithItsDefaultsAndEditsTheSession) {
    expectExplained(*dialog());
    EXPECT_EQ(dialog()->windowTitle(), "Real-Time SVM Classification");
    EXPECT_EQ(find<QGroupBox>(groups[2]).title().remove('&'), "Continous TR-by-TR prediction");
    EXPECT_TRUE(log().endsWith("Loaded \"VoxelsUsedForTraining.txt\" file containing 2 voxels"));
    LiveOptions expected = defaultLiveOptions();
    const std::tuple<const char*, int, int&> fields[] = {
        {"PreOnsetSpBx", 1, expected.trial.preOnset},
        {"PostOnsetSpBx", 8, expected.trial.postOnset},
        {"PreOnsetPointEstimationSpBx", 1, expected.pointPreOnset},
        {"HRDelaySpBx", 2, expected.haemodynamicDelay},
        {"PostCondPointEstimationSpBx", 0, expected.postCondition}};
    for (const auto& [name, value, field] : fields) {
        EXPECT_EQ(find<QSpinBox>(name).value(), value) << name;
        field = value + 3;
        find<QSpinBox>(name).setValue(field);
        EXPECT_EQ(options(), expected) << name;
    }
    // One mode is chosen, and its group alone is enabled.
    for (const auto& [chosen, mode] : {std::pair(2, PredictionMode::Continuous),
                                       {2, PredictionMode::Continuous},
                                       {1, PredictionMode::WithinCondition},
                                       {0, PredictionMode::EndOfTrial}}) {
        QTest::keyClick(&find<QGroupBox>(groups[chosen]), Qt::Key_Space);
        EXPECT_EQ(options().mode, mode);
        for (int group = 0; group < 3; ++group)
            EXPECT_EQ(find<QGroupBox>(groups[group]).isChecked(), group == chosen) << group;
        EXPECT_EQ(find<QSpinBox>("PreOnsetSpBx").isEnabled(), chosen == 0);
        EXPECT_EQ(find<QSpinBox>("HRDelaySpBx").isEnabled(), chosen == 1);
    }
    for (const auto& [label, post] : {std::pair("Post-trial:", 6), {"Post-onset:", 22}}) {
        click("UseTrialDurationForDataWindowOp");
        EXPECT_EQ(text("PostOnsetLbl"), label);
        EXPECT_EQ(options().trial.postOnset, post);
        EXPECT_EQ(options().trial.useTrialDuration, post == 6);
        EXPECT_EQ(find<QSpinBox>("PostOnsetSpBx").value(), post);
    }
}

TEST_F(RealTimeSVMDialog, PredictsDuringARunAndShowsIt) {
    messages.expectWarning("No model file available!\n\nFirst train or load a SVM classifier.");
    click("PredictBtn");
    EXPECT_EQ(predictText(), "Predict");
    chooseModel();
    EXPECT_EQ(find<QLineEdit>("TrainedClassifierFileEd").toolTip(), path("results/Model_a.svm"));
    click("PredictBtn");
    EXPECT_EQ(predictText(), "Predicting...");
    EXPECT_FALSE(find<QPushButton>("SelectTrainedClassfierFileBtn").isEnabled());
    ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [this](int volume) {
        EXPECT_EQ(text("PredictedValueLbl") == "No prediction yet", volume < 5);
        EXPECT_EQ(find<QLabel>("PredictedClassLbl").isEnabled(),
                  session.classifier.predictedClass() > 0);
        if (volume == 5) {
            EXPECT_EQ(text("ClassifierStateLbl"),
                      "Predicting with Model_a.svm, 2 voxels, 1 pattern so far");
            EXPECT_EQ(text("PredictedClassLbl"),
                      QString("Class %1").arg(session.classifier.predictedClass()));
            EXPECT_TRUE(text("PredictedValueLbl").endsWith("volume 6"));
            QTest::keyClick(dialog(), Qt::Key_Escape);
        }
    };
    session.runButtonPressed();
    EXPECT_EQ(session.classifier.NrOfOnlinePatterns(), 8) << "Escape did not end it";
    EXPECT_EQ(predictText(), "Predict");
    EXPECT_EQ(text("ClassifierStateLbl"), "Off: Model_a.svm, 2 voxels");
    EXPECT_TRUE(log().contains("Incremental prediction completed."));
    QTest::keyClick(dialog(), Qt::Key_Escape);
    EXPECT_FALSE(dialog()->isVisible());
    EXPECT_FALSE(session.classifier.isOpen());
}

TEST_F(RealTimeSVMDialog, GoesWithTheSettingsFileAndEndsThePrediction) {
    chooseModel();
    click("PredictBtn");
    QDialog* first = dialog();
    QPointer<QDialog> guard(first);
    session.changeSettingsFile(path("test-1.vco"));
    EXPECT_FALSE(session.classifier.IncrementalPredictionOn());
    openRealTimeSVMDialog(session, window);
    EXPECT_NE(dialog(), first);
    EXPECT_EQ(find<QLineEdit>("TrainedClassifierFileEd").text(), "Model_a.svm");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(guard);
    EXPECT_TRUE(session.classifier.isOpen()) << "the old one has not closed the new one";
    click("PredictBtn");
    delete dialog();
    EXPECT_FALSE(session.classifier.isPredicting());
}

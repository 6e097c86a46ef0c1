// The dialog of the feedback: its controls, what it says, and what it leaves of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/neurofeedback_dialog.h"
#include "feedback/ui/neurofeedback_options_dialog.h"
#include "feedback/ui/render_area.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QTest>

namespace {

constexpr const char* modeButtons[] = {"m_UseTimeCourse1", "m_UseTimeCourse2", "m_UseTimeCourse3",
                                       "m_UseTC1And2",     "m_UseTC1And3",     "m_UseTC2And3",
                                       "m_UseTC1And2And3"};

class ScriptedClassifier : public ClassifierOutput {
public:
    bool predicts = true;
    [[nodiscard]] bool isPredicting() const override { return predicts; }
    [[nodiscard]] int nrOfClasses() const override { return 2; }
    [[nodiscard]] bool currentOutput(std::span<float> values) const override {
        values[0] = 0.6f;
        return true;
    }
};

/// A session of 30 volumes of 3 seconds, and a window for the dialog.
class NeurofeedbackDialog : public SessionFixture, protected DrivenWindow {
protected:
    NeurofeedbackDialog() {
        QString protocol = defaultProtocol();
        writeSession(30, 0, {{"TR:", "3000"}},
                     protocol.replace("7 9", "7 22").replace("10 14", "23 28"));
        EXPECT_TRUE(session.inspectSettings());
        openNeurofeedbackDialog(session, window);
    }
    ~NeurofeedbackDialog() override { session.listeners.documentsLeaving(); }

    /// A run at volume 21, with regions that change by 1, 2 and 3 percent from volume 13 on.
    void arrive(int nrOfRegions) {
        session.listeners.documentsLeaving();
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        QtCortivoDoc& document = *session.functionalDocument;
        session.report.currentVolume = 20;
        document.project.NrOfVolumes = 30;
        document.project.TR = 3000.0f;
        document.protocol = session.feedback.protocol();
        for (int i = 0; i < nrOfRegions; ++i) {
            RegionOfInterest region;
            region.TimeCourseValues.assign(30, 1000.0f);
            for (size_t t = 12; t < 30; ++t)
                region.TimeCourseValues[t] += 10.0f * float(i + 1);
            region.CurrentTimePoint = 20;
            document.regions.add(std::move(region));
        }
        session.listeners.documentsArrived(document);
        session.listeners.runPrepared(document);
    }
    NeurofeedbackDlg& dialog() { return find<NeurofeedbackDlg>("NeurofeedbackDlg"); }
    QString state() { return find<QLabel>("FeedbackStateLbl").text(); }
    const FeedbackChoices& choices() { return session.feedback.choices(); }
    /// One character for each mode: "+" can be chosen, "*" is chosen, "-" neither.
    QString modes() {
        QString text;
        for (const char* name : modeButtons) {
            const auto& button = find<QRadioButton>(name);
            text += button.isChecked() ? '*' : button.isEnabled() ? '+' : '-';
        }
        return text;
    }
    [[nodiscard]] QImage picture() {
        return find<RenderArea>("FeedbackArea")
            .buffer()
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }
};

} // namespace

TEST_F(NeurofeedbackDialog, BeginsWithTheThermometerAndThePlannedProtocol) {
    EXPECT_EQ(dialog().windowTitle(), " Neurofeedback [Display for Subject]");
    expectExplained(dialog());
    EXPECT_TRUE(find<QRadioButton>("m_FeedbackBar").isChecked());
    EXPECT_EQ(find<QComboBox>("BaselineCondCmBx").itemText(2), "Houses");
    EXPECT_EQ(find<QSpinBox>("BaselineStartShiftTRsSpBx").value(), 2);
    EXPECT_EQ(find<QSpinBox>("BaselineEndShiftTRsSpBx").value(), 1);
    EXPECT_EQ(modes(), "-------");
    dialog().selectedROI2TimeCourse();
    EXPECT_EQ(choices().roiMode, noROIMode) << "without a run";
    EXPECT_TRUE(state().startsWith("No run yet. ")) << state().toStdString();
    EXPECT_EQ(picture().size(), dialog().frameSize());
    EXPECT_EQ(picture().pixelColor(3, picture().height() - 3), QColor(0, 0, 50));

    // Closed and opened it begins anew, but for what else was chosen.
    click("m_FeedbackTimeCourse");
    click("BlockOutputOp");
    dialog().close();
    EXPECT_FALSE(session.feedback.isOpen());
    openNeurofeedbackDialog(session, window);
    EXPECT_TRUE(session.feedback.isOpen());
    EXPECT_TRUE(find<QRadioButton>("m_FeedbackBar").isChecked());
    EXPECT_TRUE(find<QCheckBox>("BlockOutputOp").isChecked());
}

// The run of the settings before is still in memory: what counts is the one that comes.
TEST_F(NeurofeedbackDialog, AnotherSettingsFileBringsItsOwnProtocol) {
    arrive(1);
    writeSession(24, 0, {{"TR:", "1500"}}, defaultProtocol().replace("Houses", "Up_7"));
    session.listeners.settingsFileChanged();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(session.inspectSettings());
    EXPECT_TRUE(session.feedback.documentExists());
    openNeurofeedbackDialog(session, window);
    EXPECT_EQ(find<QComboBox>("BaselineCondCmBx").itemText(2), "Up_7");
    EXPECT_EQ(find<QSpinBox>("BaselineStartShiftTRsSpBx").value(), 4);
    EXPECT_EQ(session.feedback.nrOfVolumes(), 24);
    EXPECT_TRUE(state().startsWith("No run yet. ")) << state().toStdString();
    arrive(1);
    EXPECT_EQ(session.feedback.nrOfVolumes(), 30);
}

// At volume 21: a block has ended that the regions missed.
TEST_F(NeurofeedbackDialog, SaysWhenTheNextBaselineComes) {
    arrive(2);
    StimulationProtocol& protocol = session.functionalDocument->protocol;
    protocol.conditions[0].to[1] = 12;
    protocol.conditions[2].from[0] = 13;
    click("m_UseTimeCourse2");
    EXPECT_TRUE(state().endsWith("no further block ends before the run does"))
        << state().toStdString();
    protocol.conditions[2].to[0] = 15;
    EXPECT_TRUE(protocol.addInterval(0, 16, 25));
    EXPECT_TRUE(protocol.addInterval(2, 26, 30));
    session.feedback.update();
    EXPECT_TRUE(state().endsWith("at volume 27")) << state().toStdString();
}

TEST_F(NeurofeedbackDialog, ModesAreThoseOfTheRegions) {
    constexpr const char* expected[] = {"-------", "*------", "*+-+---", "*++++++"};
    for (int regions = 0; regions <= 3; ++regions) {
        arrive(regions);
        EXPECT_EQ(modes(), expected[regions]);
        EXPECT_EQ(find<QRadioButton>("AverageROIsOp").isEnabled(), regions >= 2);
        EXPECT_EQ(find<QRadioButton>("VisualizeMultipleROIsOp").isEnabled(), regions >= 2);
    }
    for (int mode = 0; mode < nrOfROIModes; ++mode)
        for (int clicks = 0; clicks < 2; ++clicks) {
            click(modeButtons[mode]);
            EXPECT_EQ(choices().roiMode, mode);
            EXPECT_EQ(modes().indexOf('*'), mode) << "a second click leaves it checked";
        }
    click("VisualizeMultipleROIsOp");
    EXPECT_TRUE(choices().VisualizeROIs);
    click("AverageROIsOp");
    EXPECT_FALSE(choices().VisualizeROIs);
    session.functionalDocument->regions.clear();
    session.listeners.regionsChanged(*session.functionalDocument);
    EXPECT_EQ(modes(), "-------");
    EXPECT_TRUE(state().startsWith("No regions yet"));
}

TEST_F(NeurofeedbackDialog, MaximaBelongToTheRegionsOfTheMode) {
    arrive(3);
    auto& first = find<QDoubleSpinBox>("MaxPSCFlSpBx");
    auto& second = find<QDoubleSpinBox>("MaxPSC2FlSpBx");
    session.feedback.change([](FeedbackChoices& now) { now.MaxPSC = {1, 2, 3}; });
    click("m_UseTC1And3");
    EXPECT_EQ(std::pair(first.value(), second.value()), std::pair(1.0, 3.0));
    EXPECT_TRUE(second.isEnabled());
    first.setValue(5);
    second.setValue(7);
    EXPECT_EQ(choices().MaxPSC, (std::array{5.0f, 2.0f, 7.0f}));
    click("m_UseTimeCourse2");
    EXPECT_EQ(first.value(), 2.0);
    EXPECT_FALSE(second.isEnabled());
}

TEST_F(NeurofeedbackDialog, EachControlIsOneChoice) {
    const std::pair<const char*, std::function<bool()>> switches[] = {
        {"m_FeedbackTimeCourse", [&] { return choices().type == FeedbackType::TimeCourse; }},
        {"m_FeedbackPongSubject1", [&] { return choices().type == FeedbackType::PongSubject1; }},
        {"m_FeedbackPongSubject2", [&] { return choices().type == FeedbackType::PongSubject2; }},
        {"m_FeedbackBar", [&] { return choices().type == FeedbackType::Thermometer; }},
        {"BlockOutputOp", [&] { return choices().BlockOutput; }},
        {"ShowConditionNameAsInstructionOp",
         [&] { return !choices().ShowConditionNameAsInstruction; }},
        {"m_SetToMaxValue", [&] { return choices().SetToMaxValue; }},
        {"UseTCGLMB0ForBaselineOp", [&] { return choices().UseTCGLMB0ForBaseline; }},
        {"DelayedFeedbackOp",
         [&] { return choices().type == FeedbackType::Delayed && !choices().BlockOutput; }}};
    for (const auto& [name, isTaken] : switches) {
        EXPECT_FALSE(isTaken()) << name;
        click(name);
        EXPECT_TRUE(isTaken()) << name;
    }
    EXPECT_TRUE(session.feedback.delayed()) << "its options were opened";
    find<QSpinBox>("AveragePastFeedbackValuesSpBx").setValue(5);
    find<QSpinBox>("BaselineDisplayLevelSpBx").setValue(4);
    EXPECT_EQ(choices().NrOfPastValues, 5);
    EXPECT_EQ(choices().DisplayBaseLevel, 4);
    QTest::keyClick(&dialog(), Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(choices().ShowValues);
    QTest::keyClick(&dialog(), Qt::Key_D, Qt::ControlModifier);
    EXPECT_TRUE(choices().ShowValues);
}

TEST_F(NeurofeedbackDialog, TheClassifierTakesThePlaceOfRegionsWhileItPredicts) {
    ScriptedClassifier classifier;
    arrive(1);
    EXPECT_FALSE(find<QRadioButton>("UseSVMOutputOp").isEnabled());
    session.feedback.setClassifier(&classifier);
    click("UseSVMOutputOp");
    EXPECT_EQ(modes(), "+------");
    EXPECT_EQ(find<QDoubleSpinBox>("MaxPSCFlSpBx").value(), 1.5);
    EXPECT_EQ(find<QSpinBox>("BaselineDisplayLevelSpBx").value(), 5);
    EXPECT_EQ(state(), "Output of the classifier: level 2"); // 0.6 / 1.5 of 5 steps
    classifier.predicts = false;
    session.feedback.setClassifier(&classifier);
    EXPECT_FALSE(find<QRadioButton>("UseSVMOutputOp").isEnabled());
    EXPECT_EQ(modes(), "*------");
    session.feedback.setClassifier(nullptr);
}

TEST_F(NeurofeedbackDialog, OptionsTakeTheConditionOfTheRun) {
    const auto accept = [&](bool checked, int condition) {
        click("OptionsBtn");
        find<QGroupBox>("NoFeedbackConditionGrpBx").setChecked(checked);
        find<QComboBox>("NoFbCondCmBx").setCurrentIndex(condition);
        find<QSpinBox>("NoFeedbackStartShiftSpBx").setValue(4 + condition);
        QTest::mouseClick(find<NeurofeedbackOptionsDlg>("NeurofeedbackOptionsDlg")
                              .findChild<QPushButton*>("OkBtn"),
                          Qt::LeftButton);
    };
    click("OptionsBtn");
    expectExplained(find<NeurofeedbackOptionsDlg>("NeurofeedbackOptionsDlg"));
    EXPECT_EQ(find<QComboBox>("NoFbCondCmBx").count(), 0) << "without a run";
    accept(true, -1);
    EXPECT_EQ(choices().NoFbCondition, -1);
    EXPECT_EQ(choices().NoFbStartShift, 3);
    arrive(1);
    accept(true, 2);
    EXPECT_EQ(choices().NoFbCondition, 2);
    EXPECT_EQ(choices().NoFbStartShift, 6);
    accept(false, 1);
    EXPECT_EQ(choices().NoFbCondition, -1);
    EXPECT_EQ(choices().NoFbStartShift, 6) << "kept";

    find<QSpinBox>("DynamicROIsTopPercentSpBx").setValue(20);
    click("EnableDynamicROIsOp");
    EXPECT_TRUE(session.requests.regions.BestVoxelSelection);
    EXPECT_EQ(session.requests.regions.TopVoxelRatio, 0.2f);
    EXPECT_EQ(session.functionalDocument->regions[0].TopVoxelRatio, 0.2f);
    auto& ranking = find<QComboBox>("TopVoxelSelectionCmBx");
    ranking.setCurrentIndex(2);
    Q_EMIT ranking.activated(2);
    EXPECT_EQ(session.requests.regions.TopVoxelSelectionMode, 1);
    EXPECT_EQ(ranking.currentText(), conditionNames(session.feedback.protocol()).value(2))
        << "the second column of the design: the first condition, the baseline, has none";
}

TEST_F(NeurofeedbackDialog, ShowsARunAndSaysWhatItShows) {
    QMap<int, QString> states;
    ProbeListener hand(session.listeners, ListenerPlace::Dialogs);
    hand.onEndOfVolume = [&](int volume) {
        if (volume == 0) {
            EXPECT_TRUE(session.regions.selectRectangle({1, 2, 6, 1, 4}));
        }
        states[volume] = state();
        EXPECT_EQ(picture(), session.feedback.picture());
        if (volume == 26) {
            click("m_FeedbackTimeCourse");
            QTest::keyClick(&dialog(), Qt::Key_Escape);
            EXPECT_TRUE(dialog().isVisible()) << "nor does it end a run";
        }
        if (volume == 27 || volume == 28)
            click("BlockOutputOp");
    };
    session.runButtonPressed();
    EXPECT_TRUE(states[1].startsWith("Feedback from volume ")) << states[1].toStdString();
    EXPECT_TRUE(states[25].startsWith("Volume 26: Level ")) << states[25].toStdString();
    EXPECT_EQ(states[28], "No output to subject. Volume 29: the curve is not shown");
    EXPECT_EQ(states[29], "Volume 30: the curve, without a level");
    const QImage saved = QImage(path("results/test-30.png")).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(saved, picture());
    QTest::keyClick(&dialog(), Qt::Key_Escape);
    EXPECT_FALSE(dialog().isVisible()) << "after the run";
}

// The curve is where the plot of the region has it: it rises by 3 percent at volume 13.
TEST_F(NeurofeedbackDialog, TheCurveIsThatOfTheRegion) {
    arrive(3);
    click("m_UseTimeCourse3");
    click("m_FeedbackTimeCourse");
    const QImage withStep = picture();
    session.functionalDocument->regions[2].TimeCourseValues.assign(30, 1000.0f);
    session.feedback.update();
    EXPECT_NE(picture(), withStep);
    EXPECT_NE(picture().pixelColor(1, 1), QColor(Qt::black)) << "the ground of plots";
}

TEST_F(NeurofeedbackDialog, GoesWithTheSettingsFile) {
    const QPointer<NeurofeedbackDlg> before = &dialog();
    session.changeSettingsFile(path("test-1.vco"));
    openNeurofeedbackDialog(session, window);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(before);
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_TRUE(session.feedback.isOpen());
}

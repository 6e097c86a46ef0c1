// The dialog of delayed feedback, driven by its controls, with and without a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/delayed_feedback_dialog.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>

class DelayedFeedbackDialog : public SessionFixture, protected DrivenWindow {
protected:
    DelayedFeedbackDlg* dialog() { return window.findChild<DelayedFeedbackDlg*>(); }
    int value(const char* name) { return find<QSpinBox>(name).value(); }
    QStringList conditions() {
        QStringList names;
        for (int i = 0; i < find<QComboBox>("ReferenceConditionCmBx").count(); ++i)
            names << find<QComboBox>("ReferenceConditionCmBx").itemText(i);
        return names;
    }
    void choose(int condition) {
        find<QComboBox>("ReferenceConditionCmBx").setCurrentIndex(condition);
    }
    void openBeforeRun() {
        writeSession(30, 2);
        session.settings.StimulationProtocol = path("test.prt");
        session.settings.TR = 2000.0f;
        openDelayedFeedbackDialog(session, window);
    }
    const DelayedFeedbackSettings& applied() { return *session.feedback.delayed(); }
};

TEST_F(DelayedFeedbackDialog, BeginsWithThePlannedProtocolAndItsDefaults) {
    openBeforeRun();
    expectExplained(*dialog());
    EXPECT_EQ(dialog()->windowTitle(), "Delayed Feedback Settings");
    EXPECT_EQ(conditions(), (QStringList{"Fixation", "Faces", "Houses"}));
    EXPECT_EQ(applied(), DelayedFeedbackSettings{.condition = 1});
    EXPECT_EQ(find<QDoubleSpinBox>("ScaleFactorDSpBx").value(), 10.0);
    EXPECT_EQ(find<QLineEdit>("DelayedFeedbackFileNameEd").text(), "DelayedFeedback.txt");
    EXPECT_FALSE(find<QLabel>("MillisecondLbl").isVisible());
}

TEST_F(DelayedFeedbackDialog, AppliesWhatIsChosenAndForgetsTheRest) {
    openBeforeRun();
    EXPECT_FALSE(find<QPushButton>("ApplyBtn").isEnabled());
    choose(2); // of 5 volumes
    EXPECT_EQ(value("ModulationToSpBx"), 9);
    EXPECT_EQ(value("UpdateFeedbackFileSpBx"), 10);
    EXPECT_EQ(applied().condition, 1);
    find<QSpinBox>("ModulationToSpBx").setValue(11);
    messages.expectWarning("The modulation interval must not end after the volume*");
    click("ApplyBtn");
    EXPECT_EQ(applied().condition, 1);
    find<QSpinBox>("UpdateFeedbackFileSpBx").setValue(12);
    find<QSpinBox>("BaselineFromSpBx").setValue(-6);
    find<QSpinBox>("BaselineToSpBx").setValue(-2);
    find<QSpinBox>("ModulationFromSpBx").setValue(1);
    find<QDoubleSpinBox>("ScaleFactorDSpBx").setValue(-2.5);
    find<QLineEdit>("DelayedFeedbackFileNameEd").setText("b.txt");
    click("ApplyBtn");
    const DelayedFeedbackSettings chosen{2, -6, -2, 1, 11, 12, -2.5, "b.txt"};
    EXPECT_EQ(applied(), chosen);
    EXPECT_FALSE(find<QPushButton>("ApplyBtn").isEnabled());
    choose(0);
    click("CloseBtn");
    EXPECT_FALSE(dialog()->isVisible());
    openDelayedFeedbackDialog(session, window);
    EXPECT_EQ(find<QComboBox>("ReferenceConditionCmBx").currentIndex(), 2);
    EXPECT_EQ(value("ModulationToSpBx"), 11);
    EXPECT_EQ(applied(), chosen);
}

TEST_F(DelayedFeedbackDialog, FollowsRunsAndGoesWithTheSettingsFile) {
    openBeforeRun();
    choose(2);
    click("ApplyBtn");
    find<QSpinBox>("BaselineFromSpBx").setValue(-5); // not applied
    const QString other = "\nFileVersion: 2\nResolutionOfTime: msec\nExperiment: Test\n"
                          "BackgroundColor: 0 0 0\nTextColor: 9 9 9\nTimeCourseColor: 9 9 9\n"
                          "TimeCourseThick: 3\nReferenceFuncColor: 8 8 8\nReferenceFuncThick: 2\n"
                          "NrOfConditions: 2\n\nHouses\n1\n2000 9000\nColor: 1 1 1\n"
                          "\nFixation\n0\nColor: 1 1 1\n";
    writeSession(6, 2, {}, other);
    session.runButtonPressed();
    EXPECT_EQ(conditions(), (QStringList{"Houses", "Fixation"}));
    EXPECT_EQ(find<QComboBox>("ReferenceConditionCmBx").currentText(), "Houses");
    EXPECT_TRUE(find<QLabel>("MillisecondLbl").isVisible());
    EXPECT_EQ(applied().condition, 0);
    EXPECT_EQ(applied().BaselineFrom, -8);
    EXPECT_EQ(value("BaselineFromSpBx"), -5);
    choose(1); // without intervals
    EXPECT_EQ(value("ModulationToSpBx"), 9);
    writeSession(6, 2);
    session.runButtonPressed(); // of the same name, elsewhere
    EXPECT_EQ(applied().condition, 2);
    EXPECT_EQ(find<QComboBox>("ReferenceConditionCmBx").currentIndex(), 0);
    EXPECT_FALSE(find<QLabel>("MillisecondLbl").isVisible());

    session.changeSettingsFile(path("test-1.vco"));
    EXPECT_FALSE(dialog()->isVisible());
    openDelayedFeedbackDialog(session, window);
    EXPECT_EQ(window.findChildren<DelayedFeedbackDlg*>().size(), 1);
    EXPECT_TRUE(dialog()->isVisible());
    EXPECT_EQ(value("BaselineFromSpBx"), -8);
    EXPECT_TRUE(session.feedback.delayed());
}

// The dialog of the dry run, by the object names of its controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/dry_run_dialog.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QSlider>

namespace {

class DryRunDialog : public SessionFixture, protected DrivenWindow {
protected:
    DryRunDialog() { writeSession(40, 0); }
    /// Opens the dialog for the current settings.
    void open() {
        EXPECT_TRUE(session.inspectSettings());
        openFeedbackDryRunDialog(
            session, window, [this](const SubjectPicture& picture) { shown_ << picture.frame; });
    }
    int volume() { return find<QSlider>("VolumeSlider").value(); }
    QString label(const char* name) { return find<QLabel>(name).text(); }
    void tick() { QMetaObject::invokeMethod(&find<QDialog>("FeedbackDryRunDlg"), "advance"); }
    bool plays() { return find<QAbstractButton>("PlayBtn").text() == "&Pause"; }

    QList<FeedbackFrame> shown_;
};

} // namespace

TEST_F(DryRunDialog, StepsAndPlaysThroughTheVolumes) {
    open();
    expectExplained(find<QDialog>("FeedbackDryRunDlg"));
    EXPECT_EQ(find<QSlider>("VolumeSlider").maximum(), 40);
    EXPECT_TRUE(label("ForecastLbl").contains("eedback"));
    const std::pair<const char*, int> presses[] = {
        {"StepBackBtn", 1}, {"StepBtn", 2},  {"StepBtn", 3}, {"StepBackBtn", 2},
        {"LastBtn", 40},    {"StepBtn", 40}, {"FirstBtn", 1}};
    for (const auto& [button, expected] : presses) {
        click(button);
        EXPECT_EQ(volume(), expected) << button;
    }
    click("LastBtn");
    click("PlayBtn");
    EXPECT_EQ(volume(), 1) << "at the end it begins anew";
    find<QSlider>("VolumeSlider").setValue(39);
    EXPECT_TRUE(plays());
    tick();
    EXPECT_EQ(volume(), 40);
    EXPECT_FALSE(plays());
    EXPECT_TRUE(label("ReadOutLbl").startsWith("Volume 40 of 40"));
}

TEST_F(DryRunDialog, FollowsTheChoicesAndShowsThemToTheSubjectIfWanted) {
    open();
    click("LastBtn");
    EXPECT_TRUE(shown_.isEmpty());
    click("SubjectScreenOp");
    ASSERT_EQ(shown_.size(), 1);
    session.feedback.change([](FeedbackChoices& choices) { choices.DisplayBaseLevel = 4; });
    EXPECT_EQ(shown_.last().baseLevel, 4);
    session.feedback.change(
        [](FeedbackChoices& choices) { choices.type = FeedbackType::TimeCourse; });
    EXPECT_EQ(shown_.last().kind, FeedbackFrame::Kind::TimeCourse);
    EXPECT_TRUE(label("ForecastLbl").contains("curve"));
    find<QDialog>("FeedbackDryRunDlg").hide();
    EXPECT_EQ(shown_.last(), FeedbackFrame());
}

TEST_F(DryRunDialog, RestsDuringARunAndGoesWithTheSettingsFile) {
    open();
    click("SubjectScreenOp");
    click("PlayBtn");
    script.atVolume = [&](int at) {
        if (at != 20)
            return;
        shown_.clear();
        EXPECT_FALSE(plays());
        for (const char* button : {"PlayBtn", "StepBtn"})
            click(button);
        EXPECT_TRUE(label("ReadOutLbl").startsWith("A run is measured"));
        EXPECT_TRUE(shown_.isEmpty());
    };
    session.runButtonPressed();
    click("StepBtn");
    EXPECT_TRUE(label("ReadOutLbl").startsWith("Volume 2 of 40"));
    session.changeSettingsFile(path("test-1.vco"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window.findChild<QDialog*>(), nullptr);
}

TEST_F(DryRunDialog, SavesPicturesWhereTheOperatorSaysOnly) {
    open();
    QDir().mkpath(path("pictures"));
    QDir().mkpath(path("feedback"));
    session.settings.FeedbackTargetFolder = path("feedback/");
    messages.expectFileChoice("Save Pictures", path("feedback/x.png"));
    messages.expectWarning("ERROR: \"" + path("feedback/") + "\" is the feedback folder*");
    click("SaveBtn");
    messages.expectFileChoice("Save Pictures", path("pictures/dry.png"));
    click("SaveBtn");
    for (int i = 0; i < 100000 && find<QAbstractButton>("SaveBtn").text() == "&Stop Saving"; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(label("ReadOutLbl"), "40 pictures were saved.");
    EXPECT_EQ(QDir(path("pictures")).entryList(QDir::Files).size(), 40);
    EXPECT_EQ(QImage(path("pictures/dry-40.png")).size(), find<QWidget>("PictureArea").size());
    EXPECT_TRUE(QDir(path("feedback")).isEmpty());
}

TEST_F(DryRunDialog, SaysWhatIsMissing) {
    const std::tuple<QString, QString, const char*> cases[] = {
        {"<none>", "", "names no protocol"},
        {"gone.prt", "", "gone.prt\" can not be read"},
        {"<none>", "x.rtp", "arrives during the run"}};
    for (const auto& [protocol, arriving, text] : cases) {
        session.settings = {};
        session.settings.NrOfVolumes = 40;
        session.settings.StimulationProtocol = protocol;
        session.settings.RealTimeProtocol = arriving;
        EXPECT_TRUE(missingForDryRun(session, session.feedback.protocol()).contains(text)) << text;
    }
}

// The dialogs of recovery and replay, by the object names of their controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"
#include "run/replay/ui/recover_run_dialog.h"
#include "run/replay/ui/replay_run_dialog.h"
#include "run/session/settings_file_watch.h"
#include "support/dialog_checks.h"

#include <QLabel>
#include <QTableWidget>

namespace {

class NoControls : public SettingsFileDisplay {
    void showInputControls(const InputControls&) override {}
    void showTitle(const QString&) override {}
    void paintNow() override {}
};

class ReplayDialogs : public SessionFixture, protected DrivenWindow {
protected:
    ReplayDialogs() {
        for (const char* folder : {"app", "data", "home"})
            QDir().mkpath(path(folder));
        watch_ = std::make_unique<SettingsFileWatch>(
            StandardFolders{{}, {}, path("data/"), path("app/"), path("home/")}, session, pump,
            display, controls_);
        session.journal.setPlaces({}, JournalList(path("OpenJournals")));
        writeSession(20, 0);
        watch_->setSettingsFile(path("test-1.vco"));
        EXPECT_TRUE(QFile::rename(recordJournal(), path("run.vcj")));
    }

    /// A journal as the crash of a run leaves it.
    void crash(const QString& name, int volumes) {
        put(name, content("run.vcj"));
        cutJournal(path(name), volumes);
        session.journal.list().add(path(name));
    }
    QTableWidget& table() { return find<QTableWidget>("JournalTable"); }
    QString field(const char* name) { return find<QLineEdit>(name).text(); }
    QString label(const char* name) { return find<QLabel>(name).text(); }
    void enter(const char* name, const QString& text) {
        find<QLineEdit>(name).clear();
        find<QLineEdit>(name).insert(text);
    }
    void chooseFile(const char* button, const QString& file, const QString& warning = {}) {
        messages.expectFileChoice("Open File", path(file));
        if (!warning.isEmpty())
            messages.expectWarning(warning);
        click(button);
    }

    NoControls controls_;
    std::unique_ptr<SettingsFileWatch> watch_;
};

} // namespace

TEST_F(ReplayDialogs, AnUnsavedRunIsRecoveredOrGoneOnWith) {
    for (const bool goOn : {false, true}) {
        QDir(path("results")).removeRecursively();
        crash("old.vcj", 5);
        crash("cut.vcj", 12);
        session.journal.list().add(path("run.vcj")); // saved
        offerRecovery(session, *watch_, window);
        EXPECT_EQ(table().rowCount(), 2);
        EXPECT_EQ(table().item(0, 3)->text(), "12 of 20");
        EXPECT_TRUE(label("JournalInfo").contains(path("cut.vcj")));
        EXPECT_EQ(field("FolderEdit"), path("results/"));
        if (!goOn) { // "old" is the second row, recovered elsewhere
            table().selectRow(1);
            enter("FolderEdit", "nowhere");
            messages.expectWarning("ERROR: Choose a folder for the results*");
            click("RecoverBtn");
            EXPECT_TRUE(find<QDialog>("RecoverRunDlg").isVisible());
            enter("FolderEdit", path("elsewhere"));
        }
        click(goOn ? "GoOnBtn" : "RecoverBtn");
        EXPECT_FALSE(find<QDialog>("RecoverRunDlg").isVisible());
        EXPECT_EQ(volumesIn(goOn ? "results" : "elsewhere"), goOn ? 20 : 5);
        EXPECT_EQ(QFile::exists(path("cut.vcj")), !goOn);
    }
}

TEST_F(ReplayDialogs, WhileAnUnsavedRunIsOfferedNoneStartsByItself) {
    const auto runsAfterALook = [this] {
        watch_->look();
        return display.calls.count("starting");
    };
    offerRecovery(session, *watch_, window);
    EXPECT_EQ(window.findChild<QDialog*>(), nullptr) << "there is none";
    crash("cut.vcj", 12);
    put("next.vco", content("test-1.vco"));
    watch_->setSettingsFile(path("next.vco"));
    watch_->setAutoStart(true);
    offerRecovery(session, *watch_, window);
    EXPECT_EQ(runsAfterALook(), 1) << "that of the set-up";
    click("NotNowBtn");
    EXPECT_EQ(runsAfterALook(), 2);
    EXPECT_TRUE(QFile::exists(path("cut.vcj")));

    watch_->setSettingsFile(path("next.vco"));
    openRecoverRunDialog(session, *watch_, window);
    EXPECT_EQ(runsAfterALook(), 3);
    EXPECT_FALSE(find<QDialog>("RecoverRunDlg").isVisible()) << "a run has begun";
}

TEST_F(ReplayDialogs, JournalsAreOpenedFromElsewhereAndRemoved) {
    openRecoverRunDialog(session, *watch_, window);
    for (const char* button : {"RecoverBtn", "GoOnBtn", "RemoveBtn"})
        EXPECT_FALSE(find(button).isEnabled()) << button;
    messages.expectFileChoice("Open File", {});
    click("OpenBtn");
    put("none.vcj", "x");
    chooseFile("OpenBtn", "none.vcj", "ERROR: \"" + path("none.vcj") + "\" is not*");
    auto writer = createJournalFile(path("cut.vcj"));
    chooseFile("OpenBtn", "cut.vcj", "ERROR: The journal \"" + path("cut.vcj") + "\" is being*");
    writer.reset();
    crash("cut.vcj", 12);
    for (const char* journal : {"cut.vcj", "run.vcj", "run.vcj"})
        chooseFile("OpenBtn", journal);
    EXPECT_EQ(table().rowCount(), 2) << "one of them twice";
    for (const char* button : {"RecoverBtn", "GoOnBtn"})
        EXPECT_FALSE(find(button).isEnabled()) << button << ": that run was over and is saved";
    table().selectRow(1);
    EXPECT_TRUE(find("RecoverBtn").isEnabled());
    for (const bool sure : {false, true}) {
        messages.expectQuestion("Do you want to delete the journal of the run \"test\"? Its 12*",
                                sure);
        click("RemoveBtn");
        EXPECT_EQ(table().rowCount(), sure ? 1 : 2);
        EXPECT_EQ(QFile::exists(path("cut.vcj")), !sure);
    }
    EXPECT_FALSE(content("OpenJournals").contains("cut.vcj"));
}

TEST_F(ReplayDialogs, AReplayTellsWhatWillHappenAndPlaysIt) {
    openReplayRunDialog(session, *watch_, window);
    EXPECT_EQ(field("RunEdit"), path("results/test.fmr"));
    EXPECT_EQ(field("FolderEdit"), path("results/replay/"));
    EXPECT_TRUE(label("PlanInfo").startsWith("The 20 volumes of \"test\""));
    chooseFile("BrowseRunBtn", "run.vcj");
    EXPECT_EQ(field("FolderEdit"), path("replay/")) << "follows the run";
    put("other.vco", content("test-1.vco"));
    chooseFile("BrowseSettingsBtn", "other.vco");
    EXPECT_TRUE(label("PlanInfo").contains("with \"other.vco\", one every 2000 ms"));
    click("FastBtn");
    EXPECT_TRUE(label("PlanInfo").contains("as fast as it goes"));

    const std::tuple<const char*, QString, QString> faults[] = {
        {"FolderEdit", path("results"), path("training")},
        {"RunEdit", path("gone.vcj"), path("run.vcj")}, // the folder that was typed stays
        {"SettingsEdit", path("gone.vco"), path("other.vco")}};
    for (const auto& [name, wrong, right] : faults) {
        enter(name, wrong);
        messages.expectWarning("ERROR: " + label("PlanInfo"));
        click("OkBtn");
        EXPECT_EQ(find<QDialog>("ReplayRunDlg").focusWidget(), &find<QLineEdit>(name));
        enter(name, right);
    }
    messages.expectInformation("INFO: The results of \"run.vcj\" are in folder*");
    click("OkBtn");
    EXPECT_FALSE(find<QDialog>("ReplayRunDlg").isVisible());
    EXPECT_EQ(volumesIn("training"), 20);

    messages.expectInformation("INFO: The results of \"test.fmr\" are in folder*");
    openReplayRunDialog(session, *watch_, window);
    click("FastBtn");
    click("OkBtn");
    EXPECT_EQ(volumesIn("results/replay"), 20) << "a project, with its own settings";
}

TEST_F(ReplayDialogs, EveryControlExplainsItselfAndFitsTheScreen) {
    crash("cut.vcj", 12);
    openRecoverRunDialog(session, *watch_, window);
    openReplayRunDialog(session, *watch_, window);
    for (const auto* dialog : window.findChildren<QDialog*>())
        expectExplained(*dialog);
}

// The menu of plug-ins in the main window, and the window of the one that runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/dialog_setup.h"
#include "plugin/host/fixtures.h"
#include "plugin/host/plugin_dialog.h"
#include "run/window/main_window.h"
#include "support/dialog_checks.h"

#include <QTextBlock>
#include <QTextBrowser>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>

class PluginWindow : public MainWindow {
protected:
    PluginWindow() {
        window_.reset();
        folders_.pluginsPath = home_.path() + "/plugins/";
        QDir().mkpath(folders_.pluginsPath);
        open(pump_);
    }
    PluginScript& launchScripted() {
        PluginScript& script = scriptOf(addPlugin(folders_.pluginsPath, "scripted"));
        entries("&Plugins").at(1)->trigger();
        return script;
    }
    PluginDlg& dialog() { return control<PluginDlg>("PluginDlg"); }
};

TEST_F(PluginWindow, MenuListsThePluginsUntilOneRuns) {
    std::vector<QAction*> rows = entries("&Plugins");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0]->text(), "<No plug-ins>");
    EXPECT_TRUE(!rows[0]->isEnabled() && rows[0]->toolTip().contains(folders_.pluginsPath));

    writeFile(folders_.pluginsPath + "empty.so", "");
    PluginScript& script = launchScripted();
    EXPECT_EQ(script.alive, 1);
    EXPECT_TRUE(entries("&Plugins").empty());
    dialog().close();
    EXPECT_EQ(script.alive, 0);
    rows = entries("&Plugins");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_TRUE(rows[0]->isSeparator());
    EXPECT_TRUE(rows[1]->isEnabled() && rows[1]->toolTip().contains("A &amp; B"));
    EXPECT_EQ(rows[2]->text(), "1 library can't be used");
    EXPECT_FALSE(rows[2]->isEnabled());
}

TEST_F(PluginWindow, StandsBesideTheMainWindowAndKeepsTheLatestLines) {
    launchScripted();
    expectExplained(dialog());
    EXPECT_EQ(dialog().size(), QSize(600, 400));
    const QRect screen = window_->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(dialog().geometry()));
    EXPECT_GE(dialog().frameGeometry().right(), screen.right() - windowFrame.width())
        << "as far right as there is room";
    auto& text = control<QTextEdit>("LogTxt");
    EXPECT_TRUE(text.isReadOnly() && text.lineWrapMode() == QTextEdit::NoWrap);
    for (int i = 1; i <= 10'002; ++i)
        window_->plugins().log(QString::number(i));
    EXPECT_EQ(text.document()->blockCount(), 10'000);
    EXPECT_EQ(text.document()->firstBlock().text(), "3");

    const QString help = folders_.pluginsPath + "scripted.html";
    messages_.expectWarning("WARNING: Unable to open help file \"" + help + "\"!");
    control<QToolButton>("HelpBtn").click();
    PluginDlg withoutHelp("Plug-in", window_->session().phase, *window_);
    EXPECT_TRUE(withoutHelp.findChild<QToolButton*>("HelpBtn")->isHidden());
}

TEST_F(PluginWindow, ThePanelKeepsSayingThatNoOtherCanBeLaunched) {
    PluginScript& script = scriptOf(addPlugin(folders_.pluginsPath, "scripted"));
    script.on["executeAtLaunch"] = [] { return false; };
    entries("&Plugins").at(1)->trigger();
    const auto panel = [this] { return control<QTextBrowser>("LogInfos").toPlainText(); };
    const QString atLaunch = panel();
    const QString note = "\"Scripted\" has ended at its launch.";
    EXPECT_EQ(atLaunch.count(note), 1);
    window_->timerCheckState(); // as once a second
    EXPECT_NE(panel(), atLaunch);
    EXPECT_EQ(panel().count(note), 1);
    prepare(1);
    runOver();
    window_->refreshControls();
    EXPECT_EQ(panel().count(note), 1);
}

TEST_F(PluginWindow, EscapeStopsARunButDoesNotCloseIt) {
    PluginScript& script = launchScripted();
    prepare(1, Phase::Recording);
    QTest::keyClick(&dialog(), Qt::Key_Escape);
    EXPECT_EQ(script.alive, 1);
    runOver();
    QTest::keyClick(&dialog(), Qt::Key_Escape);
    EXPECT_EQ(script.alive, 0);
}

TEST_F(PluginWindow, TheEndOfTheProgramClosesThePlugin) {
    PluginScript& script = launchScripted();
    EXPECT_TRUE(window_->session().pluginMaps.registerMaps(2));
    prepare(1);
    runOver();
    VeloCortivo* window = window_.get();
    script.on["destructor"] = [window] {
        window->plugins().log("from its destructor");
        EXPECT_EQ(programAccess(), window);
        return true;
    };
    window_.reset();
    EXPECT_EQ(script.alive, 0);
    EXPECT_EQ(script.calls.back(), "destructor");
}

// As a signal to end does it, while the plug-in waits in a dialog.
TEST_F(PluginWindow, TheEndOfTheProgramMayComeInAnyCall) {
    for (const char* operation : {"initPlugin", "executeAtLaunch", "destructor"}) {
        PluginScript& script = scriptOf(addPlugin(folders_.pluginsPath, "scripted"));
        int rejected = 0;
        script.on = {{operation, [&] {
                          QDialog box(window_.get());
                          QObject::connect(&box, &QDialog::rejected, [&] { ++rejected; });
                          QTimer::singleShot(0, [this] { window_->endProgramOrderly(); });
                          box.exec();
                          EXPECT_EQ(script.alive, 1) << operation;
                          return true;
                      }}};
        window_->show();
        entries("&Plugins").at(1)->trigger();
        if (auto* dialog = window_->findChild<PluginDlg*>("PluginDlg"))
            dialog->close();
        EXPECT_EQ(rejected, 1) << operation;
        EXPECT_FALSE(window_->isVisible()) << operation;
        EXPECT_EQ(script.alive, 0) << operation;
        script.on.clear();
        QDir(folders_.pluginsPath).removeRecursively();
    }
}

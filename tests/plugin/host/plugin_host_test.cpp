// Plug-ins in whole runs: when they are called, how they end, and that no run suffers from one.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/dialog_setup.h"
#include "plugin/host/fixtures.h"
#include "plugin/host/plugin_dialog.h"
#include "plugin/host/plugin_host.h"
#include "run/loop/session_fixture.h"

#include <QLabel>
#include <QTextEdit>
#include <dlfcn.h>
#include <stdexcept>

class PluginHostTest : public SessionFixture {
protected:
    PluginHostTest() {
        writeSession(volumes, 0);
        window.setGeometry(20, 50, 100, 480);
        window.show();
    }

    /// Launches the only plug-in of the folder.
    void launch() {
        EXPECT_EQ(host.discover().plugins.size(), 1u);
        host.launch(0);
    }
    /// Puts the plug-in "Scripted" into the folder.
    PluginScript& addScripted() { return scriptOf(addPlugin(host.pluginFolder(), "scripted")); }
    PluginDlg* dialog() { return window.findChild<PluginDlg*>("PluginDlg"); }
    QString loggedLines() { return dialog()->findChild<QTextEdit*>("LogTxt")->toPlainText(); }
    QLabel& timesLabel() { return *dialog()->findChild<QLabel*>("TimesLbl"); }
    int nrOfMaps() { return session.requests.pluginMaps.count(); }
    /// Runs and looks at what was saved.
    void expectWholeRun(const std::string& trace) {
        SCOPED_TRACE(trace);
        runAgain();
        EXPECT_TRUE(session.report.savedCompletely);
        EXPECT_EQ(session.report.currentVolume, volumes - 1);
        EXPECT_EQ(volumesIn("results"), volumes);
    }
    void expectClosed(const PluginScript& plugin, const std::string& trace) {
        EXPECT_EQ(plugin.alive, 0) << trace;
        EXPECT_FALSE(host.isRunning()) << trace;
        EXPECT_EQ(host.activePath(), "") << trace;
        EXPECT_EQ(dialog(), nullptr) << trace;
        EXPECT_EQ(nrOfMaps(), 0) << trace;
    }

    static constexpr int volumes = 6;
    QWidget window;
    PluginHost host{{session, pump, display, path("plugins/"), "/data", window}};
};

TEST_F(PluginHostTest, CallsItInItsPlacesOfARun) {
    PluginScript& plugin = addScripted();
    ProbeListener probe(session.listeners, ListenerPlace::Plots);
    probe.watched = [](int volume) { return volume == 1; };
    const auto note = [&](const char* what, bool active) {
        return [this, &probe, what, active] {
            EXPECT_EQ(session.phase.runActive(), active);
            if (session.report.currentVolume == 1 || !active)
                probe.hooks << what;
            return true;
        };
    };
    plugin.on = {{"executeBeforeVolume", note("BEFORE", true)},
                 {"executeAfterVolume", note("AFTER", true)},
                 {"executeAfterRun", note("RUN", false)}};
    launch();
    EXPECT_EQ(dialog()->windowTitle(), "Scripted");
    EXPECT_EQ(dialog()->pos(), window.frameGeometry().bottomRight() + QPoint(1, 1) -
                                   QPoint(0, 400 + windowFrame.height()));
    EXPECT_EQ(host.activePath(), host.pluginFolder() + "scripted.so");
    EXPECT_TRUE(host.menuRows().empty());
    probe.hooks.clear();
    expectWholeRun("with a plug-in");
    EXPECT_EQ(probe.hooks.join(" ").toStdString(),
              "leaving arrived prepared before BEFORE 0 1 2 3 4 subject 5 6 AFTER 7 end over RUN");
    EXPECT_EQ(plugin.calls.size(), size_t(2 + 2 * volumes + 1));
    EXPECT_EQ(plugin.calls[1], "executeAtLaunch");

    {
        const PhaseScope cannotBegin(session.phase, Phase::Recording);
        session.listeners.loopEnded(*session.functionalDocument);
    }
    EXPECT_EQ(plugin.calls.size(), size_t(2 + 2 * volumes + 1)) << "a run that did not begin";

    // It stays for the next run, and until its window is closed.
    expectWholeRun("second run");
    EXPECT_EQ(plugin.calls.size(), size_t(2 + 2 * (2 * volumes + 1)));
    host.close();
    expectClosed(plugin, "closed");
    EXPECT_FALSE(host.menuRows().empty());
}

TEST_F(PluginHostTest, SaysWhyItCouldNotLaunch) {
    const QString damaged = "The class of its object lacks operations of the plug-in interface.";
    const std::pair<const char*, QString> rows[] = {
        {"data_for_functions", ""},
        {"null_object", "createPlugin() gave no object."},
        {"stray_object", "The object of createPlugin() is not a plug-in."},
        {"throwing_create", "createPlugin: no device"},
        {"missing_slots", damaged},
        {"scripted", "The file is cut short."}};
    for (const auto& [name, reason] : rows) {
        QDir(host.pluginFolder()).removeRecursively();
        const QString file = addPlugin(host.pluginFolder(), name);
        EXPECT_EQ(host.discover().plugins.size(), 1u) << name;
        EXPECT_TRUE(!reason.contains("cut") || QFile::resize(file, 5000));
        messages.expectWarning("Could not launch plugin \"" + file + "\"." +
                               (reason.isEmpty() ? "" : "\n\n" + reason));
        EXPECT_TRUE(session.pluginMaps.registerMaps(1)) << "as its createPlugin() may do";
        host.launch(0);
        EXPECT_EQ(nrOfMaps(), 0) << name;
        EXPECT_EQ(host.activePath(), "") << name;
        EXPECT_EQ(dialog(), nullptr) << name;
    }
    host.launch(1);
    host.launch(-1);
}

TEST_F(PluginHostTest, OneThatGivesFalseIsDeleted) {
    PluginScript& plugin = addScripted();
    const auto refuse = [this] {
        EXPECT_TRUE(session.pluginMaps.registerMaps(2));
        return false;
    };
    plugin.on = {{"initPlugin", refuse}};
    launch();
    expectClosed(plugin, "initPlugin");

    plugin.on = {{"executeAtLaunch", refuse}};
    launch();
    EXPECT_EQ(plugin.alive, 0);
    EXPECT_FALSE(host.isRunning());
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(nrOfMaps(), 0);
    EXPECT_TRUE(display.logTexts.last().contains("\"<b>Scripted</b>\" has ended at its launch"));
    EXPECT_NE(host.activePath(), "") << "no other can be launched";
    EXPECT_TRUE(host.menuRows().empty());
    EXPECT_TRUE(host.discover().plugins.empty());
    plugin.calls.clear();
    expectWholeRun("without a plug-in");
    EXPECT_TRUE(plugin.calls.empty());
}

TEST_F(PluginHostTest, AnExceptionClosesItAndTheRunGoesOn) {
    PluginScript& plugin = addScripted();
    const auto throwError = []() -> bool { throw std::runtime_error("no <device>"); };
    const auto throwNumber = []() -> bool { throw 5; };
    const std::pair<std::string, bool> operations[] = {{"initPlugin", false},
                                                       {"executeAtLaunch", false},
                                                       {"executeBeforeVolume", true},
                                                       {"executeAfterVolume", true},
                                                       {"executeAfterRun", true}};
    for (const auto& [operation, inRun] : operations)
        for (const bool isError : {true, false}) {
            plugin.calls.clear();
            plugin.on = {{operation, isError ? std::function<bool()>(throwError) : throwNumber}};
            if (operation != "initPlugin")
                plugin.on["initPlugin"] = [this] { return session.pluginMaps.registerMaps(1); };
            messages.expectWarning(
                QStringLiteral("WARNING: The plug-in \"Scripted\" failed in %1: %2\n\nIt was "
                               "closed.%3")
                    .arg(QString::fromStdString(operation),
                         isError ? "no <device>" : "an exception of unknown type",
                         inRun ? " The run goes on." : ""));
            launch();
            expectWholeRun(operation);
            expectClosed(plugin, operation);
            EXPECT_EQ(std::ranges::count(plugin.calls, operation), 1);
            EXPECT_EQ(plugin.calls.back(), "destructor");
        }
    EXPECT_EQ(messages.shownModeless().filter("Scripted").size(), 10);
}

TEST_F(PluginHostTest, ItsWindowMayBeClosedAtAnyTime) {
    PluginScript& plugin = addScripted();
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"closed", [this] { dialog()->close(); }},
        {"hidden", [this] { dialog()->hide(); }},
        {"deleted", [this] { delete dialog(); }},
        {"closed by the program", [this] { host.close(); }}};
    for (const auto& [way, leave] : ways)
        for (const std::string place : {"idle", "between", "executeAtLaunch", "executeBeforeVolume",
                                        "executeAfterVolume", "executeAfterRun"}) {
            const std::string trace = std::string(way) + ", " + place;
            plugin.calls.clear();
            plugin.on = {{"initPlugin", [this] { return session.pluginMaps.registerMaps(1); }}};
            plugin.on[place] = [&] {
                if (place.ends_with("Volume") && session.report.currentVolume < 2)
                    return true;
                leave();
                host.log("nobody reads this");
                EXPECT_EQ(dialog(), nullptr) << trace;
                EXPECT_EQ(plugin.alive, 1) << trace;
                EXPECT_TRUE(host.menuRows().empty()) << "not before it is gone; " << trace;
                return true;
            };
            launch();
            if (place == "idle")
                leave();
            script.atVolume = [&](int volume) {
                if (volume == 2 && place == "between")
                    leave();
            };
            expectWholeRun(trace);
            expectClosed(plugin, trace);
            const bool inLoop = place == "between" || place.ends_with("Volume");
            EXPECT_EQ(std::ranges::count(plugin.calls, "executeBeforeVolume"),
                      place == "between"           ? 2
                      : inLoop                     ? 3
                      : place == "executeAfterRun" ? volumes
                                                   : 0)
                << trace;
        }
}

TEST_F(PluginHostTest, ARunThatIsStoppedInACallIsSaved) {
    PluginScript& plugin = addScripted();
    const std::function<void()> stop = [this] { session.runButtonPressed(); };
    // As a signal to end does: open dialogs are cancelled, and nothing is waited for any more.
    const std::function<void()> endProgram = [this] {
        pump.giveUpWaiting();
        dialog()->close();
        session.requestStop();
    };
    messages.acceptAnything();
    launch();
    for (const auto& [end, place] : {std::pair(stop, "executeBeforeVolume"),
                                     {stop, "executeAfterVolume"},
                                     {endProgram, "executeAfterVolume"}}) {
        plugin.calls.clear();
        plugin.on = {{place, [&, &end = end] {
                          if (session.report.currentVolume == 2)
                              end();
                          return true;
                      }}};
        runAgain();
        EXPECT_EQ(volumesIn("results"), 3);
        EXPECT_TRUE(session.report.savedCompletely);
        EXPECT_EQ(std::ranges::count(plugin.calls, "executeBeforeVolume"), 3);
        EXPECT_EQ(plugin.calls.back(), pump.waitsGivenUp() ? "destructor" : "executeAfterRun");
    }
    expectClosed(plugin, "the program ends");
}

TEST_F(PluginHostTest, IsCalledWhereverVolumesAreAnalysedAnew) {
    PluginScript& plugin = addScripted();
    const QString journal = recordJournal();
    launch();
    for (const auto& [purpose, folder] :
         {std::pair(PlayPurpose::Replay, path("again/")), {PlayPurpose::Recover, QString()}}) {
        plugin.calls.clear();
        EXPECT_TRUE(session.playJournal({journal, {}, folder, false}, purpose));
        EXPECT_EQ(plugin.calls.size(), size_t(2 * volumes + 1));
    }
    plugin.calls.clear();
    Reporter reporter;
    EXPECT_TRUE(session.reloadData());
    EXPECT_TRUE(postprocess(reporter));
    EXPECT_TRUE(plugin.calls.empty());
    session.changeSettingsFile(path("other.vco"));
    EXPECT_TRUE(host.isRunning());
}

TEST_F(PluginHostTest, NoCallIsMadeWhileAnotherWaits) {
    PluginScript& plugin = addScripted();
    plugin.on["initPlugin"] = [this] { return host.menuRows().empty(); };
    plugin.on["executeAtLaunch"] = [this] {
        // As in a dialog, while the timer starts the next run.
        EXPECT_TRUE(host.menuRows().empty());
        host.launch(0);
        expectWholeRun("while it is launched");
        return true;
    };
    launch();
    EXPECT_EQ(plugin.calls, (std::vector<std::string>{"initPlugin", "executeAtLaunch"}));
    EXPECT_TRUE(host.isRunning());
    EXPECT_EQ(session.report.times.pluginTime, -1);
    expectWholeRun("when it is launched");
    EXPECT_EQ(plugin.calls.size(), size_t(2 + 2 * volumes + 1));
}

TEST_F(PluginHostTest, ShowsItsTimesAndNamesOneThatIsSlow) {
    PluginScript& plugin = addScripted();
    runAgain();
    EXPECT_TRUE(display.logTexts.filter("PluginTime").isEmpty());
    const auto take = [this](int milliseconds) {
        pump.pumpWait(milliseconds);
        return true;
    };
    int before = 100;
    plugin.on["executeBeforeVolume"] = [&] { return take(before); };
    plugin.on["executeAfterVolume"] = [&] {
        EXPECT_EQ(session.report.times.pluginTime, before) << "so far";
        constexpr int times[volumes] = {20, 900, 901, 12, 1900, 12}; // at a TR of 2 s
        return take(times[session.report.currentVolume]);
    };
    launch();
    QStringList lines;
    QStringList colored;
    ProbeListener probe(session.listeners, ListenerPlace::Dialogs);
    probe.onEndOfVolume = [&](int) {
        lines << timesLabel().text();
        if (timesLabel().palette().color(QPalette::WindowText) !=
            dialog()->palette().color(QPalette::WindowText))
            colored << QString::number(session.report.currentVolume);
    };
    display.logTexts.clear();
    expectWholeRun("slow");
    ASSERT_EQ(lines.size(), volumes);
    EXPECT_EQ(lines[0], "Before volume: 100 ms   After volume: 20 ms   Longest: 120 ms (volume 1)");
    EXPECT_EQ(lines[1],
              "Before volume: 100 ms   After volume: 900 ms   Longest: 1000 ms (volume 2)");
    EXPECT_EQ(lines[2], "Before volume: 100 ms   After volume: 901 ms   Longest: 1001 ms "
                        "(volume 3)   more than half of the TR");
    EXPECT_EQ(lines[5],
              "Before volume: 100 ms   After volume: 12 ms   Longest: 2000 ms (volume 5)");
    EXPECT_EQ(colored.join(' '), "2 4");
    EXPECT_EQ(loggedLines(), "The plug-in took 1001 ms at volume 3, more than half of the TR.");
    const QStringList status = display.logTexts.filter("PluginTime");
    // Volume 5 needs as long as the TR, which is said when it is done, in a text of its own.
    ASSERT_EQ(status.size(), volumes + 1);
    EXPECT_TRUE(status[1].endsWith("<br>PluginTime: <b>1000</b> ms</body>"));
    EXPECT_TRUE(status[2].endsWith("<br>PluginTime: <b>1001</b> ms   <b>Scripted took more than "
                                   "half of the TR</b></body>"));
    PluginTimes launchedBetween;
    launchedBetween.after = 5;
    EXPECT_EQ(launchedBetween.ofVolume(), 5);
    // The next run begins anew; one without the plug-in has no such line.
    before = 0;
    expectWholeRun("second run");
    EXPECT_EQ(lines[volumes],
              "Before volume: 0 ms   After volume: 20 ms   Longest: 20 ms (volume 1)");
    EXPECT_EQ(loggedLines().count("half of the TR"), 2);
    host.close();
    display.logTexts.clear();
    probe.onEndOfVolume = [](int) {};
    expectWholeRun("without");
    EXPECT_TRUE(display.logTexts.filter("PluginTime").isEmpty());
}

TEST_F(PluginHostTest, MayRegisterMapsWhenAndAsManyAsItLikes) {
    PluginScript& plugin = addScripted();
    const auto fillMaps = [this] {
        std::ranges::fill(session.functionalDocument->pluginMaps.PluginMaps.span(), 7.5f);
        return true;
    };
    plugin.on = {{"executeBeforeVolume",
                  [this] {
                      EXPECT_TRUE(session.report.currentVolume != 2 ||
                                  session.pluginMaps.registerMaps(1000));
                      session.pluginMaps.show(true);
                      return true;
                  }},
                 {"executeAfterVolume", fillMaps},
                 {"executeAfterRun", fillMaps}};
    launch();
    expectWholeRun("registered too late");
    EXPECT_EQ(session.functionalDocument->pluginMaps.NrOfPluginMaps, 0);
    expectWholeRun("registered before");
    EXPECT_EQ(session.functionalDocument->pluginMaps.NrOfPluginMaps, 1000);
    EXPECT_EQ(session.functionalDocument->pluginMaps.map(999).back(), 7.5f);

    EXPECT_TRUE(session.pluginMaps.registerMaps(std::numeric_limits<int>::max()));
    messages.expectWarning("ERROR: The plug-in has registered 2147483647 maps*");
    runAgain();
    EXPECT_TRUE(session.report.startFailed);
    host.close();
    expectWholeRun("closed");
}

TEST_F(PluginHostTest, CodeOfAnEndedPluginStaysUntilTheSessionIsIdle) {
    const QByteArray file = QFile::encodeName(addPlugin(host.pluginFolder(), "null_object"));
    const auto isOpen = [&] {
        void* library = ::dlopen(file.constData(), RTLD_LAZY | RTLD_NOLOAD);
        return library && ::dlclose(library) == 0;
    };
    messages.acceptAnything();
    launch();
    EXPECT_TRUE(isOpen());
    {
        const PhaseScope recording(session.phase, Phase::Recording);
        EXPECT_EQ(host.menuRows().size(), 2u);
        EXPECT_TRUE(isOpen());
    }
    EXPECT_EQ(host.menuRows().size(), 2u);
    EXPECT_FALSE(isOpen());
}

TEST_F(PluginHostTest, ChoosersStartWhereTheLastOneEnded) {
    session.settings.TargetFolder.clear();
    EXPECT_EQ(host.lastUsedFolder(), "/data/");
    session.settings.TargetFolder = "/target/";
    EXPECT_EQ(host.lastUsedFolder(), "/target/");
    host.setLastUsedFolder("/used");
    EXPECT_EQ(host.lastUsedFolder(), "/used/");
}

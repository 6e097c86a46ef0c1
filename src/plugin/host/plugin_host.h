// The host of plug-ins: the menu, the one plug-in that runs, and its calls during a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "plugin/host/guarded_plugin.h"
#include "plugin/host/plugin_catalogue.h"
#include "plugin/host/plugin_library.h"
#include "plugin/host/plugin_menu.h"
#include "plugin/host/plugin_times.h"
#include "run/loop/run_listeners.h"

#include <QPointer>
#include <QString>
#include <memory>
#include <vector>

class PluginDlg;
class QWidget;
class RunDisplay;
class RunSession;

/// Runs at most one plug-in at a time, until its window is closed. A plug-in that is closed while
/// one of its calls waits in a dialog is deleted when that call returns.
class PluginHost : public RunListener {
public:
    struct Parts {
        RunSession& session;
        EventPump& pump;
        RunDisplay& display;
        QString pluginFolder; ///< with "/" at the end, as the next one
        QString dataFolder;   ///< where choosers start as long as no settings file is current
        QWidget& window;      ///< the window of a plug-in stands beside it
    };

    explicit PluginHost(const Parts& parts);
    ~PluginHost() override;

    [[nodiscard]] const QString& pluginFolder() const { return parts_.pluginFolder; }
    /// Path of the library of the plug-in that runs; also of one whose executeAtLaunch() gave
    /// false, after which no other can be launched. Empty for none.
    [[nodiscard]] const QString& activePath() const { return activePath_; }
    /// A plug-in object exists and is called.
    [[nodiscard]] bool isRunning() const { return plugin_ != nullptr; }

    /// Name of the plug-in whose executeAtLaunch() gave false; empty for none.
    [[nodiscard]] const QString& endedAtLaunch() const { return endedAtLaunch_; }

    /// What can be launched now, read anew from the folder; nothing while a plug-in is active or
    /// about to be. In an idle session the libraries of plug-ins that have ended are closed first.
    const PluginCatalogue& discover();
    /// The menu of what discover() finds.
    [[nodiscard]] std::vector<PluginMenuRow> menuRows();
    /// Launches a plug-in of the latest catalogue. A message says when there is nothing to launch.
    /// Does nothing while a plug-in is active.
    void launch(int index);
    /// Closes the plug-in's window and with it the plug-in.
    void close();

    /// A line in the window of the plug-in; ignored without one.
    void log(const QString& text);

    /// Where file dialogs of plug-ins start, with "/" at the end: the folder that was used last,
    /// else the target folder of the settings, else the data folder.
    [[nodiscard]] QString lastUsedFolder() const;
    void setLastUsedFolder(const QString& folder);

    void runPrepared(QtCortivoDoc& functional) override;
    [[nodiscard]] bool beforeVolume(const VolumeAtHand& hand) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;

private:
    using Operation = void (GuardedPlugin::*)();

    [[nodiscard]] bool isBusy() const { return launching_ || !activePath_.isEmpty(); }
    [[nodiscard]] bool createObject();
    void start();
    void openWindow();
    void endAtLaunch();
    void windowClosed();
    void deletePlugin();
    /// Milliseconds of the call; nothing when none was made.
    std::optional<qint64> call(Operation operation);
    void endCall();
    void tellFault();
    void reportTime(const VolumeAtHand& hand);
    void showTimes(const VolumeAtHand& hand);

    Parts parts_;
    PluginCatalogue catalogue_;
    PluginDescription description_; ///< of the active plug-in
    QString activePath_;
    QPointer<PluginDlg> dialog_;
    /// Of plug-ins that ran, so that no code of theirs goes away in a run.
    std::vector<std::unique_ptr<PluginLibrary>> libraries_;
    std::unique_ptr<GuardedPlugin> plugin_;
    PluginTimes times_;
    QString lastUsedFolder_;
    QString endedAtLaunch_;
    bool launching_ = false;
    bool closing_ = false; ///< the window was closed while a call was on the stack
};

// The host of plug-ins: the menu, the one plug-in that runs, and its calls during a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "plugin/host/guarded_plugin.h"
#include "plugin/host/plugin_catalogue.h"
#include "run/loop/run_listeners.h"

#include <QPointer>
#include <QString>
#include <memory>

class PluginDlg;
class QWidget;
class RunSession;

/// Runs at most one plug-in at a time, until its window is closed. A plug-in that is closed while
/// one of its calls waits in a dialog is deleted when that call returns.
class PluginHost : public RunListener {
public:
    struct Parts {
        RunSession& session;
        EventPump& pump;
        QString pluginFolder; ///< with "/" at the end
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

    /// What can be launched now, read anew from the folder; nothing while a plug-in is active.
    const PluginCatalogue& discover();
    /// Launches a plug-in of the latest catalogue. A message says when there is nothing to launch.
    void launch(int index);
    /// Closes the plug-in's window and with it the plug-in.
    void close();

    /// A line in the window of the plug-in; ignored without one.
    void log(const QString& text);

    /// Where file dialogs of plug-ins start, with "/" at the end.
    [[nodiscard]] const QString& lastUsedFolder() const { return lastUsedFolder_; }
    void setLastUsedFolder(const QString& folder);

    [[nodiscard]] bool beforeVolume(const VolumeAtHand& hand) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;

private:
    Parts parts_;
    PluginCatalogue catalogue_;
    QString activePath_;
    QPointer<PluginDlg> dialog_;
    std::unique_ptr<GuardedPlugin> plugin_;
    QString lastUsedFolder_;
};

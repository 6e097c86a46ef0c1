// What a run shows while it goes on. The window implements it; a test collects what it is told.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"

#include <QString>
#include <memory>

enum class RunButtonState { NoSettingsFile = 0, Ready = 1, Finished = 2, Running = 3 };

class RunDisplay {
public:
    virtual ~RunDisplay() = default;

    /// A run begins: the timer stops, the running icon shows, the buttons for the neighbouring
    /// recordings, for reloading and pre-loading are disabled.
    virtual void runStarting() = 0;
    /// The documents are about to be replaced: dialogs let go of them, views are deleted, plots
    /// hidden, the contrast list cleared.
    virtual void documentsLeaving() = 0;
    /// New documents exist: views are made.
    virtual void documentsArrived() = 0;
    /// The run is prepared: the views are drawn and shown, the contrast list is filled, the view
    /// buttons and controls refreshed.
    virtual void runPrepared() = 0;
    /// Preparation failed; only the run button works from here on.
    virtual void preparationFailed() = 0;
    /// After the whole run, saving included: buttons enabled, the timer restarted.
    virtual void runEnded() = 0;

    virtual void setRunButtonState(RunButtonState state) = 0;
    /// HTML text for the panel LogInfos.
    virtual void showLogText(const QString& html) = 0;
    virtual void refreshViewButtons() = 0;
    /// Repaints the visible view: slices, maps, both.
    virtual void updateViews() = 0;
    /// The box that shows how far saving has come; it closes when it is deleted. The busy cursor is
    /// on as long.
    [[nodiscard]] virtual std::unique_ptr<ProgressReporter> openSavingProgress() = 0;
};

// What a run shows while it goes on. The window implements it; a test collects what it is told.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"

#include <QString>
#include <memory>

/// As long as the button shows NoSettingsFile it starts no run. It also has this state from the end
/// of a run to the next look at the settings file, so that no run is started twice.
enum class RunButtonState { NoSettingsFile = 0, Ready = 1, Finished = 2, Running = 3 };

class RunDisplay {
public:
    virtual ~RunDisplay() = default;

    /// The session has left its idle phase: the controls for choosing, reloading and pre-loading go
    /// off, and so does the timer.
    virtual void workStarting() = 0;
    /// The session is idle again. Controls and timer stay off when the start of a run has failed:
    /// only the run button works from there on.
    virtual void workEnded() = 0;

    virtual void setRunButtonState(RunButtonState state) = 0;
    /// HTML text for the panel LogInfos.
    virtual void showLogText(const QString& html) = 0;
    virtual void refreshViewButtons() = 0;
    /// The visible view shows the present state from its next painting on, which comes with the
    /// events; only then are its slices and maps composed.
    virtual void updateViews() = 0;
    /// The box that shows how far saving has come; it closes when it is deleted. The busy cursor is
    /// on as long.
    [[nodiscard]] virtual std::unique_ptr<ProgressReporter> openSavingProgress() = 0;
    /// The same for the fit of a model, which can be cancelled. Each report processes events.
    [[nodiscard]] virtual std::unique_ptr<ProgressReporter>
    openModelProgress(const QString& text) = 0;
    /// The same for the long work of a dialog.
    [[nodiscard]] virtual std::unique_ptr<ProgressReporter>
    openAnalysisProgress(const QString& text) = 0;
};

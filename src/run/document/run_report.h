// Progress, timing and outcome of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <QString>
#include <algorithm>

/// Durations of one cycle, in milliseconds.
struct CycleTimes {
    qint64 readVolTime = 0;   ///< reading, with the wait for the files
    qint64 feedbackTime = -1; ///< the display of the subject; -1 until one has been drawn
    qint64 fullVolTime = 0;   ///< since the end of the previous cycle
    qint64 pluginTime = -1;   ///< both calls of the plug-in; -1 when none was made
    qint64 volWaitTime = 0;   ///< left at the start of the forced delay; 0 without one
    /// When the last file of the volume was seen, in milliseconds of the pump's clock; for volumes
    /// that come without files, when they had been read.
    qint64 noticedAt = 0;
};

/// Written by the session and the loop, read by everybody.
struct RunReport {
    /// Index of the last valid volume; -1 before a run. Of a run that was reloaded, and of several
    /// runs, the number of volumes: one more than the last index.
    int currentVolume = -1;
    /// The last valid volume of a run that the operator stopped, or that ended with its journal or
    /// its saved volumes; -1 of others.
    int interruptedAtVolume = -1;
    qint64 elapsedRunTime = 0; ///< milliseconds, set after every volume
    CycleTimes times;
    QString slowPlugin; ///< name of the plug-in when its pluginTime is more than half of the TR
    bool motionCorrectionFailed = false;
    int volumesWithoutMotion = 0; ///< whose motion was not found; of the methods that tell
    bool mapsPresent = false;     ///< there are maps to show
    bool runFinished = false;     ///< the current settings file has been analysed
    bool savedCompletely = true;  ///< the run in memory is on disk, whole
    bool onlyInMemory = false;    ///< neither its results nor its journal are
    /// The latest start failed: only the run button and a newly chosen settings file work.
    bool startFailed = false;
    /// Outcome of the latest run or reload, shown on the panel until something newer happens.
    QString outcomeText;

    /// Resets for a new run, or for none: nothing has been measured. How the latest run or start
    /// ended stays.
    void forgetVolumes() {
        interruptedAtVolume = -1;
        currentVolume = -1;
        elapsedRunTime = 0;
        mapsPresent = false;
        volumesWithoutMotion = 0;
        times = {};
        slowPlugin.clear();
        outcomeText.clear();
    }
};

/// Valid volumes of the run in memory: those in its model and its files. Fewer than planned when
/// the run ended early.
[[nodiscard]] inline int recordedVolumes(const RunReport& report, const FMRProject& project) {
    return std::clamp(report.currentVolume + 1, 0, int(project.volumes.size()));
}

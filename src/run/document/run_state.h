// What many share during a run: one plain struct, owned by the session and passed by reference.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/thresholds.h"

#include <QString>

struct RunState {
    bool runActive = false;
    /// Stops the loop after the volume that is being read. Set by a second press of the run button
    /// and by Escape; cleared by the release of any key and by the loop that it stopped.
    bool interruptFlag = false;
    bool forceTRDelay = false;
    int currentVolume = -1;       ///< last volume index that the loop entered
    int interruptedAtVolume = -1; ///< where the operator stopped the run
    qint64 elapsedRunTime = 0;    ///< milliseconds, set after every volume
    int startOffsetSeconds = 0;   ///< shift of the forced delay
    int overlayVolumeMode = 0;    ///< 0: the slices stay those of the first volume
    bool overlayAfterPreprocessing = true;
    bool overlayReset = false; ///< one-shot request for the first volume's slices
    int pendingOverlayInplane = -1;
    int pendingOverlayVMR = -1;
    int pendingOverlaySRF = -1;
    bool saveRTPs = false;
    bool saveROITimeCourses = false;
    bool saveROIBetaTimeCourses = false;
    bool bestVoxelSelection = false;
    QString preLoadROIFile;
    bool preLoadVOI = false;
    bool motionCorrectionFailed = false;
    OverlayThresholds thresholds; ///< of the maps; those of the settings at each start
    bool mapsPresent = false;     ///< there are maps to show
    bool runFinished = false;     ///< the current settings file has been analysed
    bool savedCompletely = true;  ///< the run in memory is on disk, whole
    int logFontSize = 9;          ///< points
};

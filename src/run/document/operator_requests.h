// The operator's requests, polled by the session and the loop.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_of_interest.h"
#include "run/document/plugin_maps.h"
#include "stats/thresholds.h"

#include <QString>

/// Set by controls and keys at any time, also while the loop processes events.
struct OperatorRequests {
    /// Stops the loop after the current volume. Set by a second press of the run button and by
    /// Escape; cleared by the release of any key and by the loop when it stops.
    bool interruptFlag = false;
    bool forceTRDelay = false;  ///< a replay keeps the pace of the TR
    int startOffsetSeconds = 0; ///< shift of the forced delay

    int overlayVolumeMode = 0; ///< 0: the slices show the first volume
    bool overlayAfterPreprocessing = true;
    bool overlayReset = false;      ///< one-shot request for the first volume's slices
    int pendingOverlayInplane = -1; ///< -1: there are none; 1: shown
    int pendingOverlayVMR = -1;
    int pendingOverlaySRF = -1;
    OverlayThresholds thresholds; ///< of the maps; reset from the settings at each start
    RegisteredPluginMaps pluginMaps;

    bool saveRTPs = false;
    bool saveROITimeCourses = false;
    bool saveROIBetaTimeCourses = false;
    RegionOptions regions;
    QString preLoadROIFile;
    bool preLoadVOI = false;
    /// Takes the place of the anatomy that the settings file names; empty for that one.
    QString loadedAnatomy;
    int logFontSize = 9; ///< points, of the panel

    /// For a second press of the run button: also ends a forced delay.
    void stopRun() {
        interruptFlag = true;
        forceTRDelay = false;
    }
};

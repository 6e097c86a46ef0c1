// The texts of the panel LogInfos while a run goes on and after it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/run_state.h"
#include "run/settings/run_settings.h"
#include "stats/statistical_maps.h"

#include <QString>

/// Durations of one cycle, in milliseconds.
struct CycleTimes {
    qint64 readVolTime = 0;   ///< reading, with the wait for the files
    qint64 feedbackTime = -1; ///< -1 until a feedback window has run
    qint64 fullVolTime = 0;   ///< since the end of the previous cycle
    qint64 volWaitTime = 0;   ///< left at the start of the forced delay; 0 without one
};

/// "<body ...> Current settings file: ... Processing..."
[[nodiscard]] QString processingText(int fontSize, const QString& settingsFileName);

/// The status of one volume.
[[nodiscard]] QString volumeStatusText(const RunState& state, const RunSettings& settings,
                                       const StatisticalMaps& maps, const CycleTimes& times,
                                       int volumeIndex, qint64 runMilliseconds);

/// Head of the texts around saving: where the loop stopped and when.
[[nodiscard]] QString savingTextHead(const RunState& state, const StatisticalMaps& maps,
                                     int volumeIndex, qint64 runMilliseconds);

/// The panel between runs.
[[nodiscard]] QString betweenRunsText(const RunState& state, const StatisticalMaps& maps);

/// While a finished run is loaded from disk, and after that.
[[nodiscard]] QString reloadingText(int fontSize, const QString& settingsFileName,
                                    const QString& projectName);
[[nodiscard]] QString reloadedText(const QString& settingsFileName, const QString& projectName);

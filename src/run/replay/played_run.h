// What a journal and a saved run have in common when they are played through preparation and loop.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_source.h"

struct PlayOptions {
    QString path;         ///< of the journal (.vcj) or of the project (.fmr)
    QString settingsFile; ///< other settings than those of the run; empty: its own
    QString targetFolder; ///< where the results go; empty: where the run's were to go
    bool atTR = false;    ///< else as fast as it goes
};

/// Reads `settings.settingsFilePath` for playing. In a run wrong keys end the program; here a file
/// that can't be used is only told, and false.
[[nodiscard]] bool readSettingsForPlaying(RunSettings& settings,
                                          const std::function<void()>& stopTimer);

/// A folder as it was typed, with "/" at its end.
[[nodiscard]] QString typedFolder(const QString& text);

/// Why results can't go into a folder, for the operator; empty when they can. It is created if need
/// be.
[[nodiscard]] QString resultsFolderFault(const QString& folder);

/// Why the results of a replay can't go into a folder, for the operator: that of the run itself
/// keeps what the run gave. Empty when they can.
[[nodiscard]] QString replayFolderFault(const QString& results, const QString& ofTheRun);

/// Whether TR and skipped volumes are those of a run, as a settings file may state them: 1 ms to an
/// hour, 0 to 1000000. Nothing else is asked of a header that was read.
[[nodiscard]] bool hasTimesOfARun(const FMRHeader& header);

/// What becomes of a folder for the feedback outside the run's target folder when the results go
/// into another one. Programs that poll it must not take a replay for a measurement, but go on to
/// poll for a run that goes on. One inside moves with the results.
enum class OutsideFeedback { IntoResults, Stays };

/// Nothing is waited for, and nobody is asked: the run has been measured. Creates the folder of the
/// results; false, after a message, when that fails.
[[nodiscard]] bool prepareForPlaying(RunSettings& settings, const PlayOptions& options,
                                     OutsideFeedback outsideFeedback);

/// What the scanner said about the volumes; what the settings say about the run stays.
void restoreHeader(FMRProject& project, const FMRHeader& recorded);

/// False, after a message that names `path`, when the settings describe other sizes.
[[nodiscard]] bool sizesAgree(const RunSettings& settings, const FMRHeader& recorded,
                              const QString& path);

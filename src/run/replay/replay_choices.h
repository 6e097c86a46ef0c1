// Which runs can be replayed and how, and the texts about them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/replay/played_run.h"

/// `settings` with what the current settings file says now: after a replay they are those of the
/// replay. A file that can't be read changes nothing, or what it says up to there.
[[nodiscard]] RunSettings settingsOfCurrentFile(RunSettings settings);

/// Path of the saved run of these settings; empty when there is none.
[[nodiscard]] QString projectOf(const RunSettings& settings);

/// A run that the operator has chosen.
struct ReplayableRun {
    QString path;   ///< of the journal (.vcj) or of the project (.fmr)
    QString fault;  ///< why it can't be replayed, for the operator; the rest is unset then
    QString name;   ///< of its project
    QString folder; ///< of its results
    bool keepsSettings = false; ///< a journal holds the settings
    QString settingsFile;       ///< of the run, where it doesn't hold them; empty when unknown
    int nrOfVolumes = 0;
    double TR = 0.0; ///< milliseconds
};

/// Looks into the file, and shows nothing. A project doesn't say which settings file it is of:
/// that is known of the project of `current`, the settings that are current now.
[[nodiscard]] ReplayableRun describeReplayableRun(const QString& path, const RunSettings& current);

/// `replay/` in the folder of the run.
[[nodiscard]] QString proposedReplayFolder(const QString& run);

struct ReplayChoices {
    bool ownSettings = true;
    QString settingsFile; ///< otherwise
    QString targetFolder;
    bool atTR = true;
};

enum class ReplayChoice { None, Run, Settings, Folder };

struct ReplayFault {
    ReplayChoice choice = ReplayChoice::None;
    QString text; ///< empty with None
};

/// The first choice that is missing or can't work.
[[nodiscard]] ReplayFault findReplayFault(const ReplayableRun& run, const ReplayChoices& choices);

/// What will happen, for choices without a fault.
[[nodiscard]] QString replayText(const ReplayableRun& run, const ReplayChoices& choices);

[[nodiscard]] PlayOptions replayOptions(const ReplayableRun& run, const ReplayChoices& choices);

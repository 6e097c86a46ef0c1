// The once-a-second look at the settings files of a session: what is there, and what to do next.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>

/// Tells whether a path is there. A test answers from a list.
using FileTest = std::function<bool(const QString& path)>;

/// The name of the neighbouring recording: `<base>-<number + step>.vco`. Empty when the name holds
/// no "-" with a number behind it, or when the neighbour's number would be negative.
[[nodiscard]] QString neighbourName(const QString& settingsFileName, int step);

/// The name of the recording with this number in the session of `settingsFileName`; empty when
/// that name lacks the "-" or the ".".
[[nodiscard]] QString recordingName(const QString& settingsFileName, int number);

/// The highest n such that the recordings 1 to n all exist in `folder` (with "/" at the end). Names
/// are tested one by one: a folder that a scanner fills can be too large to list. 0 for a name
/// without "-" or ".".
[[nodiscard]] int countRecordings(const QString& folder, const QString& settingsFileName,
                                  const FileTest& isFile);

/// What one look at the settings files starts from.
struct WatchState {
    QString settingsDirectory; ///< with "/" at the end
    QString settingsFileName;
    bool autoAdvanceRun = false;
    bool autoStartRun = false;
    bool autoStartPending = false; ///< auto-advance has just moved on to a new file
    bool runFinished = false;      ///< the current settings file has been analysed
    int highestRunNumber = -1;     ///< highest numbered settings file seen; -1 unknown
};

enum class WatchAction {
    FolderMissing, ///< ask the operator for another one
    Wait,          ///< the settings file isn't there
    StartRun,      ///< and look no further: the start takes a whole run
    Offer,         ///< the run button starts it
    ShowFinished,  ///< the file has been analysed
};

struct WatchOutcome {
    WatchAction action = WatchAction::FolderMissing;
    bool previousExists = false; ///< ToBeginBtn
    bool nextExists = false;     ///< ToEndBtn
    int highestRunNumber = -1;   ///< to be kept for the next look
    /// Auto-advance: the settings file to take now, in the current folder. Its run is then pending,
    /// and highestRunNumber stays as given here, so that no number is skipped when several files
    /// have appeared.
    std::optional<QString> advanceTo;
};

[[nodiscard]] WatchOutcome lookAtSession(const WatchState& state, const FileTest& isFolder,
                                         const FileTest& isFile);

/// Texts of the panel; `fontSize` in points.
[[nodiscard]] QString offerText(int fontSize, const QString& settingsFileName);
[[nodiscard]] QString finishedText(int fontSize, const QString& settingsFileName,
                                   const QString& title, bool savedCompletely);
[[nodiscard]] QString waitingText(int fontSize, const QString& settingsFileName);

/// What the operator is told when a neighbour can't be named; empty when it can.
[[nodiscard]] QString recordingNameFault(const QString& settingsFileName);

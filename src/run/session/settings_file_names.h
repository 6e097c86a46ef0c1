// Names of a session's settings files, laid out as `<base>-<number>.vco`, numbered from 1.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

/// Tells whether a path is there. A test answers from a list.
using FileTest = std::function<bool(const QString& path)>;

/// The name of the neighbouring recording: `<base>-<number + step>.vco`. Empty when the name holds
/// no "-" with a number behind it, or when the neighbour's number would be negative.
[[nodiscard]] QString neighbourName(const QString& settingsFileName, int step);

/// What the operator is told when a neighbour can't be named; empty when it can.
[[nodiscard]] QString recordingNameFault(const QString& settingsFileName);

/// The name of the recording with this number in the session of `settingsFileName`; empty when
/// that name lacks the "-" or the ".".
[[nodiscard]] QString recordingName(const QString& settingsFileName, int number);

/// The highest n such that the recordings 1 to n all exist in `folder` (with "/" at the end). Names
/// are tested one by one: a folder that a scanner fills can be too large to list. 0 for a name
/// without "-" or ".".
[[nodiscard]] int countRecordings(const QString& folder, const QString& settingsFileName,
                                  const FileTest& isFile);

// The sample session and the sample message, which come with the program.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Writes those files of the sample session that the folder lacks. Files that are there are the
/// user's and stay. A failure is not reported: the sample is a help, not a need.
void laySampleSession(const QString& folder);

/// The curves of a subject who spells, in this folder, where they are written if they are missing;
/// where that can't be, those inside the program, which nothing can be written beside.
[[nodiscard]] QString sampleMessagePath(const QString& folder);
/// Whether a file is this message, in the folder or inside the program.
[[nodiscard]] bool isSampleMessage(const QString& path, const QString& folder);
/// Whether a file lies inside the program.
[[nodiscard]] bool isInsideProgram(const QString& path);

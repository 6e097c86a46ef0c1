// The sample session that a first start begins with.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Lays the files of the sample session into `folder` (with "/" at the end), which is made where it
/// is missing. Files that are there already are the user's and stay. A failure is not reported: the
/// program then waits for a settings file as it does in any folder.
void laySampleSession(const QString& folder);

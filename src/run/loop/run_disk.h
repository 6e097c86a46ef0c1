// How much room a run needs on the disk of its target folder.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

/// Bytes: the journal and the results take what the samples take, each. The logs are small.
[[nodiscard]] size_t diskBytesOfRun(const FMRProject& project);

/// Warns when the target folder has less room than that for a run that is about to start. It can
/// start all the same: it stays in memory until there is room, and where the journal has to end,
/// that is told.
void tellOfDiskWithoutRoom(const FMRProject& project, const QString& targetFolder);

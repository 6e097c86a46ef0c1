// How much room a run needs on the disk of its target folder.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

/// Warns when the target folder has less room than the journal and the results of a run take that
/// is about to be measured. It can start all the same: it stays in memory until there is room, and
/// where the journal has to end, that is told. A folder that isn't there is not looked at.
void tellOfDiskWithoutRoom(const FMRProject& project, const QString& targetFolder);

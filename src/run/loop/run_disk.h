// How much room a run needs on the disk of its target folder.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

/// Warns when the target folder has too little room for the journal and the results of the coming
/// run. When a run goes on, `bytesOfJournal` are on the disk already. The run can start all the
/// same: its data stay in memory until there is room, and the operator is told if the journal has
/// to end. A missing folder is not checked.
void tellOfDiskWithoutRoom(const FMRProject& project, const QString& targetFolder,
                           qint64 bytesOfJournal);

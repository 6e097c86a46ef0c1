// A copy of the samples of a run, so that changes to them can be undone.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/fmr_project.h"

/// Holds the volumes of the last copy().
class VolumeBackup {
public:
    /// Copies the first volumes of the run. False after a message when memory runs out, and without
    /// one when the work is cancelled meanwhile; the progress stays where it begins.
    [[nodiscard]] bool copy(const FMRProject& project, int nrOfVolumes,
                            const StepProgress& progress);
    /// Writes the kept samples back into the volumes, which stay where they are in memory.
    void restore(FMRProject& project) const;
    /// Gives the memory back.
    void release();

private:
    std::vector<Volume> volumes_;
};

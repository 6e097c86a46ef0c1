// A copy of the samples of a run, so that changes to them can be undone.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/fmr_project.h"

/// Holds the volumes of the last copy().
class VolumeBackup {
public:
    /// Copies the first volumes of the run. False after a message when memory runs out, and without
    /// one when cancelled. Progress stays at the start of its range.
    [[nodiscard]] bool copy(const FMRProject& project, int nrOfVolumes,
                            const StepProgress& progress);
    /// Copies the samples back into the volumes, which keep their addresses.
    void restore(FMRProject& project) const;
    /// Frees the memory.
    void release();

private:
    std::vector<Volume> volumes_;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_glm.h"

bool RunInMemory::loadSlice(int, std::span<const int16_t*>) {
    return false;
}

WholeRunFit fitWholeRunModel(WholeRunModel& model, const WholeRunDesign&, const VolumeSize&,
                             SliceSource&, ProgressReporter&) {
    model.release();
    return WholeRunFit::Failed;
}

void writeDesignText(const WholeRunDesign&, const QString&) {}

bool deriveFromDesign(WholeRunModel&) {
    return false;
}

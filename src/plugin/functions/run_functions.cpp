// The sizes of the run and how far it is.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

int tGetExpectedNrOfTimePoints() {
    const QtCortivoDoc* run = document();
    return run ? run->project.NrOfVolumes : 0;
}

void tGetDimsOfFunctionalData(int* dimX, int* dimY, int* dimZ) {
    const QtCortivoDoc* run = document();
    if (!run)
        return;
    const VolumeSize size = run->project.size();
    give(dimX, size.x);
    give(dimY, size.y);
    give(dimZ, size.slices);
}

int tGetCurrentTimePoint() {
    const QtCortivoDoc* run = document();
    if (!run)
        return -1;
    const int volume = session()->report.currentVolume;
    return volume < run->project.NrOfVolumes ? volume + 1 : run->project.NrOfVolumes;
}

// After a reload the current volume is beyond the end of the table.
int tGetCurrentProtocolCondition() {
    const QtCortivoDoc* run = document();
    if (!run)
        return -1;
    const int volume = session()->report.currentVolume;
    const std::vector<int>& conditions = run->volumeTables.VolumeConditionIndex;
    return isWithin(volume, conditions.size()) ? conditions[size_t(volume)] : -1;
}

// The samples of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

float tGetValueOfVoxelAtTime(int x, int y, int z, int timePoint) {
    const QtCortivoDoc* run = document();
    if (!run || timePoint > currentVolume() || !isWithin(timePoint, run->project.volumes.size()))
        return 0.0f;
    const auto offset = voxelOffset(run->project.size(), x, y, z);
    return offset ? float(run->project.volumes[size_t(timePoint)][*offset]) : 0.0f;
}

short** tGetTimeCourseData() {
    QtCortivoDoc* run = document();
    return run && !run->project.volumes.empty() ? run->project.volumes.table() : nullptr;
}

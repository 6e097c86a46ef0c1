// The maps of the contrasts.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

int tGetNrOfContrasts() {
    const QtCortivoDoc* run = document();
    return run ? run->contrasts.NrOfContrasts : 0;
}

float* tGetContrastMaps() {
    QtCortivoDoc* run = document();
    return run && !run->maps.ContrastMaps.empty() ? run->maps.ContrastMaps.data() : nullptr;
}

float tGetMapValueOfVoxel(int contrast, int x, int y, int z) {
    const QtCortivoDoc* run = document();
    if (!run || !isWithin(contrast, std::min(run->maps.NrOfActiveContrasts, run->maps.nrOfMaps)))
        return 0.0f;
    const auto offset = voxelOffset(run->maps.size, x, y, z);
    return offset ? run->maps.map(contrast)[*offset] : 0.0f;
}

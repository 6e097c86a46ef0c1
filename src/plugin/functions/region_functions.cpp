// The regions of interest.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

namespace {

const RegionOfInterest* regionAt(int roi) {
    const QtCortivoDoc* run = document();
    return run && isWithin(roi, run->regions.count()) ? &run->regions[roi] : nullptr;
}

} // namespace

int tGetNrOfROIs() {
    const QtCortivoDoc* run = document();
    return run ? run->regions.count() : 0;
}

float tGetMeanOfROI(int roi) {
    const RegionOfInterest* region = regionAt(roi);
    const int volume = currentVolume();
    if (!region || volume > region->CurrentTimePoint || !isWithin(volume, region->NrOfValues()))
        return 0.0f;
    return region->TimeCourseValues[size_t(volume)];
}

int tGetNrOfVoxelsOfROI(int roi) {
    const RegionOfInterest* region = regionAt(roi);
    return region ? region->NrOfVoxels() : -1;
}

float tGetBetaOfROI(int roi, int predictor) {
    const RegionOfInterest* region = regionAt(roi);
    if (!region || !isWithin(predictor, region->ROIBetas.size()))
        return 0.0f;
    const DesignMatrix& design = document()->design;
    const float beta = region->ROIBetas[size_t(predictor)];
    const int constant = design.NrOfPredictors - design.NrOfConfoundPredictors;
    if (predictor >= design.NrOfConditionPredictors || !isWithin(constant, region->ROIBetas.size()))
        return beta;
    return beta * region->ROIBetas[size_t(constant)] / 100.0f;
}

bool tGetCoordsOfVoxelOfROI(int roi, int voxel, int* x, int* y, int* z) {
    const RegionOfInterest* region = regionAt(roi);
    if (!region || !isWithin(voxel, region->NrOfVoxels()))
        return false;
    const auto position = size_t(voxel);
    give(x, region->voxels.x[position]);
    give(y, region->voxels.y[position]);
    give(z, region->voxels.z[position]);
    return true;
}

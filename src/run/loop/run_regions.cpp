// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_regions.h"

#include "base/messages.h"
#include "regions/region_betas.h"
#include "regions/region_selection.h"
#include "regions/region_time_courses.h"
#include "run/loop/run_model.h"

#include <cmath>

namespace {

/// All voxels of a file's regions together, in whole volumes: a few lines of text can ask for
/// hundreds of regions as large as a volume.
constexpr size_t mostVolumesOfRegions = 8;

VoxelList selectedVoxels(const RegionRun& run, const VoxelRectangle& rectangle) {
    const QtCortivoDoc& document = run.document;
    const OverlayThresholds& thresholds = run.requests.thresholds;
    SelectionMaps maps{document.project.size(), document.maps, thresholds.Threshold,
                       thresholds.ClusterSizePixels};
    for (const int map : shownPluginMaps(run.requests.pluginMaps, document.pluginMaps))
        maps.pluginMaps.push_back(document.pluginMaps.map(map));
    return selectROIVoxels(maps, run.requests.regions.SelectOnlyMapVoxels,
                           std::max(run.settings.MultiSliceROISelection, 1), rectangle);
}

RegionOfInterest& addRegion(const RegionRun& run, VoxelList voxels,
                            const VoxelRectangle& rectangle) {
    return createROIFromVoxels(run.document.regions, run.document.project, run.nrOfVolumes,
                               std::move(voxels), rectangle, run.requests.regions);
}

void computeBetas(const RegionRun& run) {
    QtCortivoDoc& document = run.document;
    if (document.multiRunDocument)
        return;
    if (!document.glm.values.empty()) {
        computeROIBetas(document.regions, document.design,
                        document.glm.GLMStartVolume != GLMState::notStarted);
        return;
    }
    // After a run its live model is gone.
    DesignMatrix design;
    if (rebuildDesign(design, document))
        computeROIBetas(document.regions, design, document.wholeRunModel.isValid());
}

void updateCurves(const RegionRun& run) {
    Regions& regions = run.document.regions;
    for (int i = 0; i < regions.count(); ++i)
        updateTimeCourse(regions[i], run.document.project, run.nrOfVolumes,
                         run.requests.regions.BestVoxelSelection);
}

} // namespace

bool addSelectedRegion(const RegionRun& run, const VoxelRectangle& rectangle) {
    VoxelList voxels = selectedVoxels(run, rectangle);
    if (voxels.size() == 0)
        return false;
    addRegion(run, std::move(voxels), rectangle);
    computeBetas(run);
    return true;
}

void placeSavedRegions(const RegionRun& run, const SavedRegions& saved, RegionPlacing placing) {
    if (placing == RegionPlacing::Replace)
        run.document.regions.clear();
    size_t room = mostVolumesOfRegions * run.document.project.size().samples();
    for (size_t i = 0; i < saved.regions.size(); ++i) {
        const SavedRegion& state = saved.regions[i];
        VoxelList voxels = state.voxels ? *state.voxels : selectedVoxels(run, state.rectangle);
        if (voxels.size() == 0)
            continue;
        if (voxels.size() > room) {
            showModelessWarning(
                QStringLiteral("WARNING: The regions of interest have more voxels than %1 whole "
                               "volumes. The last %2 regions are left out.")
                    .arg(mostVolumesOfRegions)
                    .arg(saved.regions.size() - i));
            break;
        }
        room -= voxels.size();
        RegionOfInterest& region = addRegion(run, std::move(voxels), state.rectangle);
        region.TopVoxelRatio = state.TopVoxelRatio.value_or(region.TopVoxelRatio);
        region.TopVoxelSelectionMode =
            state.TopVoxelSelectionMode.value_or(region.TopVoxelSelectionMode);
        region.SortedVoxelList = state.SortedVoxelList;
        const size_t number = size_t(run.document.regions.count()) - 1;
        if (number < run.document.DefaultMaxPSC.size())
            run.document.DefaultMaxPSC[number] =
                state.MaxPSC.value_or(run.document.DefaultMaxPSC[number]);
    }
    updateRegions(run);
}

void updateRegions(const RegionRun& run) {
    if (run.document.multiRunDocument || run.document.regions.empty())
        return;
    updateCurves(run);
    computeBetas(run);
}

void updateRegionsRounded(const RegionRun& run) {
    Regions& regions = run.document.regions;
    if (run.document.multiRunDocument) {
        for (int i = 0; i < regions.count(); ++i)
            regions[i].CurrentTimePoint = -1;
        return;
    }
    updateCurves(run);
    for (int i = 0; i < regions.count(); ++i)
        for (float& value : regions[i].TimeCourseValues)
            value = std::round(value);
    if (!regions.empty())
        computeBetas(run);
}

void updateRegionsFromChangedSamples(const RegionRun& run) {
    Regions& regions = run.document.regions;
    for (int i = 0; i < regions.count(); ++i)
        regions[i].samples.forget();
    updateRegions(run);
}

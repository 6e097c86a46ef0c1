// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/multi_run_curves.h"

#include "base/messages.h"
#include "base/paths.h"
#include "regions/region_betas.h"
#include "regions/region_time_courses.h"
#include "volume/fmr_file.h"

#include <numeric>

namespace {

constexpr char noProtocol[] = "ERROR: Unable to open protocol file for time course plot!";

// The columns of the run under the names of the document.
bool makeDesign(PlottedRun& plotted, const std::vector<StudyCondition>& conditions,
                const DesignMatrix& names) {
    const RunOfStudy& study = plotted.study;
    DesignMatrix columns;
    if (!makeRunDesign(columns, study, conditions))
        return false;
    DesignMatrix& design = plotted.design;
    design = names;
    design.NrOfVolumes = study.NrOfVolumes;
    for (size_t i = 0; i < size_t(design.NrOfConditionPredictors); ++i)
        design.PredictorColumns[i] = std::move(columns.PredictorColumns[i]);
    if (!fillConfoundColumns(design, {study.protocol, study.TR, study.NrOfVolumes, 1, 0}))
        return false;
    // A condition that the run doesn't have has no onset, and so no beta.
    findPredictorOnsets(design, study.NrOfVolumes);
    return true;
}

/// Sums of a region's voxels at each data point, slice by slice.
bool sumSlices(const VoxelList& voxels, std::span<const int> positions, const VolumeSize& size,
               SliceSource& samples, std::span<double> sums) {
    std::vector<const int16_t*> points(sums.size());
    for (int slice = 0; slice < size.slices; ++slice) {
        std::vector<size_t> offsets;
        for (const int position : positions)
            if (voxels.z[size_t(position)] == slice)
                offsets.push_back(size_t(voxels.y[size_t(position)]) * size_t(size.x) +
                                  size_t(voxels.x[size_t(position)]));
        if (offsets.empty())
            continue;
        if (!samples.loadSlice(slice, points))
            return false;
        for (size_t point = 0; point < points.size(); ++point)
            for (const size_t offset : offsets)
                sums[point] += double(points[point][offset]);
    }
    return true;
}

} // namespace

bool loadPlottedRun(PlottedRun& plotted, const MultiRunProject& project, int index,
                    const std::vector<StudyCondition>& conditions, const DesignMatrix& names) {
    const QString path = projectPathOf(project, index);
    if (path.isEmpty()) {
        showWarning(QStringLiteral(
                        " ERROR: Can not read vco file \"%1\" for multi-run time course analysis.")
                        .arg(project.multiRunFiles.value(index)));
        return false;
    }
    plotted = PlottedRun{};
    plotted.projectPath = paths::withDefaultExtension(path, "fmr");
    FMRHeader header;
    if (!readFMRHeader(plotted.projectPath, header))
        return false;
    plotted.size = header.size();
    if (loadRunOfStudy(plotted.study, project, index, path, noProtocol))
        return makeDesign(plotted, conditions, names);
    plotted.study.protocol.clearProtocol();
    return true;
}

bool loadCurve(RegionOfInterest& region, const PlottedRun& plotted, const VolumeSize& size,
               bool bestVoxelSelection) {
    region.TimeCourseValues.clear();
    region.CurrentTimePoint = -1;
    region.ROIBetas.clear();
    region.BetaCovariance.clear();
    region.predictorsInFit = 0;
    if (plotted.size != size) {
        showWarning("ERROR: Different image resolution of functional data files!");
        return false;
    }
    const std::span<const int> used = voxelsInUse(region, bestVoxelSelection);
    std::vector<int> positions(used.begin(), used.end());
    if (positions.empty()) {
        positions.resize(region.voxels.size());
        std::iota(positions.begin(), positions.end(), 0);
    }
    MultiStudyList list;
    list.studies.push_back({plotted.study.NrOfVolumes, plotted.projectPath, {}, 1});
    const std::unique_ptr<SliceSource> samples = openRunsOnDisk(list);
    std::vector<double> sums(size_t(std::max(plotted.study.NrOfVolumes, 0)));
    if (!samples || !sumSlices(region.voxels, positions, size, *samples, sums))
        return false;
    for (const double sum : sums)
        region.TimeCourseValues.push_back(float(sum / double(positions.size())));
    region.CurrentTimePoint = int(sums.size()) - 1;
    if (plotted.design.NrOfPredictors > 0)
        computeROIBetas(region, plotted.design);
    return true;
}

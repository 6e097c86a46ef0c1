// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/multi_run_curves.h"

#include "base/messages.h"
#include "regions/region_betas.h"
#include "regions/region_time_courses.h"
#include "volume/stc_slice_reader.h"

#include <numeric>

namespace {

constexpr char noProtocol[] = "ERROR: Unable to open protocol file for time course plot!";

// The columns of the run under the names of the document.
bool makeDesign(PlottedRun& plotted, const std::vector<StudyCondition>& conditions,
                const DesignMatrix& names) {
    const RunOfStudy& study = plotted.study;
    RTCFile columns;
    if (!makeRunDesign(columns, study, conditions))
        return false;
    DesignMatrix& design = plotted.design;
    design = names;
    design.NrOfVolumes = study.NrOfVolumes;
    for (size_t i = 0; i < size_t(design.NrOfConditionPredictors); ++i)
        design.PredictorColumns[i] = std::move(columns.columns[i]);
    if (!fillConfoundColumns(design, {study.protocol, study.TR, study.NrOfVolumes, 1, 0}))
        return false;
    // A condition that the run doesn't have has no onset, and so no beta.
    findPredictorOnsets(design, study.NrOfVolumes);
    return true;
}

/// Sums of a region's voxels at each volume, slice by slice. False after a message.
bool sumSlices(const VoxelList& voxels, std::span<const int> positions, STCSliceReader& run,
               std::span<double> sums) {
    const FMRHeader& header = run.header();
    ZeroedBuffer<int16_t> samples;
    if (!samples.allocate(run.samplesOfSlice())) {
        showCritical("ERROR: Insufficient memory for creating GLM slice time courses!");
        return false;
    }
    for (int slice = 0; slice < header.NrOfSlices; ++slice) {
        std::vector<size_t> offsets;
        for (const int position : positions)
            if (voxels.z[size_t(position)] == slice)
                offsets.push_back(size_t(voxels.y[size_t(position)]) * size_t(header.ResolutionX) +
                                  size_t(voxels.x[size_t(position)]));
        if (offsets.empty())
            continue;
        if (!run.readSlice(slice, samples.span()))
            return false;
        for (size_t volume = 0; volume < sums.size(); ++volume)
            for (const size_t offset : offsets)
                sums[volume] += double(samples.data()[volume * header.sliceSamples() + offset]);
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
    if (!readRunHeader(plotted.study, project, index, path))
        return false;
    if (readRunProtocol(plotted.study, noProtocol))
        return makeDesign(plotted, conditions, names);
    plotted.study.protocol.clearProtocol();
    return true;
}

void forgetCurve(RegionOfInterest& region) {
    region.TimeCourseValues.clear();
    region.CurrentTimePoint = -1;
    region.ROIBetas.clear();
    region.BetaCovariance.clear();
    region.predictorsInFit = 0;
}

bool loadCurve(RegionOfInterest& region, const PlottedRun& plotted, const VolumeSize& size,
               bool bestVoxelSelection) {
    forgetCurve(region);
    const std::unique_ptr<STCSliceReader> run = STCSliceReader::open(plotted.study.studyFile);
    if (!run)
        return false;
    if (run->header().size() != size) {
        showWarning("ERROR: Different image resolution of functional data files!");
        return false;
    }
    const std::span<const int> used = voxelsInUse(region, bestVoxelSelection);
    std::vector<int> positions(used.begin(), used.end());
    if (positions.empty()) {
        positions.resize(region.voxels.size());
        std::iota(positions.begin(), positions.end(), 0);
    }
    std::vector<double> sums(size_t(run->header().NrOfVolumes));
    if (!sumSlices(region.voxels, positions, *run, sums))
        return false;
    for (const double sum : sums)
        region.TimeCourseValues.push_back(float(sum / double(positions.size())));
    region.CurrentTimePoint = int(sums.size()) - 1;
    // Without a protocol there is no design, and a run may have been replaced since it was made.
    if (plotted.design.NrOfPredictors > 0 && plotted.design.NrOfVolumes == int(sums.size()))
        computeROIBetas(region, plotted.design);
    return true;
}

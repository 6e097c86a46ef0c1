// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_glm.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "stats/whole_run_block.h"
#include "stats/whole_run_equations.h"
#include "volume/fmr_project.h"

namespace {

/// Allocates the model's maps and fills all that depends on the design alone.
bool prepareModel(WholeRunModel& model, const WholeRunEquations& equations) {
    storeDerivedParts(equations, model);
    model.GLMInverse = inFloat(equations.plain.inverse);
    if (model.GLMMaps.allocate(size_t(model.nrOfMapRows()) * model.nrOfVoxels()))
        return true;
    showCritical("ERROR: Insufficient memory for creating GLM data structure!");
    return false;
}

void fitSlice(WholeRunModel& model, int slice, std::span<const int16_t* const> points,
              WholeRunBlock& block) {
    const size_t samples = model.size.sliceSamples();
    for (size_t first = 0; first < samples; first += glmBlockVoxels) {
        const BlockMaps maps{model.GLMMaps.data() + size_t(slice) * samples + first,
                             model.nrOfVoxels()};
        block.fit(points, first, std::min(glmBlockVoxels, samples - first), maps);
    }
}

WholeRunFit fitAllSlices(WholeRunModel& model, const WholeRunEquations& equations,
                         SliceSource& samples, const StepProgress& progress) {
    WholeRunBlock block(equations);
    if (!block.allocate()) {
        showCritical("ERROR: Insufficient memory for creating GLM slice time courses!");
        return WholeRunFit::Failed;
    }
    std::vector<const int16_t*> points(equations.n, nullptr);
    for (int slice = 0; slice < model.size.slices; ++slice) {
        if (!samples.loadSlice(slice, points))
            return WholeRunFit::Failed;
        fitSlice(model, slice, points, block);
        if (!progress.advance(slice + 1, model.size.slices))
            return WholeRunFit::Cancelled;
    }
    model.MeanAR1Before = block.meanAR1Before();
    model.MeanAR1After = block.meanAR1After();
    model.GLMType = 2;
    return WholeRunFit::Done;
}

} // namespace

bool RunInMemory::loadSlice(int slice, std::span<const int16_t*> points) {
    const size_t samples = project_.sliceSamples();
    if (points.size() > project_.volumes.size() || slice < 0 || slice >= project_.NrOfSlices ||
        project_.volumes.samplesOfEach() != project_.volumeSamples()) {
        showCritical("ERROR: Different number of time points between design matrix and data "
                     "files!");
        return false;
    }
    for (size_t t = 0; t < points.size(); ++t)
        points[t] = project_.volumes[t].data() + size_t(slice) * samples;
    return true;
}

WholeRunFit fitWholeRunModel(WholeRunModel& model, const WholeRunDesign& design,
                             const VolumeSize& size, SliceSource& samples,
                             ProgressReporter& progress) {
    WholeRunDesign copy = design; // which may be the model's own
    model.release();
    WholeRunEquations equations;
    if (!isUsableDesign(copy) || !makeWholeRunEquations(copy, equations))
        return WholeRunFit::Failed;
    static_cast<WholeRunDesign&>(model) = std::move(copy);
    model.size = size;
    WholeRunFit result = WholeRunFit::Failed;
    if (prepareModel(model, equations))
        result = fitAllSlices(model, equations, samples, StepProgress(progress));
    if (result != WholeRunFit::Done)
        model.release();
    return result;
}

void writeDesignText(const WholeRunDesign& design, const QString& folder) {
    const size_t p = design.predictors.size();
    QByteArray text;
    for (size_t i = 0; i < design.GLMDesign.size(); ++i) {
        text += formatted("%8.6f  ", double(design.GLMDesign[i]));
        if (i % p == p - 1)
            text += '\n';
    }
    if (!writeFileAtomically(paths::join(folder, "DesignMatrix.txt"), text))
        showInformation("INFO: Can not write to file <DesignMatrix.txt> - write protected?");
}

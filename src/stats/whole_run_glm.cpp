// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_glm.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "stats/whole_run_block.h"
#include "stats/whole_run_equations.h"
#include "volume/fmr_project.h"

#include <cmath>
#include <limits>

namespace {

/// Lag-one values of a slice, and their means. They are summed voxel by voxel in the order of the
/// volume, so that the means don't depend on who fits which block.
class LagOneMeans {
public:
    explicit LagOneMeans(size_t sliceSamples) : before_(sliceSamples), after_(sliceSamples) {}

    void startSlice() { std::ranges::fill(before_, notFitted); }
    [[nodiscard]] double* before(size_t sample) { return before_.data() + sample; }
    [[nodiscard]] double* after(size_t sample) { return after_.data() + sample; }
    void takeSlice() {
        for (size_t i = 0; i < before_.size(); ++i) {
            if (std::isnan(before_[i]))
                continue;
            sumBefore_ += before_[i];
            sumAfter_ += after_[i];
            ++nrOfVoxels_;
        }
    }
    [[nodiscard]] float meanBefore() const { return mean(sumBefore_); }
    [[nodiscard]] float meanAfter() const { return mean(sumAfter_); }

private:
    static constexpr double notFitted = std::numeric_limits<double>::quiet_NaN();

    [[nodiscard]] float mean(double sum) const {
        return nrOfVoxels_ == 0 ? noMeanAR1 : float(sum / double(nrOfVoxels_));
    }

    std::vector<double> before_; ///< NaN: not fitted, or without the correction
    std::vector<double> after_;
    double sumBefore_ = 0.0;
    double sumAfter_ = 0.0;
    size_t nrOfVoxels_ = 0;
};

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
              std::span<const std::unique_ptr<WholeRunBlock>> blocks, LagOneMeans& lagOne,
              WorkerPool& workers) {
    const size_t samples = model.size.sliceSamples();
    lagOne.startSlice();
    const size_t parts = (samples + glmBlockVoxels - 1) / glmBlockVoxels;
    workers.forParts(parts, [&](size_t part, size_t thread) {
        const size_t first = part * glmBlockVoxels;
        const BlockMaps maps{model.GLMMaps.data() + size_t(slice) * samples + first,
                             model.nrOfVoxels(), lagOne.before(first), lagOne.after(first)};
        blocks[thread]->fit(points, first, std::min(glmBlockVoxels, samples - first), maps);
    });
    lagOne.takeSlice();
}

/// One for each thread; none when memory runs out.
std::vector<std::unique_ptr<WholeRunBlock>> makeBlocks(const WholeRunEquations& equations,
                                                       int nrOfThreads) {
    std::vector<std::unique_ptr<WholeRunBlock>> blocks;
    for (int i = 0; i < nrOfThreads; ++i)
        if (!blocks.emplace_back(std::make_unique<WholeRunBlock>(equations))->allocate())
            return {};
    return blocks;
}

WholeRunFit fitAllSlices(WholeRunModel& model, const WholeRunEquations& equations,
                         SliceSource& samples, const StepProgress& progress, WorkerPool& workers) {
    const auto blocks = makeBlocks(equations, workers.nrOfThreads());
    if (blocks.empty()) {
        showCritical("ERROR: Insufficient memory for creating GLM slice time courses!");
        return WholeRunFit::Failed;
    }
    LagOneMeans lagOne(model.size.sliceSamples());
    std::vector<const int16_t*> points(equations.n, nullptr);
    for (int slice = 0; slice < model.size.slices; ++slice) {
        if (!samples.loadSlice(slice, points))
            return WholeRunFit::Failed;
        fitSlice(model, slice, points, blocks, lagOne, workers);
        if (!progress.advance(slice + 1, model.size.slices))
            return WholeRunFit::Cancelled;
    }
    model.MeanAR1Before = lagOne.meanBefore();
    model.MeanAR1After = lagOne.meanAfter();
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
                             ProgressReporter& progress, WorkerPool& workers) {
    WholeRunDesign copy = design; // which may be the model's own
    model.release();
    WholeRunEquations equations;
    if (!isUsableDesign(copy) || !makeWholeRunEquations(copy, equations))
        return WholeRunFit::Failed;
    static_cast<WholeRunDesign&>(model) = std::move(copy);
    model.size = size;
    WholeRunFit result = WholeRunFit::Failed;
    if (prepareModel(model, equations))
        result = fitAllSlices(model, equations, samples, StepProgress(progress), workers);
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

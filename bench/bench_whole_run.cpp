// Time of fitting a complete run in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_glm.h"
#include "volume/fmr_project.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

constexpr int nrOfVolumes = 300;
constexpr int nrOfPredictors = 8;

class NoProgress : public ProgressReporter {
public:
    void setProgress(int) override {}
};

bool makeVolumes(FMRProject& project) {
    project.ResolutionX = 104;
    project.ResolutionY = 104;
    project.NrOfSlices = 72;
    project.NrOfVolumes = nrOfVolumes;
    if (!project.allocateVolumes())
        return false;
    std::minstd_rand random(1);
    for (size_t v = 0; v < project.volumes.size(); ++v)
        for (int16_t& sample : project.volumes[v])
            sample = int16_t(900 + (random() >> 8) % 64);
    return true;
}

/// 6 conditions, a constant and a trend.
WholeRunDesign makeDesign() {
    WholeRunDesign design;
    design.studies.resize(1);
    design.studies[0].dataPoints = nrOfVolumes;
    design.predictors.resize(nrOfPredictors);
    for (int j = 0; j < nrOfPredictors; ++j)
        design.conditionOfColumn.push_back(j < nrOfPredictors - 2 ? j : -1);
    for (int t = 0; t < nrOfVolumes; ++t) {
        for (int j = 0; j < nrOfPredictors - 2; ++j)
            design.GLMDesign.push_back(
                std::max(0.0f, std::sin(float(t * 6 + j * 60) * 0.0174533f)));
        design.GLMDesign.push_back(1.0f);
        design.GLMDesign.push_back(float(t) / nrOfVolumes * 2 - 1);
    }
    return design;
}

double milliseconds(WholeRunModel& model, const WholeRunDesign& design, const FMRProject& project) {
    using Clock = std::chrono::steady_clock;
    RunInMemory samples(project);
    NoProgress progress;
    const Clock::time_point start = Clock::now();
    if (fitWholeRunModel(model, design, project.size(), samples, progress) != WholeRunFit::Done)
        std::fputs("the fit failed\n", stderr);
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

} // namespace

int main() {
    FMRProject project;
    if (!makeVolumes(project)) {
        std::fputs("not enough memory\n", stderr);
        return 1;
    }
    std::printf("Milliseconds, best of 5; %d volumes of 104 x 104 x 72 in memory, %d predictors, "
                "all voxels\n",
                nrOfVolumes, nrOfPredictors);
    struct Case {
        const char* name;
        ZTransformation transformation;
        bool corrects;
        double budget;
    };
    for (const Case& each :
         {Case{"plain", ZTransformation::None, false, 1000},
          Case{"z transformation", ZTransformation::Study, false, 1000},
          Case{"serial correlations corrected", ZTransformation::None, true, 4000}}) {
        WholeRunDesign design = makeDesign();
        design.transformation = each.transformation;
        design.CorrectSerialCorrelations = each.corrects;
        WholeRunModel model;
        double best = 1e9;
        for (int i = 0; i < 5; ++i)
            best = std::min(best, milliseconds(model, design, project));
        std::printf("%-30s  %7.0f  budget %5.0f\n", each.name, best, each.budget);
    }
    return 0;
}

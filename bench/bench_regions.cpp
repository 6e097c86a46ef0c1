// Times of the regions at the end of a long run: sums with and without ranking, ranking, creation.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor_time.h"
#include "regions/region_ranking.h"
#include "regions/region_time_courses.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <numeric>
#include <random>

namespace {

constexpr int nrOfVolumes = 500;
constexpr int nrOfConditions = 3;
constexpr VolumeSize runSize{104, 104, 72};

struct Layout {
    const char* name;
    int nrOfRegions;
    int columns;
    int rows;
};

/// Before each measurement the caches are filled with other data, as the model does in a run.
void evictCaches() {
    static std::vector<uint8_t> other(size_t(64) << 20);
    for (size_t i = 0; i < other.size(); i += 64)
        ++other[i];
}

double coldMilliseconds(const std::function<void()>& work) {
    evictCaches();
    return milliseconds(work);
}

VoxelList rectangle(const Layout& layout, int number) {
    VoxelList voxels;
    const int slice = 10 + number * 8;
    const int left = number * 15 % (runSize.x - layout.columns + 1);
    const int top = number * 13 % (runSize.y - layout.rows + 1);
    for (int y = top; y < top + layout.rows; ++y)
        for (int x = left; x < left + layout.columns; ++x)
            voxels.append(x, y, slice);
    return voxels;
}

/// Betas that a new volume changes by a few percent of their spread, as late in a run.
class DriftingModel {
public:
    DesignMatrix design;
    GLMState glm;

    [[nodiscard]] bool allocate() {
        design.NrOfConditionPredictors = nrOfConditions;
        design.NrOfConfoundPredictors = 1;
        design.NrOfPredictors = nrOfConditions + 1;
        if (!glm.allocate(design.NrOfPredictors, runSize.samples()))
            return false;
        glm.ActivePredictors.resize(nrOfConditions + 1);
        std::iota(glm.ActivePredictors.begin(), glm.ActivePredictors.end(), 0);
        for (int row = 0; row < nrOfConditions; ++row)
            for (double& beta : glm.row(row))
                beta = 10.0 * noise_(random_);
        std::ranges::fill(glm.row(nrOfConditions), 1000.0);
        return true;
    }
    void nextVolume(const Regions& regions) {
        for (int i = 0; i < regions.count(); ++i)
            for (size_t v = 0; v < regions[i].voxels.size(); ++v)
                for (int row = 0; row < nrOfConditions; ++row)
                    glm.row(row)[regions[i].voxels.offset(v, runSize)] += 0.2 * noise_(random_);
    }

private:
    std::mt19937 random_{5};
    std::normal_distribution<double> noise_;
};

/// Sums of the voxels at these positions in the list, or of all, straight from the volumes.
void sumPlainly(const FMRProject& project, const VoxelList& voxels, std::span<const int> used,
                std::span<int64_t> sums) {
    for (size_t t = 0; t < sums.size(); ++t) {
        const std::span<const int16_t> volume = project.volumes[t];
        sums[t] = 0;
        for (const int position : used)
            sums[t] += volume[voxels.offset(size_t(position), runSize)];
        for (size_t i = 0; used.empty() && i < voxels.size(); ++i)
            sums[t] += volume[voxels.offset(i, runSize)];
    }
}

/// What sums cost without anything kept: the voxels in use, over all volumes.
double plainTime(const Regions& regions, const FMRProject& project, bool best) {
    std::vector<int64_t> sums(nrOfVolumes);
    std::vector<double> times;
    for (int repeat = 0; repeat < 5; ++repeat)
        times.push_back(coldMilliseconds([&] {
            for (int i = 0; i < regions.count(); ++i)
                sumPlainly(project, regions[i].voxels, voxelsInUse(regions[i], best), sums);
        }));
    return median(times);
}

struct Times {
    double sums = 0.0;
    double largestSums = 0.0;
    double ranking = 0.0;
};

/// The last hundred volumes of a run.
Times volumeTimes(Regions& regions, const FMRProject& project, DriftingModel& model, bool best) {
    std::vector<double> sums;
    std::vector<double> ranking;
    for (int volume = nrOfVolumes - 101; volume < nrOfVolumes; ++volume) {
        if (best) {
            model.nextVolume(regions);
            ranking.push_back(coldMilliseconds(
                [&] { rankROIVoxels(regions, model.glm, model.design, runSize); }));
        }
        sums.push_back(coldMilliseconds([&] {
            for (int i = 0; i < regions.count(); ++i)
                updateTimeCourse(regions[i], project, volume + 1, best);
        }));
    }
    return {median(sums), std::ranges::max(sums), best ? median(ranking) : 0.0};
}

void measure(const Layout& layout, const FMRProject& project, DriftingModel& model) {
    for (const bool best : {false, true}) {
        Regions regions;
        RegionOptions options;
        options.BestVoxelSelection = best;
        const double creation = coldMilliseconds([&] {
            for (int i = 0; i < layout.nrOfRegions; ++i)
                createROIFromVoxels(regions, project, nrOfVolumes - 101, rectangle(layout, i), {},
                                    options);
        });
        const Times times = volumeTimes(regions, project, model, best);
        std::printf("%-16s  %-8s  %8.3f  %8.3f  %8.3f  %8.2f  %8.2f\n", layout.name,
                    best ? "best 33%" : "all", times.sums, times.largestSums, times.ranking,
                    plainTime(regions, project, best), creation);
    }
}

} // namespace

int main() {
    FMRProject project;
    project.ResolutionX = runSize.x;
    project.ResolutionY = runSize.y;
    project.NrOfSlices = runSize.slices;
    project.NrOfVolumes = nrOfVolumes;
    DriftingModel model;
    if (!project.allocateVolumes() || !model.allocate()) {
        std::printf("not enough memory\n");
        return 0;
    }
    for (size_t t = 0; t < project.volumes.size(); ++t)
        for (size_t v = 0; v < runSize.samples(); ++v)
            project.volumes[t][v] = int16_t(v * 31 % 1500 + t);
    std::printf(
        "Milliseconds of processor time for all regions, cold caches; volumes 400 to 500 of "
        "%d x %d x %d\n",
        runSize.x, runSize.y, runSize.slices);
    std::printf("regions           in use        sums   largest   ranking     plain  creation\n");
    for (const Layout& layout :
         {Layout{"6 of 500 voxels", 6, 25, 20}, Layout{"1 of 10816", 1, 104, 104}})
        measure(layout, project, model);
}

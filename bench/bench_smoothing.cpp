// Times of spatial smoothing of a volume at five sizes, on one thread and on two, and of the
// post-processing of a run at three.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clock_time.h"
#include "processor_time.h"
#include "volume/frequency_smoothing.h"
#include "volume/high_pass.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
#include "volume/smoothing.h"

#include <QDir>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <random>

namespace {

constexpr float fwhmMillimetres = 5.0f;
constexpr int nrOfVolumes = 100;

struct Size {
    int matrix;
    int slices;
    float pixelMillimetres;
    float sliceMillimetres;
    double budgetMilliseconds;
};

class SilentProgress : public ProgressReporter {
    void setProgress(int) override {}
};

void require(bool succeeded) {
    if (!succeeded)
        std::fputs("a step failed\n", stderr);
}

bool prepare(FMRProject& project, const Size& size, int volumes = nrOfVolumes) {
    project.ResolutionX = project.ResolutionY = size.matrix;
    project.NrOfSlices = size.slices;
    project.NrOfVolumes = volumes;
    project.pixelSizeX = project.pixelSizeY = size.pixelMillimetres;
    project.sliceThickness = size.sliceMillimetres;
    project.InterSliceTime = project.TR / float(size.slices + 1);
    if (!project.allocateVolumes())
        return false;
    std::minstd_rand random(1);
    for (size_t v = 0; v < project.volumes.size(); ++v)
        for (int16_t& sample : project.volumes[v])
            sample = int16_t(random() >> 8 & 2047);
    return true;
}

void printSize(const Size& size) {
    FMRProject project;
    if (!prepare(project, size)) {
        std::printf("%3d: not enough memory\n", size.matrix);
        return;
    }
    int v = 0;
    const auto nextVolume = [&] { return v = (v + 1) % nrOfVolumes; };
    std::vector<int16_t> copy(project.volumeSamples());
    const double copyTime = medianTime(101, [&] {
        std::memcpy(copy.data(), project.volumes[size_t(nextVolume())].data(),
                    copy.size() * sizeof(int16_t));
    });
    SpatialSmoothing smoothing;
    const double space = medianTime(
        101, [&] { require(smoothing.smoothVolume(project, nextVolume(), fwhmMillimetres)); });
    FrequencySmoothing inFrequency;
    require(inFrequency.prepare(project, voxelWidths(project, double(fwhmMillimetres))));
    const double frequency =
        medianTime(11, [&] { inFrequency.smooth(project.volumes[size_t(nextVolume())]); });

    SilentProgress silent;
    const StepProgress progress(silent);
    SliceScanTimeOptions slices;
    const double spline = milliseconds(
        [&] { require(correctSliceScanTime(project, nrOfVolumes, slices, progress)); });
    slices.sincInterpolation = true;
    const double sinc = milliseconds(
        [&] { require(correctSliceScanTime(project, nrOfVolumes, slices, progress)); });
    const double highPass =
        milliseconds([&] { require(highPassFourier(project, nrOfVolumes, 2, progress)); });
    TemporalOptions temporal;
    temporal.gaussianWidth = 3.0f;
    temporal.gaussianInSeconds = false;
    const double gaussian =
        milliseconds([&] { require(smoothTimeCourses(project, nrOfVolumes, temporal, progress)); });
    std::printf("%3d x %3d x %2d  %6.2f  %7.2f  %6.0f  %9.2f  %7.2f  %7.2f  %9.2f  %8.2f\n",
                size.matrix, size.matrix, size.slices, copyTime, space, size.budgetMilliseconds,
                frequency, spline / nrOfVolumes, sinc / nrOfVolumes, highPass / nrOfVolumes,
                gaussian / nrOfVolumes);
}

/// In the space domain; each time another volume, as in a run.
void printThreads(const Size& size, WorkerPool& one, WorkerPool& two) {
    constexpr int volumes = 4, repeats = 41;
    FMRProject project;
    if (!prepare(project, size, volumes)) {
        std::printf("%3d: not enough memory\n", size.matrix);
        return;
    }
    SpatialSmoothing smoothing;
    std::array<double, 2> best{1e9, 1e9};
    for (int i = 0; i < repeats; ++i)
        for (const size_t p : {0, 1})
            best[p] = std::min(best[p], clockTime([&] {
                                   require(smoothing.smoothVolume(
                                       project, i % volumes, fwhmMillimetres, p == 0 ? one : two));
                               }));
    std::printf("%3d x %3d x %3d  %6.3f  %10.2f  %11.2f  %13.2f\n", size.matrix, size.matrix,
                size.slices, bestCopyTime<int16_t>(31, project.volumes[0]), best[0], best[1],
                best[0] / best[1]);
}

} // namespace

int main() {
    // The high-pass filter writes its design to the current folder.
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    std::printf("Milliseconds of processor time for one volume; FWHM 5 mm; the last four of a run "
                "of %d\n"
                "size            memcpy    space  budget  frequency   spline     sinc  high-pass  "
                "gaussian\n",
                nrOfVolumes);
    for (const Size& size : {Size{64, 25, 3, 4, 1}, Size{74, 36, 3, 3, 2}, Size{104, 72, 2, 2, 8}})
        printSize(size);
    std::printf("\nMilliseconds that pass for one volume in the space domain, best of 41\n"
                "size               copy  one thread  two threads  times as fast\n");
    WorkerPool one(1), two(2);
    for (const Size& size : {Size{64, 25, 3, 4, 1}, Size{74, 36, 3, 3, 2}, Size{104, 72, 2, 2, 8},
                             Size{192, 96, 1.1f, 1.5f, 0}, Size{240, 120, 0.8f, 1.1f, 0}})
        printThreads(size, one, two);
}

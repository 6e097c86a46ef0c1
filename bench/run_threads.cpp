// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_threads.h"

#include "head_run.h"
#include "silent_display.h"

#include "display/shown_maps.h"
#include "display/slice_mosaic.h"
#include "run/session/run_session.h"
#include "volume/motion_resampling.h"

#include <QTemporaryDir>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr HeadRunSize sizes[] = {{64, 64, 25, 5, 3.0f, 4.0f},
                                 {74, 74, 36, 6, 2.6f, 3.3f},
                                 {104, 104, 72, 9, 2.0f, 2.0f},
                                 {192, 192, 96, 10, 1.1f, 1.1f},
                                 {240, 240, 120, 11, 0.8f, 0.8f}};
constexpr int nrOfConditions = 6; // with a constant and a trend eight predictors
/// All predictors are in the model, which then has the recursion alone to do.
constexpr int firstMeasuredVolume = 32;
/// Each volume is measured on one thread in every other run, and on several in those between.
constexpr int nrOfRuns = 4;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Microseconds of each stage of a volume.
using StageTimes = decltype(VolumeTimes::stages);

/// Of each volume that is measured, the smallest times over the runs: other programs only make it
/// longer.
struct SmallestTimes {
    std::vector<StageTimes> stages;
    std::vector<qint64> whole; ///< without reading

    explicit SmallestTimes(int volumes)
        : stages(size_t(volumes)), whole(size_t(volumes), farTooLong) {
        for (StageTimes& ofVolume : stages)
            ofVolume.fill(farTooLong);
    }
    void take(size_t volume, const VolumeTimes& times) {
        for (size_t i = 0; i < nrOfVolumeStages; ++i)
            stages[volume][i] = std::min(stages[volume][i], times.stages[i]);
        const qint64 all = times.needed() - times.of(VolumeStage::Reading);
        whole[volume] = std::min(whole[volume], all);
    }

private:
    static constexpr qint64 farTooLong = qint64(1) << 40;
};

/// In milliseconds.
double median(std::vector<qint64> times) {
    const auto middle = times.begin() + ptrdiff_t(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return double(*middle) / 1e3;
}

double median(const SmallestTimes& times, VolumeStage stage) {
    std::vector<qint64> ofStage;
    for (const StageTimes& volume : times.stages)
        ofStage.push_back(volume[size_t(stage)]);
    return median(ofStage);
}

/// Whether this volume of this run is shared among threads. Neighbours differ, so that both see the
/// same machine, and so do the runs, so that both see the same volumes.
bool isShared(size_t volume, int run) {
    return (volume + size_t(run)) % 2 == 1;
}

/// Composes the mosaic as a view does; the number of threads changes from volume to volume.
class StepDisplay : public SilentDisplay {
public:
    StepDisplay(int nrOfThreads, int run) : nrOfThreads_(nrOfThreads), run_(run) {}

    void follow(RunSession& session) { session_ = &session; }
    /// A volume has been read.
    void begin() {
        // What the last one left to do, such as writing its journal, is not part of this one.
        if (volume_ >= firstMeasuredVolume)
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
        session_->workers.setNrOfThreads(isShared(volume_, run_) ? nrOfThreads_ : 1);
        ++volume_;
    }
    void updateViews() override {
        if (!session_->phase.runActive())
            return;
        QtCortivoDoc& document = *session_->functionalDocument;
        SliceMosaicSource source;
        source.slices = &document.slices;
        source.layout = document.mosaic;
        source.maps = shownContrastMaps(document);
        source.thresholds = session_->requests.thresholds;
        (void)composeSliceMosaic(mosaic_, source, session_->workers);
    }

private:
    RunSession* session_ = nullptr;
    const int nrOfThreads_;
    const int run_;
    size_t volume_ = 0;
    QImage mosaic_;
};

/// Of as many bytes as the step has to read and write: the model, the maps, the sizes of clusters,
/// the grey images and the volume; half of them over the other half, twice.
double copyTime(const HeadRunSize& size, WorkerPool& workers) {
    constexpr size_t bytesOfVoxel = (nrOfConditions + 3) * sizeof(double) + 3 * sizeof(float) +
                                    sizeof(int) + sizeof(uint32_t) + sizeof(int16_t);
    const size_t half = size.bytes() / sizeof(int16_t) * bytesOfVoxel / 2;
    const std::unique_ptr<char[]> memory(new char[2 * half]());
    double smallest = 1e9;
    for (int repeat = 0; repeat < 7; ++repeat) {
        const Clock::time_point start = Clock::now();
        for (int way = 0; way < 2; ++way)
            workers.forSlabs(half, [&](size_t first, size_t last) {
                std::memcpy(memory.get() + (way == 0 ? half : 0) + first,
                            memory.get() + (way == 0 ? 0 : half) + first, last - first);
            });
        smallest = std::min(smallest, millisecondsSince(start));
    }
    return smallest;
}

/// How much more gets done by several threads than by one when each resamples a volume of its own:
/// work that is shared can't do better on this machine.
double ratioOfSeparateWork(const HeadRunSize& size, WorkerPool& workers) {
    struct Volumes {
        std::vector<int16_t> source, result;
    };
    VolumeGrid grid;
    grid.size = {size.columns, size.rows, size.slices};
    std::vector<Volumes> volumes(size_t(workers.nrOfThreads()));
    for (Volumes& volume : volumes) {
        volume.source.assign(grid.samples(), 700);
        volume.result.resize(grid.samples());
    }
    constexpr RigidTransformation motion{0.4f, 0.3f, 0.2f, 0.5f, 0.1f, 0.3f};
    const auto smallestTime = [&](size_t nrOfVolumes) {
        double smallest = 1e9;
        for (int repeat = 0; repeat < 9; ++repeat) {
            const Clock::time_point start = Clock::now();
            workers.forParts(nrOfVolumes, [&](size_t part) {
                resampleVolume(grid, volumes[part].source, volumes[part].result, motion);
            });
            smallest = std::min(smallest, millisecondsSince(start));
        }
        return smallest;
    };
    return double(volumes.size()) * smallestTime(1) / smallestTime(volumes.size());
}

/// Times on one thread and on several.
using BothTimes = std::array<SmallestTimes, 2>;

bool runOnce(const HeadRunSize& size, int run, int nrOfThreads, BothTimes& times) {
    QTemporaryDir folder;
    QtEventPump pump;
    StepDisplay display(nrOfThreads, run);
    RunSession session(pump, display);
    display.follow(session);
    session.makeReader = [&](const IntakeContext& context) {
        return std::make_unique<HeadRunReader>(context.project, size, [&] { display.begin(); });
    };
    session.settings.MotionCorrection = true;
    session.settings.SpatialGaussianSmoothing = true;
    session.settings.NrOfColumns = size.tiles;
    session.settings.NrOfRows = size.tiles;
    session.requests.overlayVolumeMode = 1;
    const size_t measured = times[0].whole.size();
    if (!writeHeadRun(folder.path(), size, firstMeasuredVolume + int(measured), nrOfConditions,
                      session.settings)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return false;
    }
    session.runButtonPressed();
    const auto volumes = session.functionalDocument->ledger.volumes();
    for (size_t v = firstMeasuredVolume; v < volumes.size(); ++v)
        times[isShared(v, run)].take(v - firstMeasuredVolume, volumes[v]);
    return session.report.runFinished;
}

void printTimes(const char* what, double one, double several) {
    std::printf("  %-17s %8.2f %10.2f %6.2f", what, one, several, one / several);
}

} // namespace

void measureThreads(int volumes, int nrOfThreads, int columns) {
    std::printf(
        "Milliseconds of one volume by the clock, the smallest of %d runs, medians over %d "
        "volumes\n"
        "                   1 thread  %d threads  ratio   copy 1   copy %d  ratio  separate work\n",
        nrOfRuns / 2, volumes, nrOfThreads, nrOfThreads);
    WorkerPool workers(nrOfThreads);
    for (const HeadRunSize& size : sizes) {
        if (columns > 0 && size.columns != columns)
            continue;
        BothTimes times{SmallestTimes(volumes), SmallestTimes(volumes)};
        for (int run = 0; run < nrOfRuns; ++run)
            if (!runOnce(size, run, nrOfThreads, times))
                return;
        const double copyOne = copyTime(size, callersThread());
        const double copySeveral = copyTime(size, workers);
        char name[32];
        std::snprintf(name, sizeof name, "%d x %d x %d", size.columns, size.rows, size.slices);
        printTimes(name, median(times[0].whole), median(times[1].whole));
        std::printf(" %8.2f %8.2f %6.2f %14.2f\n", copyOne, copySeveral, copyOne / copySeveral,
                    ratioOfSeparateWork(size, workers));
        for (size_t i = 0; i < nrOfVolumeStages; ++i) {
            const auto stage = VolumeStage(i);
            const double one = median(times[0], stage);
            if (stage == VolumeStage::Reading || one < 0.01 * median(times[0].whole))
                continue;
            printTimes(nameOf(stage), one, median(times[1], stage));
            std::printf("\n");
        }
        std::fflush(stdout);
    }
}

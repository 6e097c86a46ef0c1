// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_threads.h"

#include "head_run.h"
#include "silent_display.h"

#include "display/shown_maps.h"
#include "display/slice_mosaic.h"
#include "run/session/run_session.h"

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

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// What a volume passes, in this order.
enum Stage { Preprocessing, Model, ClustersAndStatus, Mosaic, nrOfStages };
constexpr const char* stageNames[] = {"motion, smoothing, grey", "model, t maps", "clusters",
                                      "mosaic"};

/// Smallest times of a volume, in milliseconds: other programs only make it longer.
struct SmallestTimes {
    double whole = 1e9;
    std::array<double, nrOfStages> stages;

    SmallestTimes() { stages.fill(1e9); }
    void take(const std::array<double, nrOfStages>& times) {
        double sum = 0.0;
        for (size_t i = 0; i < times.size(); ++i) {
            stages[i] = std::min(stages[i], times[i]);
            sum += times[i];
        }
        whole = std::min(whole, sum);
    }
};

/// Times the stages of each volume, and composes the mosaic as a view does. The number of threads
/// changes from volume to volume, so that both see the same machine.
class StepTimer : public SilentDisplay, public RunListener {
public:
    explicit StepTimer(int nrOfThreads) : nrOfThreads_(nrOfThreads) {}

    void follow(RunSession& session) {
        session_ = &session;
        session.listeners.add(*this, ListenerPlace::Dialogs);
    }
    /// The volume has been read.
    void begin() {
        // What the last one left to do, such as writing its journal, is not part of this one.
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        shared_ = volume_ % 2 == 1;
        session_->workers.setNrOfThreads(shared_ ? nrOfThreads_ : 1);
        last_ = Clock::now();
    }
    bool atStep(VolumeStep step, const VolumeAtHand&) override {
        if (step == VolumeStep::LoadRegions)
            end(Preprocessing);
        if (step == VolumeStep::AfterModel)
            end(Model);
        return true;
    }
    void updateViews() override {
        if (!session_->phase.runActive())
            return;
        end(ClustersAndStatus);
        QtCortivoDoc& document = *session_->functionalDocument;
        SliceMosaicSource source;
        source.slices = &document.slices;
        source.layout = document.mosaic;
        source.maps = shownContrastMaps(document);
        source.thresholds = session_->requests.thresholds;
        (void)composeSliceMosaic(mosaic_, source, session_->workers);
        end(Mosaic);
        if (volume_ >= firstMeasuredVolume)
            times[shared_ ? 1 : 0].take(ofVolume_);
        ++volume_;
    }

    std::array<SmallestTimes, 2> times; ///< on one thread, on several

private:
    void end(Stage stage) {
        ofVolume_[stage] = millisecondsSince(last_);
        last_ = Clock::now();
    }

    RunSession* session_ = nullptr;
    const int nrOfThreads_;
    int volume_ = 0;
    bool shared_ = false;
    Clock::time_point last_;
    std::array<double, nrOfStages> ofVolume_{};
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

bool runOnce(const HeadRunSize& size, int volumes, StepTimer& timer) {
    QTemporaryDir folder;
    QtEventPump pump;
    RunSession session(pump, timer);
    timer.follow(session);
    session.makeReader = [&](const IntakeContext& context) {
        return std::make_unique<HeadRunReader>(context.project, size, [&] { timer.begin(); });
    };
    session.settings.MotionCorrection = true;
    session.settings.SpatialGaussianSmoothing = true;
    session.settings.NrOfColumns = size.tiles;
    session.settings.NrOfRows = size.tiles;
    session.requests.overlayVolumeMode = 1;
    if (!writeHeadRun(folder.path(), size, volumes, nrOfConditions, session.settings)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return false;
    }
    session.runButtonPressed();
    return session.report.runFinished;
}

} // namespace

void measureThreads(int volumes, int nrOfThreads) {
    std::printf("Milliseconds of one volume by the clock, smallest of %d volumes each\n"
                "size           1 thread  %d threads  ratio   copy 1   copy %d  ratio\n",
                (volumes - firstMeasuredVolume) / 2, nrOfThreads, nrOfThreads);
    WorkerPool workers(nrOfThreads);
    for (const HeadRunSize& size : sizes) {
        StepTimer timer(nrOfThreads);
        if (!runOnce(size, volumes, timer))
            return;
        const auto& [one, several] = timer.times;
        const double copyOne = copyTime(size, callersThread());
        const double copySeveral = copyTime(size, workers);
        std::printf("%4dx%3dx%3d %11.2f %10.2f %6.2f %8.2f %8.2f %6.2f\n", size.columns, size.rows,
                    size.slices, one.whole, several.whole, one.whole / several.whole, copyOne,
                    copySeveral, copyOne / copySeveral);
        for (size_t i = 0; i < nrOfStages; ++i)
            std::printf("  %-23s %8.2f %8.2f %6.2f\n", stageNames[i], one.stages[i],
                        several.stages[i], one.stages[i] / several.stages[i]);
        std::fflush(stdout);
    }
}

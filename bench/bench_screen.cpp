// Time of a volume that is not statistics: regions, plots, logs, views and status text of the real
// window at the end of a long run, painted on the offscreen platform.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "head_run.h"
#include "processor_time.h"

#include "regions/ui/time_courses_container.h"
#include "run/window/velo_cortivo.h"
#include "run/window/velo_cortivo_application.h"

#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr int nrOfVolumes = 510;
constexpr int nrOfMeasured = 100;    ///< volumes, the last ones
constexpr int volumeOfRegions = 100; ///< at which they are made and all windows opened
constexpr int nrOfConditions = 3;

/// What the time of a volume went into.
enum Part {
    Sums,
    Ranking,
    Logs,
    RegionPlots,
    RegionPlotsPainted,
    MotionPlot,
    ResponsePlot,
    GreyImages,
    View,
    Status,
    Rest, ///< journal, protocol, events
    nrOfParts
};

constexpr std::array<const char*, nrOfParts> partNames{"sums and betas of the regions",
                                                       "ranking",
                                                       "three logs",
                                                       "plots of regions and averages",
                                                       "the same, painting",
                                                       "motion plot, with painting",
                                                       "response plot, with painting",
                                                       "grey images",
                                                       "view, composed and painted",
                                                       "status text, with painting",
                                                       "the rest"};

/// Gives each moment of a volume to a part, in processor time of this thread, so that neither other
/// programs nor the journal's thread count.
class Laps {
public:
    using Volume = std::array<double, nrOfParts>;

    void beginVolume() {
        current_ = {};
        skip();
    }
    void take(Part part) {
        const double now = threadMilliseconds();
        current_[part] += now - last_;
        last_ = now;
    }
    /// Since the last call statistics were computed, or nothing that counts.
    void skip() { last_ = threadMilliseconds(); }
    [[nodiscard]] const Volume& volume() const { return current_; }

    Part ofMainWindow = Rest; ///< what painting the main window belongs to at the moment

private:
    double last_ = 0.0;
    Volume current_{};
};

/// Finds out for which window painting is done.
class BenchApplication : public VeloCortivoApplication {
public:
    BenchApplication(int& argc, char** argv, Laps& laps)
        : VeloCortivoApplication(argc, argv), laps_(laps) {}

    bool notify(QObject* receiver, QEvent* event) override {
        if (event->type() != QEvent::UpdateRequest || painting_)
            return VeloCortivoApplication::notify(receiver, event);
        laps_.take(Rest);
        painting_ = true;
        const bool done = VeloCortivoApplication::notify(receiver, event);
        painting_ = false;
        laps_.take(partOf(receiver->objectName()));
        return done;
    }

private:
    // The window of the platform that belongs to a widget has its name with "Window" behind it.
    [[nodiscard]] Part partOf(const QString& name) const {
        if (name.startsWith("VeloCortivo"))
            return laps_.ofMainWindow;
        if (name.startsWith("MotionPlot"))
            return MotionPlot;
        return name.startsWith("ResponsePlot") ? ResponsePlot : RegionPlotsPainted;
    }

    Laps& laps_;
    bool painting_ = false;
};

class BenchPump : public QtEventPump {
public:
    explicit BenchPump(Laps& laps) : laps_(laps) {}
    void processEvents() override {
        QtEventPump::processEvents();
        laps_.take(Rest);
    }

private:
    Laps& laps_;
};

class BenchWindow : public VeloCortivo {
public:
    BenchWindow(const StandardFolders& folders, EventPump& pump, Laps& laps)
        : VeloCortivo(folders, pump), laps_(laps) {}

    void refreshViewButtons() override {
        laps_.skip(); // correction of the volume; the grey images are measured apart
        VeloCortivo::refreshViewButtons();
        laps_.take(Rest);
    }
    void showLogText(const QString& html) override {
        laps_.take(Rest);
        VeloCortivo::showLogText(html);
        laps_.take(Status);
        laps_.ofMainWindow = Status;
    }
    void updateViews() override {
        laps_.skip(); // clusters
        VeloCortivo::updateViews();
        laps_.take(View);
        laps_.ofMainWindow = View;
    }

private:
    Laps& laps_;
};

/// Stands between two listeners.
class Probe : public RunListener {
public:
    explicit Probe(std::function<void(VolumeStep)> passed) : passed_(std::move(passed)) {}
    bool atStep(VolumeStep step, const VolumeAtHand&) override {
        passed_(step);
        return true;
    }

private:
    std::function<void(VolumeStep)> passed_;
};

/// One run with everything open.
class ScreenRun : public RunListener {
public:
    ScreenRun(Laps& laps, const HeadRunSize& size, bool bestVoxels)
        : laps_(laps), size_(size), bestVoxels_(bestVoxels), pump_(laps),
          beforeStep_([this](VolumeStep step) { stepBegins(step); }),
          behindRegionPlots_([this](VolumeStep step) { plotsPassed(step, RegionPlots); }),
          behindMotionPlot_([this](VolumeStep step) { plotsPassed(step, MotionPlot); }) {}
    ~ScreenRun() override { QDir::setCurrent(QDir::tempPath()); } // a run works in its folder

    /// False when it could not be measured.
    [[nodiscard]] bool execute();
    [[nodiscard]] const std::vector<Laps::Volume>& volumes() const { return volumes_; }

    void runPrepared(QtCortivoDoc& functional) override { addResponses(functional.protocol); }
    bool beforeVolume(const VolumeAtHand&) override {
        laps_.take(Rest);
        return true;
    }
    bool atStep(VolumeStep step, const VolumeAtHand&) override {
        laps_.take(partOfStep(step));
        return true;
    }
    void endOfVolume(const VolumeAtHand& hand) override;

private:
    static Part partOfStep(VolumeStep step) {
        switch (step) {
        case VolumeStep::RegionTimeCourses:
            return Sums;
        case VolumeStep::Plots:
            return ResponsePlot; // the last of those that listen
        case VolumeStep::Logs:
            return Logs;
        case VolumeStep::SelectVoxels:
            return Ranking;
        default:
            return Rest;
        }
    }
    void stepBegins(VolumeStep step) {
        if (step == VolumeStep::AfterModel)
            laps_.skip();
        else
            laps_.take(Rest);
        laps_.ofMainWindow = RegionPlotsPainted;
    }
    void plotsPassed(VolumeStep step, Part part) {
        if (step == VolumeStep::Plots)
            laps_.take(part);
    }
    static void addResponses(StimulationProtocol& protocol);
    void openWindow();
    void openAll();
    void addRegions();

    Laps& laps_;
    const HeadRunSize size_;
    const bool bestVoxels_;
    QTemporaryDir folder_;
    BenchPump pump_;
    Probe beforeStep_;
    Probe behindRegionPlots_;
    Probe behindMotionPlot_;
    std::unique_ptr<BenchWindow> window_;
    std::vector<Laps::Volume> volumes_;
};

void ScreenRun::addResponses(StimulationProtocol& protocol) {
    for (int condition = 0; condition < nrOfConditions; ++condition) {
        const int index = protocol.responseConditionIndex(QString("Response%1").arg(condition));
        for (int i = 0; i < 40; ++i) {
            const int volume = 12 * i + 4 * condition + 1;
            if (protocol.addResponseInterval(index, volume, volume))
                protocol.setResponseValues(index, volume, 400 + 37 * i % 300, 1, 0, "1");
        }
    }
    protocol.hasResponses = true;
}

void ScreenRun::openWindow() {
    StandardFolders folders;
    folders.applicationDataPath = folder_.filePath("app/");
    folders.dataPath = folder_.filePath("data/");
    folders.homePath = folder_.path() + "/";
    createStandardFolders(folders);
    window_ = std::make_unique<BenchWindow>(folders, pump_, laps_);
    (void)window_->readMasterFile();
    window_->initVars();
    window_->applyWindowSize();
    window_->show();
    RunListeners& listeners = window_->session().listeners;
    listeners.add(beforeStep_, ListenerPlace::Journal);
    listeners.add(behindRegionPlots_, ListenerPlace::Plots);
    listeners.add(*this, ListenerPlace::Player);
    window_->session().makeReader = [this](const IntakeContext& context) {
        return std::make_unique<HeadRunReader>(context.project, size_,
                                               [this] { laps_.beginVolume(); });
    };
}

bool ScreenRun::execute() {
    RunSettings settings;
    settings.MotionCorrection = true;
    settings.NrOfColumns = settings.NrOfRows = size_.tiles;
    if (!writeHeadRun(folder_.path(), size_, nrOfVolumes, nrOfConditions, settings))
        return false;
    openWindow();
    window_->setSettingsFile(settings.settingsFilePath);
    window_->timerCheckState();
    window_->slotRealTimeAnalysis();
    return volumes_.size() == nrOfMeasured;
}

void ScreenRun::addRegions() {
    constexpr QSize voxels(25, 20);
    for (int i = 0; i < 6; ++i) {
        const int left = i * 15 % (size_.columns - voxels.width() + 1);
        const int top = i * 13 % (size_.rows - voxels.height() + 1);
        (void)window_->session().regions.selectRectangle({.slice = 2 + i * (size_.slices / 7),
                                                          .left = left,
                                                          .right = left + voxels.width() - 1,
                                                          .top = top,
                                                          .bottom = top + voxels.height() - 1});
    }
}

// The expensive choices: maps of which a good part passes the threshold, on slices that change.
void ScreenRun::openAll() {
    RunSession& session = window_->session();
    session.requests.regions.BestVoxelSelection = bestVoxels_;
    addRegions();
    for (bool OperatorRequests::*log :
         {&OperatorRequests::saveRTPs, &OperatorRequests::saveROITimeCourses,
          &OperatorRequests::saveROIBetaTimeCourses})
        session.regions.setLog(log, true);
    session.changeThreshold(1.0f);
    session.changeColorCoding(true);
    session.showOnCurrentVolume();
    window_->onShowROIsAsRectanglesAndMarkedVoxels();
    auto* container = window_->findChild<TimeCoursesContainer*>();
    container->onShowTCsAndBetas();
    container->onShowAverages();
    window_->slotShowMotionPlot();
    session.listeners.add(behindMotionPlot_, ListenerPlace::Plots);
    window_->slotShowResponsePlot();
}

void ScreenRun::endOfVolume(const VolumeAtHand& hand) {
    pump_.processEvents();
    // Again, since in the loop it stands beside the correction of the volume.
    laps_.skip();
    hand.document.slices.updateSlicePixmaps(hand.document.project.volumes[size_t(hand.volume)]);
    laps_.take(GreyImages);
    if (hand.volume >= nrOfVolumes - nrOfMeasured)
        volumes_.push_back(laps_.volume());
    if (hand.volume == volumeOfRegions)
        openAll();
}

void printRow(const char* name, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("%-31s  %8.2f  %8.2f  %8.2f\n", name, times[times.size() / 2],
                times[times.size() * 99 / 100 - 1], times.back());
}

void measure(Laps& laps, const HeadRunSize& size, double budget, bool bestVoxels) {
    ScreenRun run(laps, size, bestVoxels);
    std::printf("\n%d x %d x %d, %s of the voxels in use, budget %.0f\n", size.columns, size.rows,
                size.slices, bestVoxels ? "best third" : "all", budget);
    if (!run.execute()) {
        std::printf("the run could not be measured\n");
        return;
    }
    std::vector<double> totals(nrOfMeasured);
    for (size_t part = 0; part < nrOfParts; ++part) {
        std::vector<double> times;
        for (size_t volume = 0; volume < nrOfMeasured; ++volume) {
            times.push_back(run.volumes()[volume][part]);
            totals[volume] += times.back();
        }
        printRow(partNames[part], times);
    }
    printRow("together", totals);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    Laps laps;
    const BenchApplication application(argc, argv, laps);
    std::printf("Milliseconds of processor time for a volume, the last %d of %d: median, 99 of "
                "100, longest\n",
                nrOfMeasured, nrOfVolumes);
    constexpr double budgets[] = {8.0, 10.0, 20.0};
    // A number of slices chooses one size; any other number stands for all of them.
    const int wanted = argc > 1 ? std::atoi(argv[1]) : 0;
    const bool one = std::ranges::any_of(
        headRunSizes, [wanted](const auto& size) { return size.slices == wanted; });
    for (size_t i = 0; i < std::size(headRunSizes); ++i)
        for (const bool bestVoxels : {false, true})
            if (!one || wanted == headRunSizes[i].slices)
                measure(laps, headRunSizes[i], budgets[i], bestVoxels);
    return 0;
}

// What a plug-in costs a run beside its own time: whole passes of the loop in the real window,
// offscreen, without a plug-in, with one beside the contrasts' maps, and with its map shown.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "head_run.h"
#include "processor_time.h"

#include "run/window/velo_cortivo.h"
#include "run/window/velo_cortivo_application.h"

#include <QDir>
#include <QTemporaryDir>
#include <array>
#include <cstdio>

namespace {

constexpr int nrOfVolumes = 150;
constexpr size_t nrOfMeasured = 100; ///< volumes, the last ones
constexpr int nrOfConditions = 6;    ///< with a constant and a trend eight predictors
constexpr float contrastThreshold = 3.0f;
constexpr int rounds = 3; ///< in turn, as the clock of a shared machine varies

enum class Shown { NoPlugin, Contrasts, PluginMap };

/// The host looks at the clock just before and just behind each call of the plug-in, so that the
/// time between two looks is the plug-in's own.
class LookedAtPump : public QtEventPump {
public:
    qint64 milliseconds() const override {
        const double now = threadMilliseconds();
        sinceLastLook = now - lastLook_;
        lastLook_ = now;
        return QtEventPump::milliseconds();
    }
    mutable double sinceLastLook = 0.0;

private:
    mutable double lastLook_ = 0.0;
};

struct Times {
    std::vector<double> whole;  ///< of each volume, from its samples to those of the next
    std::vector<double> plugin; ///< of its longer call
    double coloured = 0.0;      ///< part of all voxels, by the plug-in's map
};

/// One run; its listener stands directly behind the host of plug-ins.
class PluginRun : public RunListener {
public:
    PluginRun(const HeadRunSize& size, Shown shown) : size_(size), shown_(shown) {}
    ~PluginRun() override { QDir::setCurrent(QDir::tempPath()); } // a run works in its folder

    /// Adds to `times`. False when it could not be measured.
    [[nodiscard]] bool execute(const QString& pluginFolder, Times& times);

    bool atStep(VolumeStep step, const VolumeAtHand&) override {
        if (step == VolumeStep::AfterModel)
            plugin_.push_back(shown_ == Shown::NoPlugin ? 0.0 : pump_.sinceLastLook);
        return true;
    }
    void endOfVolume(const VolumeAtHand&) override { pump_.processEvents(); } // painting
    void loopEnded(QtCortivoDoc& document) override;

private:
    [[nodiscard]] bool openWindow(const QString& pluginFolder);
    [[nodiscard]] bool launchPlugin();

    const HeadRunSize size_;
    const Shown shown_;
    QTemporaryDir folder_;
    LookedAtPump pump_;
    std::unique_ptr<VeloCortivo> window_;
    std::vector<double> starts_; ///< of the passes, behind the reading of the samples
    std::vector<double> plugin_;
    double coloured_ = 0.0;
};

bool PluginRun::openWindow(const QString& pluginFolder) {
    StandardFolders folders;
    folders.applicationDataPath = folder_.filePath("app/");
    folders.dataPath = folder_.filePath("data/");
    folders.homePath = folder_.path() + "/";
    createStandardFolders(folders);
    folders.pluginsPath = pluginFolder;
    window_ = std::make_unique<VeloCortivo>(folders, pump_);
    (void)window_->readMasterFile();
    window_->initVars();
    window_->applyWindowSize();
    window_->show();
    RunSession& session = window_->session();
    session.listeners.add(*this, ListenerPlace::PlugIn);
    session.makeReader = [this](const IntakeContext& context) {
        return std::make_unique<HeadRunReader>(context.project, size_,
                                               [this] { starts_.push_back(threadMilliseconds()); });
    };
    return shown_ == Shown::NoPlugin || launchPlugin();
}

bool PluginRun::launchPlugin() {
    PluginHost& host = window_->plugins();
    const std::vector<PluginDescription>& found = host.discover().plugins;
    const auto plugin = std::ranges::find(found, "Temporal SNR", &PluginDescription::name);
    if (plugin == found.end())
        return false;
    host.launch(int(plugin - found.begin()));
    SessionPluginMaps& maps = window_->session().pluginMaps;
    maps.show(shown_ == Shown::PluginMap);
    if (shown_ == Shown::Contrasts)
        maps.setThreshold(contrastThreshold); // that of a run without a plug-in
    return host.isRunning();
}

void PluginRun::loopEnded(QtCortivoDoc& document) {
    if (shown_ != Shown::PluginMap || document.pluginMaps.NrOfPluginMaps < 1)
        return;
    const std::span<const float> map = document.pluginMaps.map(0);
    const float threshold = window_->session().requests.pluginMaps.threshold;
    const auto passing =
        std::ranges::count_if(map, [threshold](float value) { return value >= threshold; });
    coloured_ = double(passing) / double(map.size());
}

bool PluginRun::execute(const QString& pluginFolder, Times& times) {
    RunSettings settings;
    settings.MotionCorrection = settings.SpatialGaussianSmoothing = true;
    settings.NrOfColumns = settings.NrOfRows = size_.tiles;
    if (!writeHeadRun(folder_.path(), size_, nrOfVolumes, nrOfConditions, settings) ||
        !openWindow(pluginFolder))
        return false;
    window_->setSettingsFile(settings.settingsFilePath);
    window_->timerCheckState();
    window_->slotRealTimeAnalysis();
    if (starts_.size() < nrOfVolumes || plugin_.size() < nrOfVolumes)
        return false;
    times.coloured = coloured_;
    // The last volume has no next one.
    for (size_t volume = nrOfVolumes - nrOfMeasured - 1; volume + 1 < nrOfVolumes; ++volume) {
        times.whole.push_back(starts_[volume + 1] - starts_[volume]);
        times.plugin.push_back(plugin_[volume]);
    }
    return true;
}

double percentile99(std::vector<double> times) {
    std::ranges::sort(times);
    return times[times.size() * 99 / 100];
}

void measure(const HeadRunSize& size, const QString& pluginFolder) {
    constexpr std::array<const char*, 3> names{"no plug-in", "its map not shown", "its map shown"};
    std::array<Times, 3> times;
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i < times.size(); ++i) {
            const size_t shown = (i + size_t(round)) % times.size(); // each is first once
            if (!PluginRun(size, Shown(shown)).execute(pluginFolder, times[shown]))
                return void(std::printf("the run could not be measured\n"));
        }
    std::printf("\n%d x %d x %d          median  99 of 100  plug-in  the rest  more than without\n",
                size.columns, size.rows, size.slices);
    double without = 0.0;
    for (size_t i = 0; i < times.size(); ++i) {
        std::vector<double> rest;
        for (size_t volume = 0; volume < times[i].whole.size(); ++volume)
            rest.push_back(times[i].whole[volume] - times[i].plugin[volume]);
        const double restMedian = median(rest);
        without = i == 0 ? restMedian : without;
        std::printf("%-20s  %8.2f   %8.2f %8.2f  %8.2f  %17.2f\n", names[i], median(times[i].whole),
                    percentile99(times[i].whole), median(times[i].plugin), restMedian,
                    restMedian - without);
    }
    std::printf("%.0f %% of the voxels coloured by its map\n", 100.0 * times.back().coloured);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    VeloCortivoApplication application(argc, argv);
    std::printf("Milliseconds of processor time for a volume, the last %d of %d, %d runs each\n",
                int(nrOfMeasured), nrOfVolumes, rounds);
    const QString plugins = QCoreApplication::applicationDirPath() + "/../plugin_examples/";
    const int slices = argc > 1 ? std::atoi(argv[1]) : 0; // of the only size; 0 for all
    for (const HeadRunSize& size : headRunSizes)
        if (slices == 0 || slices == size.slices)
            measure(size, plugins);
    return 0;
}

// From a mosaic file's being noticed to the feedback on the subject's screen, and to its picture in
// the feedback folder, at three sizes: the real window, three regions, both displays painted.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "live_scan.h"

#include "run/window/velo_cortivo.h"
#include "run/window/velo_cortivo_application.h"

#include <QComboBox>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

namespace {

/// When the feedback of each volume was shown and written.
class FeedbackClock : public RunListener {
public:
    std::vector<BenchClock::time_point> written;

    /// Comes after the feedback.
    bool drawSubjectDisplay(const VolumeAtHand&) override {
        written.push_back(BenchClock::now());
        return false;
    }
};

void openFeedback(VeloCortivo& window) {
    window.slotShowNeurofeedbackDlg();
    if (auto* screens = window.findChild<QComboBox*>("SubjectScreenCmBx"))
        screens->setCurrentIndex(screens->findText("In a window"));
    RunSession& session = window.session();
    const VolumeSize size = session.functionalDocument->project.size();
    for (int i = 0; i < 3; ++i)
        (void)session.regions.selectRectangle({.slice = size.slices / 2 + i,
                                               .left = size.x / 3,
                                               .right = size.x / 2,
                                               .top = size.y / 3,
                                               .bottom = size.y / 2});
    session.feedback.change([](FeedbackChoices& choices) { choices.roiMode = useROI1And2And3; });
}

/// Opens the feedback when the first volume is over.
class Operator : public RunListener {
public:
    explicit Operator(VeloCortivo& window) : window_(window) {}
    void endOfVolume(const VolumeAtHand& hand) override {
        if (hand.volume == 0)
            openFeedback(window_);
    }

private:
    VeloCortivo& window_;
};

void printHistogram(const std::vector<double>& times) {
    constexpr double width = 5.0;
    const auto last = size_t(times.back() / width);
    for (auto bin = size_t(times.front() / width); bin <= last; ++bin) {
        const auto count = std::ranges::count_if(
            times, [bin](double time) { return size_t(time / width) == bin; });
        if (count > 0)
            std::printf("    %3.0f-%3.0f ms %4td\n", double(bin) * width, double(bin + 1) * width,
                        count);
    }
}

void printTimes(const char* name, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("%-28s %6zu %9.1f %9.1f %9.1f\n", name, times.size(), times[times.size() / 2],
                times[times.size() * 99 / 100], times.back());
}

void measure(int columns, int slices, int volumes) {
    QTemporaryDir folder;
    SimulationOptions options = scanOptions(folder.path(), columns, slices, volumes);
    options.motion = HeadMotion::Drift; // and its correction
    options.smoothingWidth = 5;
    const SimulatedScan scan(options);
    if (!prepareScan(scan)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return;
    }
    StandardFolders folders;
    folders.applicationDataPath = folder.filePath("app/");
    folders.dataPath = folder.filePath("data/");
    folders.homePath = folder.path() + "/";
    createStandardFolders(folders);
    NoticingPump pump;
    VeloCortivo window(folders, pump);
    (void)window.readMasterFile();
    window.initVars();
    window.applyWindowSize();
    window.show();
    FeedbackClock clock;
    Operator hand(window);
    RunListeners& listeners = window.session().listeners;
    listeners.add(clock, ListenerPlace::Decoder);
    listeners.add(hand, ListenerPlace::Player);
    window.setSettingsFile(folder.filePath(scan.options().name + "-1.vco"));
    window.timerCheckState();
    {
        const ScannerThread scanner(scan, 400);
        window.slotRealTimeAnalysis();
    }
    // The first file is noticed once more, for the first volume. Feedback begins a little later.
    std::vector<double> times;
    const size_t behind = pump.noticed.size() - clock.written.size();
    for (size_t i = size_t(firstLiveVolume); i < clock.written.size(); ++i)
        times.push_back(millisecondsBetween(pump.noticed[i + behind], clock.written[i]));
    if (times.empty())
        return;
    const QString name = QStringLiteral("%1x%1x%2").arg(columns).arg(slices);
    printTimes(qPrintable(name), times);
    std::ranges::sort(times);
    printHistogram(times);
    QDir::setCurrent(QDir::tempPath());
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    VeloCortivoApplication application(argc, argv);
    const int volumes = argc > 1 ? std::atoi(argv[1]) : 112;
    std::printf("file noticed to feedback shown and in the folder, settling of 30 ms included\n"
                "size                          files    median 99 of 100   longest  (ms)\n");
    measure(64, 25, volumes);
    measure(74, 36, volumes);
    measure(104, 72, volumes);
    return 0;
}

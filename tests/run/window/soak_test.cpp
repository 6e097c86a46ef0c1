// Many runs in one process, with all that an operator does between them: nothing may grow.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/velo_cortivo.h"

#include "run/window/message_boxes.h"
#include "scanner_simulator/simulated_scan.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGroupBox>
#include <QMenuBar>
#include <QMessageBox>
#include <QPixmapCache>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <malloc.h>
#include <numeric>

namespace {

struct SoakSize {
    int runs;
    int volumes;
    int matrix;
    int slices;
};

// The trial is the soak as it is meant, some minutes long in a release build; the test finds what
// grows with each run.
bool isTrial() {
    return qEnvironmentVariableIsSet("VELO_TRIAL_SOAK");
}

SoakSize soakSize() {
    return isTrial() ? SoakSize{60, 600, 64, 25} : SoakSize{8, 30, 24, 6};
}

/// Real events and folders, but each wait passes at once.
class HastyPump : public QtEventPump {
public:
    void pumpWait(int milliseconds) override {
        processEvents();
        skipped_ += milliseconds;
    }
    bool pumpWaitForChange(int milliseconds, const QStringList& folders) override {
        skipped_ += milliseconds;
        return QtEventPump::pumpWaitForChange(0, folders);
    }
    [[nodiscard]] qint64 milliseconds() const override {
        return QtEventPump::milliseconds() + skipped_;
    }

private:
    qint64 skipped_ = 0;
};

/// Closes each box as it appears.
class BoxCloser : public QObject {
public:
    BoxCloser() { qApp->installEventFilter(this); }
    QStringList texts;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (auto* box = qobject_cast<QMessageBox*>(watched); box && event->type() == QEvent::Show) {
            texts << box->text();
            QMetaObject::invokeMethod(box, &QDialog::reject, Qt::QueuedConnection);
        }
        return false;
    }
};

/// Takes the processor time of each volume, from the end of the one before to its own, and lets the
/// operator act in the middle of the run.
class SoakListener : public RunListener {
public:
    explicit SoakListener(RunListeners& listeners) { listeners.add(*this, ListenerPlace::Dialogs); }
    std::function<void(int volume)> whileRecording;
    std::vector<double> milliseconds;

    void endOfVolume(const VolumeAtHand& hand) override {
        const double now = double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
        if (hand.volume > 0)
            milliseconds.push_back(now - latest_);
        whileRecording(hand.volume);
        latest_ = double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
    }

private:
    double latest_ = 0;
};

/// What the process holds.
struct Holdings {
    qint64 residentKilobytes = 0;
    qint64 heapBytes = 0; ///< in use; 0 with a sanitizer's allocator
    qsizetype files = 0;
    qsizetype threads = 0;
};

Holdings holdingsNow() {
    Holdings now;
    QFile status("/proc/self/status");
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            now.residentKilobytes = line.mid(6).simplified().split(' ')[0].toLongLong();
    QPixmapCache::clear(); // it has a limit of its own
    const auto heap = mallinfo2();
    now.heapBytes = qint64(heap.uordblks + heap.hblkhd);
    const auto count = [](const char* folder) {
        return QDir(folder)
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    };
    now.files = count("/proc/self/fd");
    now.threads = count("/proc/self/task");
    return now;
}

class Soak : public testing::Test {
protected:
    Soak() {
        SimulationOptions options;
        options.folder = folder_.path();
        options.sizeX = options.sizeY = size_.matrix;
        options.nrOfSlices = size_.slices;
        options.nrOfVolumes = size_.volumes;
        options.nrOfVolumesToSkip = 0;
        options.blockLength = 5;
        options.motion = HeadMotion::Drift;
        const SimulatedScan scan(options);
        EXPECT_TRUE(scan.writeSettings() && scan.writeProtocol());
        for (int volume = 0; volume < size_.volumes; ++volume)
            EXPECT_TRUE(scan.writeVolume(volume, scan.watchFolder()));
        writeOtherSettings();

        boxes_.isModeless = [this](MessageLevel level) {
            return window_ && window_->session().messagesAreModeless(level);
        };
        installMessageHandler(&boxes_);
        StandardFolders folders;
        folders.applicationDataPath = folder_.filePath("app/");
        folders.dataPath = folder_.filePath("data/");
        folders.homePath = folder_.path() + "/";
        EXPECT_TRUE(QDir().mkpath(folders.applicationDataPath));
        window_ = std::make_unique<VeloCortivo>(folders, pump_);
        EXPECT_TRUE(window_->readMasterFile());
        window_->initVars();
        window_->applyWindowSize();
        window_->show();
        listener_ = std::make_unique<SoakListener>(window_->session().listeners);
        listener_->whileRecording = [this](int volume) { actWhileRecording(volume); };
    }
    ~Soak() override {
        QDir::setCurrent(QDir::tempPath()); // a run works in its target folder
        listener_.reset();
        window_.reset();
        installMessageHandler(nullptr);
    }

    /// The second file is the first one with smoothing and without motion correction.
    void writeOtherSettings() {
        QFile first(folder_.filePath("Simulation-1.vco"));
        QFile second(folder_.filePath("Simulation-2.vco"));
        ASSERT_TRUE(first.open(QIODevice::ReadOnly) && second.open(QIODevice::WriteOnly));
        QByteArray text = first.readAll();
        for (const auto& [key, from, to] : {std::tuple{"\nMotionCorrection:", '1', '0'},
                                            std::tuple{"\nSpatialGaussianSmoothing:", '0', '1'}}) {
            const qsizetype value = text.indexOf(from, text.indexOf(key));
            ASSERT_LT(value - text.indexOf(key), 60);
            text[value] = to;
        }
        second.write(text);
    }
    template<typename Widget = QAbstractButton> Widget& control(const char* name) {
        return *window_->findChild<Widget*>(name);
    }
    /// Lets the program come to rest as it does between two clicks: what is to be deleted goes in
    /// an event loop only.
    static void rest() {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
        loop.exec();
    }
    void actWhileRecording(int volume) {
        RunSession& session = window_->session();
        if (volume == size_.volumes / 3) {
            session.stepThreshold(volume % 2 == 0);
            session.changeClusterSize(4 + run_ % 3);
            window_->slotShowAboutDlg();
        }
        if (volume == size_.volumes / 2) {
            closeDialogs();
            session.showOnCurrentVolume();
            session.changeColorCoding(run_ % 2 == 0);
        }
        if (volume == size_.volumes / 2 && isStopped_)
            session.requestStop();
    }
    void closeDialogs() {
        for (QDialog* dialog : window_->findChildren<QDialog*>())
            dialog->reject();
    }
    void record(bool isStopped) {
        isStopped_ = isStopped;
        window_->setSettingsFile(
            folder_.filePath(run_ % 5 < 2 ? "Simulation-2.vco" : "Simulation-1.vco"));
        window_->timerCheckState();
        window_->slotRealTimeAnalysis();
        RunSession& session = window_->session();
        EXPECT_TRUE(session.report.savedCompletely);
        EXPECT_EQ(session.report.currentVolume + 1,
                  isStopped ? size_.volumes / 2 + 1 : size_.volumes);
        rest();
    }
    void postprocess() {
        window_->slotPostProcessData();
        control<QGroupBox>("m_TemporalFilters").setChecked(true);
        control("OkBtn").click();
        EXPECT_TRUE(window_->session().report.outcomeText.contains("_THPGLMF2c"));
        rest();
    }
    /// The dialogs of recovery and replay belong here as well.
    void openAndCloseDialogs() {
        window_->slotShowAboutDlg();
        window_->slotShowLicenseInfoDlg();
        window_->slotPostProcessData();
        rest();
        EXPECT_EQ(window_->findChildren<QDialog*>().size(), 3);
        closeDialogs();
        for (QMenu* menu : control<QMenuBar>("MenuBar").findChildren<QMenu*>()) {
            menu->popup({});
            rest();
            menu->close();
        }
        window_->slotSwitchWindowSize();
        rest();
        window_->slotSwitchWindowSize();
        rest();
    }
    /// All that happens from one run to the next; what the process holds with a whole run in
    /// memory.
    Holdings round() {
        if (run_ % 4 == 3)
            record(true);
        record(false);
        const Holdings held = holdingsNow();
        if (run_ % 2 == 1) {
            EXPECT_TRUE(window_->session().reloadData());
        }
        if (run_ % 3 == 1)
            postprocess();
        openAndCloseDialogs();
        ++run_;
        return held;
    }

    const SoakSize size_ = soakSize();
    QTemporaryDir folder_;
    HastyPump pump_;
    MessageBoxes boxes_;
    BoxCloser closer_;
    std::unique_ptr<VeloCortivo> window_;
    std::unique_ptr<SoakListener> listener_;
    int run_ = 0;
    bool isStopped_ = false;
};

/// Mean and 99th percentile.
std::pair<double, double> summary(std::vector<double> values) {
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
    const auto high = values.begin() + ptrdiff_t(values.size() * 99 / 100);
    std::nth_element(values.begin(), high, values.end());
    return {mean, *high};
}

} // namespace

TEST_F(Soak, NothingGrowsFromRunToRun) {
    Holdings third;
    std::pair<double, double> firstTimes;
    std::pair<double, double> latestTimes;
    for (int run = 1; run <= size_.runs; ++run) {
        const Holdings held = round();
        if (run == 3)
            third = held;
        if (run % 5 == 0) {
            latestTimes = summary(std::exchange(listener_->milliseconds, {}));
            if (run == 5)
                firstTimes = latestTimes;
        }
        std::printf("run %2d: resident %7lld kB, heap %9lld B, files %lld, threads %lld, "
                    "volume %.2f ms, 99 of 100 %.2f ms\n",
                    run, held.residentKilobytes, held.heapBytes, held.files, held.threads,
                    latestTimes.first, latestTimes.second);
        std::fflush(stdout);
        if (run <= 3)
            continue;
        EXPECT_EQ(held.files, third.files);
        EXPECT_EQ(held.threads, third.threads);
        // A sanitizer keeps what was freed for a while, so in the test the heap decides.
        if (isTrial()) {
            EXPECT_LT(held.residentKilobytes - third.residentKilobytes, 5 << 10);
        }
        // Beside what Qt keeps of each window that was open.
        EXPECT_LT(held.heapBytes - third.heapBytes, (80 + 4 * run) << 10);
    }
    for (const QString& text : closer_.texts)
        EXPECT_EQ(text, "RECORDING INTERRUPTED BY USER");
}

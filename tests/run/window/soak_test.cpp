// Many runs in one process, with all that an operator does between them: nothing may grow.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/main_window.h"

#include "run/settings/settings_file.h"
#include "run/window/message_boxes.h"
#include "scanner_simulator/simulated_scan.h"

#include <QEventLoop>
#include <QFile>
#include <QGroupBox>
#include <QPixmapCache>
#include <QTimer>
#include <algorithm>
#include <ctime>
#include <malloc.h>

namespace {

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

/// What the process holds.
struct Holdings {
    qint64 residentKilobytes = 0;
    qint64 heapBytes = 0; ///< in use; 0 with a sanitizer's allocator
    qsizetype files = 0;
    qsizetype threads = 0;
};

Holdings holdingsNow() {
    QFile memory("/proc/self/statm");
    EXPECT_TRUE(memory.open(QIODevice::ReadOnly));
    QPixmapCache::clear(); // it has a limit of its own
    const auto heap = mallinfo2();
    const auto count = [](const char* folder) {
        return QDir(folder)
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    };
    return {memory.readAll().split(' ')[1].toLongLong() * (sysconf(_SC_PAGESIZE) >> 10),
            qint64(heap.uordblks + heap.hblkhd), count("/proc/self/fd"), count("/proc/self/task")};
}

double processorMilliseconds() {
    return double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
}

class Soak : public MainWindow, public RunListener {
protected:
    Soak() {
        options_.folder = home_.path();
        options_.nrOfVolumesToSkip = 0;
        options_.blockLength = 5;
        options_.motion = HeadMotion::Drift;
        if (isTrial_) {
            options_.nrOfVolumes = 600;
        } else {
            options_.sizeX = options_.sizeY = 24;
            options_.nrOfSlices = 6;
            options_.nrOfVolumes = 30;
        }
        const SimulatedScan scan(options_);
        EXPECT_TRUE(scan.writeSettings() && scan.writeProtocol());
        for (int volume = 0; volume < options_.nrOfVolumes; ++volume)
            EXPECT_TRUE(scan.writeVolume(volume, scan.watchFolder()));
        RunSettings second;
        second.settingsFilePath = home_.filePath("Simulation-1.vco");
        EXPECT_TRUE(readSettingsFile(second, SettingsUse::Inspection, {}));
        second.settingsFilePath = home_.filePath("Simulation-2.vco");
        second.MotionCorrection = false;
        second.SpatialGaussianSmoothing = true;
        EXPECT_TRUE(writeSettingsFile(second));
        messages_.acceptAnything();
        open(hastyPump_);
        window_->session().listeners.add(*this, ListenerPlace::Dialogs);
    }
    ~Soak() override {
        QDir::setCurrent(QDir::tempPath()); // a run works in its target folder
        window_.reset();
    }

    void endOfVolume(const VolumeAtHand& hand) override {
        const double now = processorMilliseconds();
        if (hand.volume > 0)
            milliseconds_.push_back(now - latest_);
        RunSession& session = window_->session();
        if (hand.volume == options_.nrOfVolumes / 3) {
            session.stepThreshold(hand.volume % 2 == 0);
            session.changeClusterSize(4 + run_ % 3);
            window_->slotShowAboutDlg();
        }
        if (hand.volume == options_.nrOfVolumes / 2) {
            closeDialogs();
            session.showOnCurrentVolume();
            session.changeColorCoding(run_ % 2 == 0);
            if (isStopped_)
                session.requestStop();
        }
        latest_ = processorMilliseconds();
    }
    /// Lets the program come to rest as it does between two clicks: what is to be deleted goes in
    /// an event loop only.
    static void rest() {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
        loop.exec();
    }
    void closeDialogs() {
        for (QDialog* dialog : window_->findChildren<QDialog*>())
            dialog->reject();
    }
    void record(bool isStopped) {
        isStopped_ = isStopped;
        const char* settings = run_ % 5 < 2 ? "Simulation-2.vco" : "Simulation-1.vco";
        window_->setSettingsFile(home_.filePath(settings));
        window_->timerCheckState();
        window_->slotRealTimeAnalysis();
        const RunReport& report = window_->session().report;
        EXPECT_TRUE(report.savedCompletely);
        EXPECT_EQ(report.currentVolume,
                  isStopped ? options_.nrOfVolumes / 2 : options_.nrOfVolumes - 1);
        rest();
    }
    void postprocess() {
        window_->slotPostProcessData();
        control<QGroupBox>("m_TemporalFilters").setChecked(true);
        choose("OkBtn");
        EXPECT_TRUE(window_->session().report.outcomeText.contains("_THPGLMF2c"));
        rest();
    }
    void openAndCloseDialogs() {
        window_->slotShowAboutDlg();
        window_->slotShowLicenseInfoDlg();
        for (const char* entry : {"Post-Processing...", "Recover Run...", "Replay Run..."})
            choose(entry);
        MessageBoxes().showModeless(MessageLevel::Warning, "A box");
        rest();
        EXPECT_EQ(window_->findChildren<QDialog*>().size(), 6);
        closeDialogs();
        for (QMenu* menu : control<QMenuBar>("MenuBar").findChildren<QMenu*>()) {
            menu->popup({});
            rest();
            menu->close();
        }
        for (int size = 0; size < 2; ++size) {
            window_->slotSwitchWindowSize();
            rest();
        }
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
        return held;
    }
    /// The processor time that so many of 100 volumes of the latest round keep to.
    double timeOf(size_t percent) {
        const auto bound = milliseconds_.begin() + ptrdiff_t(milliseconds_.size() * percent / 100);
        std::nth_element(milliseconds_.begin(), bound, milliseconds_.end());
        return *bound;
    }

    // The trial is the soak as it is meant, some minutes long in a release build; the test finds
    // what grows with each run.
    const bool isTrial_ = qEnvironmentVariableIsSet("VELO_TRIAL_SOAK");
    SimulationOptions options_;
    HastyPump hastyPump_;
    int run_ = 0;
    bool isStopped_ = false;
    double latest_ = 0;
    std::vector<double> milliseconds_;
};

} // namespace

TEST_F(Soak, NothingGrowsFromRunToRun) {
    Holdings third;
    for (; run_ < (isTrial_ ? 60 : 8); ++run_) {
        const Holdings held = round();
        std::printf("run %2d: resident %7lld kB, heap %9lld B, files %lld, threads %lld, "
                    "half of the volumes %.2f ms, 99 of 100 %.2f ms\n",
                    run_ + 1, held.residentKilobytes, held.heapBytes, held.files, held.threads,
                    timeOf(50), timeOf(99));
        milliseconds_.clear();
        if (run_ <= 2) {
            third = held;
            continue;
        }
        EXPECT_EQ(held.files, third.files);
        EXPECT_EQ(held.threads, third.threads);
        // A sanitizer keeps what was freed for a while, so in the test the heap decides.
        if (isTrial_) {
            EXPECT_LT(held.residentKilobytes - third.residentKilobytes, 5 << 10);
        }
        // Beside what Qt keeps of each window that was open.
        EXPECT_LT(held.heapBytes - third.heapBytes, (84 + 4 * run_) << 10);
    }
    for (const QString& text : messages_.shown())
        EXPECT_EQ(text, "RECORDING INTERRUPTED BY USER");
}

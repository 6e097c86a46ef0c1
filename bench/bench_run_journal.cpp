// What the journal costs a run at its largest size: the loop's own time with and without it, and
// with a disk that takes half of the data only. The volumes come at the TR.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor_time.h"
#include "silent_display.h"

#include "intake/volume_reader.h"
#include "run/session/run_session.h"
#include "run/settings/settings_file.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <numeric>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int matrix = 104;
constexpr int slices = 72;
constexpr size_t volumeBytes = size_t(matrix) * matrix * slices * sizeof(int16_t);

enum class Disk { None, Real, HalfTheDataRate };

/// A moment on both clocks.
struct Moment {
    Clock::time_point wall;
    double processor = 0.0;
};

Moment now() {
    return {Clock::now(), threadMilliseconds()};
}

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Noise of tissue, each volume at its time.
class PacedReader : public VolumeReader {
public:
    PacedReader(const IntakeContext& context, std::chrono::milliseconds interval, Moment& hasRead)
        : project_(context.project), interval_(interval), hasRead_(hasRead) {}

    bool readFirstVolume() override {
        fill(project_.firstVolume.span());
        return true;
    }
    bool readVolume(int volume) override {
        if (volume == 0)
            start_ = Clock::now();
        std::this_thread::sleep_until(start_ + volume * interval_);
        fill(project_.volumes[size_t(volume)]);
        hasRead_ = now();
        return true;
    }

private:
    void fill(std::span<int16_t> samples) {
        for (int16_t& sample : samples) {
            random_ = random_ * 1664525u + 1013904223u;
            sample = int16_t(500 + (random_ >> 22));
        }
    }
    FMRProject& project_;
    std::chrono::milliseconds interval_;
    Moment& hasRead_;
    Clock::time_point start_;
    uint32_t random_ = 1;
};

/// Writes into a file, but no faster than a rate.
class SlowDisk : public JournalOutput {
public:
    SlowDisk(std::unique_ptr<JournalOutput> file, double bytesPerMillisecond)
        : file_(std::move(file)), bytesPerMillisecond_(bytesPerMillisecond) {}
    bool write(std::span<const uint8_t> bytes) override {
        const std::chrono::duration<double, std::milli> time(double(bytes.size()) /
                                                             bytesPerMillisecond_);
        std::this_thread::sleep_for(time);
        return file_->write(bytes);
    }
    bool forceOut() override { return file_->forceOut(); }

private:
    std::unique_ptr<JournalOutput> file_;
    double bytesPerMillisecond_;
};

struct Times {
    std::vector<double> hook;      ///< of the journal, before each volume
    std::vector<double> processor; ///< the same as processor time of the loop's thread
    std::vector<double> step;      ///< of the whole volume, once it has been read
    int firstWarning = -1;         ///< the volume at which the journal ended
};

/// Called just after the journal, and at the end of a volume.
class Probe : public RunListener {
public:
    Probe(RunSession& session, const Moment& hasRead, Times& times)
        : hasRead_(hasRead), times_(times) {
        session.listeners.add(*this, ListenerPlace::Journal);
    }
    [[nodiscard]] bool beforeVolume(const VolumeAtHand&) override {
        times_.processor.push_back(threadMilliseconds() - hasRead_.processor);
        times_.hook.push_back(millisecondsSince(hasRead_.wall));
        return true;
    }
    void endOfVolume(const VolumeAtHand&) override {
        times_.step.push_back(millisecondsSince(hasRead_.wall));
    }

private:
    const Moment& hasRead_;
    Times& times_;
};

struct WarningCounter : UnattendedMessages {
    explicit WarningCounter(Times& t) : times(t), previous(installMessageHandler(this)) {}
    ~WarningCounter() override { installMessageHandler(previous); }
    WarningCounter(const WarningCounter&) = delete;
    WarningCounter& operator=(const WarningCounter&) = delete;
    void showModeless(MessageLevel, const QString&) override {
        if (times.firstWarning < 0)
            times.firstWarning = int(times.hook.size());
    }
    Times& times;
    MessageHandler* previous;
};

bool writeSession(const QString& folder, int volumes, RunSettings& settings) {
    settings.settingsFilePath = folder + "/bench-1.vco";
    settings.settingsFileDir = folder + "/";
    settings.WatchFolder = folder + "/incoming/";
    settings.TargetFolder = folder + "/results/";
    settings.DataType = "SIEMENS_DICOM_MOSAIC";
    settings.FirstFileName = "001_000001_000001.dcm";
    settings.DicomNameDelimiter = "_";
    settings.MatrixSizeX = settings.MatrixSizeY = matrix;
    settings.MosaicResolutionX = settings.MosaicResolutionY = matrix * 9;
    settings.NrOfSlices = slices;
    settings.NrOfVolumes = volumes;
    settings.NrOfVolumesToSkip = 0;
    settings.ProjectName = "bench";
    settings.SlicePrefix = "bench-";
    settings.MotionCorrection = false;
    settings.StimulationProtocol = folder + "/bench.prt";
    QFile protocol(settings.StimulationProtocol);
    return protocol.open(QIODevice::WriteOnly) &&
           protocol.write("FileVersion: 2\nResolutionOfTime: Volumes\nExperiment: Bench\n"
                          "BackgroundColor: 0 0 0\nTextColor: 255 255 255\n"
                          "TimeCourseColor: 255 255 255\nTimeCourseThick: 3\n"
                          "ReferenceFuncColor: 80 80 80\nReferenceFuncThick: 2\n"
                          "NrOfConditions: 2\n\nRest\n2\n1 10\n21 30\nColor: 100 100 100\n"
                          "\nTask\n2\n11 20\n31 40\nColor: 255 0 0\n") > 0 &&
           writeSettingsFile(settings);
}

bool measure(const QString& folder, Disk disk, int volumes, std::chrono::milliseconds interval,
             Times& times) {
    QtEventPump pump;
    SilentDisplay display;
    RunSession session(pump, display);
    const WarningCounter warnings(times);
    if (!writeSession(folder, volumes, session.settings))
        return false;
    if (disk == Disk::None)
        session.journal.createOutput = [](const QString&) { return nullptr; };
    if (disk == Disk::HalfTheDataRate)
        session.journal.createOutput = [&](const QString& path) {
            return std::make_unique<SlowDisk>(createJournalFile(path),
                                              double(volumeBytes) / double(interval.count()) / 2);
        };
    Moment hasRead;
    session.makeReader = [&](const IntakeContext& context) {
        return std::make_unique<PacedReader>(context, interval, hasRead);
    };
    const Probe probe(session, hasRead, times);
    session.runButtonPressed();
    return session.report.savedCompletely;
}

void print(const char* name, const Times& times, bool good) {
    std::printf("%-22s", name);
    for (std::vector<double> values : {times.hook, times.processor, times.step}) {
        std::ranges::sort(values);
        std::printf("  %9.3f  %9.3f  %9.3f",
                    std::accumulate(values.begin(), values.end(), 0.0) / double(values.size()),
                    values[values.size() * 99 / 100], values.back());
    }
    std::printf("  %8d%s\n", times.firstWarning, good ? "" : "  FAILED");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const int volumes = argc > 1 ? std::atoi(argv[1]) : 120;
    const std::chrono::milliseconds interval(argc > 2 ? std::atoi(argv[2]) : 500);
    const QTemporaryDir folder(QFileInfo(QString::fromLocal8Bit(argv[0])).absolutePath() +
                               "/bench_run_journal_XXXXXX");
    std::printf("%d volumes of %d x %d x %d, one every %d ms; milliseconds of wall time\n"
                "disk of the journal     hook mean     99/100    longest  processor     99/100    "
                "longest  step mean     99/100    longest  ended at volume\n",
                volumes, matrix, matrix, slices, int(interval.count()));
    for (const auto& [disk, name] : {std::pair{Disk::None, "none"},
                                     {Disk::Real, "of this computer"},
                                     {Disk::HalfTheDataRate, "half the data rate"}}) {
        Times times;
        const bool good = measure(folder.path(), disk, volumes, interval, times);
        print(name, times, good);
    }
    return 0;
}

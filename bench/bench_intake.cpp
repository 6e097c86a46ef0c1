// Cost of reading a volume, without the settling time, and of waiting for a file.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"
#include "scanner_simulator/mosaic_image.h"
#include "scanner_simulator/simulated_scan.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <sys/resource.h>

namespace {

// Time passes only in waits, so that only work is measured.
class ImpatientPump : public EventPump {
public:
    void processEvents() override {}
    void pumpWait(int milliseconds) override { now_ += milliseconds; }
    [[nodiscard]] qint64 milliseconds() const override { return now_; }

private:
    qint64 now_ = 0;
};

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// A folder with the mosaics of a short run, and what a reader of it needs.
struct MosaicFolder {
    MosaicFolder(int columns, int slices, int volumes) {
        SimulationOptions options;
        options.folder = folder.path();
        options.sizeX = options.sizeY = columns;
        options.nrOfSlices = slices;
        options.nrOfVolumes = volumes;
        options.nrOfVolumesToSkip = 0;
        const SimulatedScan scan(options);
        usable = QDir().mkpath(scan.watchFolder());
        for (int volume = 0; volume < volumes; ++volume)
            usable = usable && scan.writeVolume(volume, scan.watchFolder());
        settings.documentDataType = "SIEMENS_DICOM_MOSAIC";
        const FileNaming naming = fileNaming(options);
        settings.dicomFilePrefix = naming.prefix;
        settings.DicomNameDelimiter = naming.delimiter;
        settings.DicomNameExtension = naming.extension;
        settings.dicomImageNumberWidth = naming.width;
        settings.DicomFirstVolumeNr = naming.firstVolumeNr;
        settings.DicomFirstImageNr = naming.firstImageNr;
        settings.MatrixSizeX = settings.MatrixSizeY = columns;
        settings.NrOfSlices = project.NrOfSlices = slices;
        settings.NrOfVolumesToSkip = 0;
        settings.MosaicResolutionX = settings.SiemensMosaicResolution =
            mosaicColumns(scan.geometry());
        settings.MosaicResolutionY = mosaicRows(scan.geometry());
        state.watchFolder = scan.watchFolder();
        project.ResolutionX = project.ResolutionY = columns;
        project.NrOfVolumes = volumes;
        usable = usable && project.allocateVolumes();
    }

    QTemporaryDir folder;
    RunSettings settings;
    FMRProject project;
    IntakeState state;
    bool usable = false;
};

void measureReading(int columns, int slices) {
    constexpr int volumes = 41;
    MosaicFolder mosaics(columns, slices, volumes);
    ImpatientPump pump;
    const auto reader = makeVolumeReader({mosaics.settings, mosaics.project, mosaics.state, pump});
    std::vector<double> times;
    for (int volume = 0; volume < volumes && mosaics.usable; ++volume) {
        const auto start = std::chrono::steady_clock::now();
        if (!reader->readVolume(volume))
            return;
        const std::chrono::duration<double, std::milli> spent =
            std::chrono::steady_clock::now() - start;
        times.push_back(spent.count());
    }
    if (times.empty())
        return;
    std::sort(times.begin(), times.end());
    std::printf("%4dx%3dx%2d %10.2f %10.2f\n", columns, columns, slices, times[times.size() / 2],
                times.back());
}

// A file that never comes: the wait ends with the time-out.
void measureWaiting() {
    MosaicFolder mosaics(64, 25, 0);
    mosaics.project.NrOfVolumes = 1;
    mosaics.settings.timeOutMilliseconds = 5000;
    if (!mosaics.usable || !mosaics.project.allocateVolumes())
        return;
    QtEventPump pump;
    const auto reader = makeVolumeReader({mosaics.settings, mosaics.project, mosaics.state, pump});
    const StopWatch watch(pump);
    const double before = processorSeconds();
    if (reader->readVolume(0))
        return;
    std::printf("\nwaiting: %.2f %% of a core over %.1f s\n",
                (processorSeconds() - before) / (double(watch.elapsed()) * 1e-5),
                double(watch.elapsed()) * 1e-3);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    std::printf("reading a mosaic from the page cache, milliseconds\n"
                "size            median    longest\n");
    measureReading(64, 25);
    measureReading(74, 36);
    measureReading(104, 72);
    measureWaiting();
    return 0;
}

// Whole runs through the loop at the three sizes: time of a volume early and late, and memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "silent_display.h"

#include "intake/volume_reader.h"
#include "run/session/run_session.h"
#include "run/settings/settings_file.h"
#include "volume/head_volume.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <clocale>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>

namespace {

/// Processor time, so that other programs don't count.
double milliseconds() {
    return double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
}

struct Size {
    int columns;
    int rows;
    int slices;
    int tiles; ///< in a row of the mosaic
    float pixelMillimetres;
    float sliceMillimetres;
    double budgetMilliseconds; ///< of a volume, with motion correction and smoothing
};

double megabytes(size_t bytes) {
    return double(bytes) / (1 << 20);
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

// Supplies volumes of a head that moves to and fro, in negligible time. The air is as bright as
// tissue, so that every voxel is inside the mask.
class BenchmarkReader : public VolumeReader {
public:
    BenchmarkReader(const IntakeContext& context, const Size& size, std::vector<double>& starts)
        : project_(context.project), starts_(starts) {
        project_.pixelSizeX = project_.pixelSizeY = size.pixelMillimetres;
        project_.sliceThickness = size.sliceMillimetres;
        const VolumeGrid grid(project_);
        const HeadVolume head(grid);
        for (unsigned i = 0; i < nrOfPlaces; ++i) {
            std::vector<int16_t>& samples = heads_.emplace_back(grid.samples());
            const float part = float(i) / nrOfPlaces;
            head.fill(
                {0.5f * part, -0.3f * part, 0.4f * part, 0.5f * part, -0.2f * part, 0.3f * part},
                10.0, i, samples);
            for (int16_t& sample : samples)
                sample = int16_t(sample + 300);
        }
    }
    bool readFirstVolume() override {
        fill(project_.firstVolume.span(), 0);
        return true;
    }
    bool readVolume(int volume) override {
        fill(project_.volumes[size_t(volume)], volume);
        starts_.push_back(milliseconds());
        return true;
    }

private:
    static constexpr int nrOfPlaces = 16;

    void fill(std::span<int16_t> volume, int index) {
        const int place = index % (2 * nrOfPlaces);
        std::ranges::copy(heads_[size_t(std::min(place, 2 * nrOfPlaces - 1 - place))],
                          volume.data());
    }

    FMRProject& project_;
    std::vector<double>& starts_;
    std::vector<std::vector<int16_t>> heads_;
};

// Records the time of each volume's last action: the update of the views, or the status text.
class BenchmarkDisplay : public SilentDisplay {
public:
    std::vector<double> ends;

    void showLogText(const QString&) override { ends.push_back(milliseconds()); }
    void updateViews() override { ends.back() = milliseconds(); }
};

QString protocolText() {
    QString text = "FileVersion: 2\nResolutionOfTime: Volumes\nExperiment: Bench\n"
                   "BackgroundColor: 0 0 0\nTextColor: 255 255 255\nTimeCourseColor: 255 255 255\n"
                   "TimeCourseThick: 3\nReferenceFuncColor: 80 80 80\nReferenceFuncThick: 2\n"
                   "NrOfConditions: 7\n";
    // Six conditions besides the baseline, a constant and a trend: eight predictors.
    for (int condition = 0; condition < 7; ++condition) {
        text += QString("\nCondition%1\n8\n").arg(condition);
        for (int block = 0; block < 8; ++block)
            text += QString("%1 %2\n")
                        .arg(block * 28 + condition * 4 + 1)
                        .arg(block * 28 + condition * 4 + 4);
        text += "Color: 200 100 50\n";
    }
    return text;
}

QString contrastText() {
    return "FileVersion: 3\nNrOfContrasts: 3\nNrOfValues: 7\nBaselineInContrasts: 1\n"
           "BaselinePosInProtocol: 1\nContrastNames:\n\"one\"\n\"two\"\n\"three\"\n"
           "ContrastVectors:\n-1 1 0 0 0 0 0\n-1 0 1 0 0 0 0\n0 0 0 1 -1 0 0\n"
           "InitialSelectionState:\n3\n3\n3\nContrastColors:\n255 0 0\n0 255 0\n0 0 255\n";
}

bool writeText(const QString& path, const QString& text) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

bool writeSession(const QString& folder, const Size& size, int volumes, bool preprocessing,
                  RunSettings& settings) {
    settings.settingsFilePath = folder + "/bench-1.vco";
    settings.settingsFileDir = folder + "/";
    settings.WatchFolder = folder + "/incoming/";
    settings.TargetFolder = folder + "/results/";
    settings.DataType = "SIEMENS_DICOM_MOSAIC";
    settings.FirstFileName = "001_000001_000001.dcm";
    settings.DicomNameDelimiter = "_";
    settings.MatrixSizeX = size.columns;
    settings.MatrixSizeY = size.rows;
    settings.MosaicResolutionX = size.columns * size.tiles;
    settings.MosaicResolutionY = size.rows * size.tiles;
    settings.NrOfSlices = size.slices;
    settings.NrOfVolumes = volumes;
    settings.NrOfVolumesToSkip = 0;
    settings.ProjectName = "bench";
    settings.SlicePrefix = "bench-";
    settings.MotionCorrection = preprocessing;
    settings.SpatialGaussianSmoothing = preprocessing;
    settings.SpatialSmoothingFWHM = 5.0f;
    settings.StimulationProtocol = folder + "/bench.prt";
    settings.ContrastFile = folder + "/bench.ctr";
    return writeText(settings.StimulationProtocol, protocolText()) &&
           writeText(settings.ContrastFile, contrastText()) && writeSettingsFile(settings);
}

double medianAround(const std::vector<double>& times, size_t centre) {
    std::vector<double> near(times.begin() + ptrdiff_t(centre - 9),
                             times.begin() + ptrdiff_t(centre + 9));
    std::nth_element(near.begin(), near.begin() + 9, near.end());
    return near[9];
}

void measure(const Size& size, int volumes, bool preprocessing) {
    QTemporaryDir folder;
    QtEventPump pump;
    BenchmarkDisplay display;
    RunSession session(pump, display);
    std::vector<double> starts;
    session.makeReader = [&](const IntakeContext& context) {
        return std::make_unique<BenchmarkReader>(context, size, starts);
    };
    if (!writeSession(folder.path(), size, volumes, preprocessing, session.settings)) {
        std::printf("can't write to %s\n", folder.path().toLocal8Bit().constData());
        return;
    }
    session.runButtonPressed();
    // The first text is that of the start.
    std::vector<double> times;
    for (size_t i = 0; i < starts.size() && i + 1 < display.ends.size(); ++i)
        times.push_back(display.ends[i + 1] - starts[i]);
    if (times.size() < size_t(volumes) || volumes < 100) {
        std::printf("run too short\n");
        return;
    }
    const size_t volumeBytes =
        size_t(size.columns) * size_t(size.rows) * size_t(size.slices) * 2 * size_t(volumes);
    std::printf("%4dx%3dx%2d %7s %9d %12.2f %12.2f %8.0f %14.0f %15.0f\n", size.columns, size.rows,
                size.slices, preprocessing ? "yes" : "no", volumes, medianAround(times, 50),
                medianAround(times, size_t(volumes) - 10), size.budgetMilliseconds,
                megabytes(volumeBytes), peakMegabytes() - megabytes(volumeBytes));
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const int volumes = argc > 1 ? std::atoi(argv[1]) : 600;
    std::printf("Milliseconds of processor time for one volume; motion correction and smoothing of "
                "5 mm where \"motion\" says yes\n"
                "size        motion   volumes     ms at 50  ms near end   budget  volumes in MB  "
                "peak beside MB\n");
    for (const Size& size :
         {Size{64, 64, 25, 5, 3.0f, 4.0f, 8.0}, Size{74, 74, 36, 6, 2.6f, 3.3f, 20.0},
          Size{104, 104, 72, 9, 2.0f, 2.0f, 70.0}})
        for (const bool preprocessing : {false, true})
            measure(size, volumes, preprocessing);
    return 0;
}

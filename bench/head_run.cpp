// SPDX-License-Identifier: GPL-3.0-or-later
#include "head_run.h"

#include "run/settings/settings_file.h"
#include "volume/head_volume.h"

#include <QFile>

namespace {

constexpr int nrOfPlaces = 16; ///< on the way of the head
constexpr int blockLength = 4; ///< volumes

QString protocolText(int nrOfConditions, int volumes) {
    QString text = QString("FileVersion: 2\nResolutionOfTime: Volumes\nExperiment: Bench\n"
                           "BackgroundColor: 0 0 0\nTextColor: 255 255 255\n"
                           "TimeCourseColor: 255 255 255\nTimeCourseThick: 3\n"
                           "ReferenceFuncColor: 80 80 80\nReferenceFuncThick: 2\n"
                           "NrOfConditions: %1\n")
                       .arg(nrOfConditions + 1);
    // Besides the baseline; a constant and a trend make two more predictors.
    const int cycle = (nrOfConditions + 1) * blockLength;
    const int blocks = std::max(volumes / cycle, 1);
    for (int condition = 0; condition <= nrOfConditions; ++condition) {
        text += QString("\nCondition%1\n%2\n").arg(condition).arg(blocks);
        for (int block = 0; block < blocks; ++block) {
            const int before = block * cycle + condition * blockLength;
            text += QString("%1 %2\n").arg(before + 1).arg(before + blockLength);
        }
        text += QString("Color: %1 100 50\n").arg(50 + condition * 25);
    }
    return text;
}

QString contrastText(int nrOfConditions) {
    QString text = QString("FileVersion: 3\nNrOfContrasts: 3\nNrOfValues: %1\n"
                           "BaselineInContrasts: 1\nBaselinePosInProtocol: 1\nContrastNames:\n"
                           "\"one\"\n\"two\"\n\"three\"\nContrastVectors:\n")
                       .arg(nrOfConditions + 1);
    const QString zeros = QString(" 0").repeated(nrOfConditions - 2);
    text += "-1 1 0" + zeros + "\n-1 0 1" + zeros + "\n0 1 -1" + zeros + "\n";
    return text + "InitialSelectionState:\n3\n3\n3\nContrastColors:\n255 0 0\n0 255 0\n0 0 255\n";
}

bool writeText(const QString& path, const QString& text) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

} // namespace

HeadRunReader::HeadRunReader(FMRProject& project, const HeadRunSize& size,
                             std::function<void()> volumeRead)
    : project_(project), volumeRead_(std::move(volumeRead)) {
    project_.pixelSizeX = project_.pixelSizeY = size.pixelMillimetres;
    project_.sliceThickness = size.sliceMillimetres;
    const VolumeGrid grid(project_);
    const HeadVolume head(grid);
    for (unsigned i = 0; i < nrOfPlaces; ++i) {
        std::vector<int16_t>& samples = heads_.emplace_back(grid.samples());
        const float part = float(i) / nrOfPlaces;
        head.fill({0.5f * part, -0.3f * part, 0.4f * part, 0.5f * part, -0.2f * part, 0.3f * part},
                  10.0, i, samples);
        for (int16_t& sample : samples)
            sample = int16_t(sample + 300);
    }
}

bool HeadRunReader::readFirstVolume() {
    fill(project_.firstVolume.span(), 0);
    return true;
}

bool HeadRunReader::readVolume(int volume) {
    fill(project_.volumes[size_t(volume)], volume);
    volumeRead_();
    return true;
}

void HeadRunReader::fill(std::span<int16_t> volume, int index) {
    const int place = index % (2 * nrOfPlaces);
    std::ranges::copy(heads_[size_t(std::min(place, 2 * nrOfPlaces - 1 - place))], volume.data());
}

bool writeHeadRun(const QString& folder, const HeadRunSize& size, int volumes, int nrOfConditions,
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
    settings.SpatialSmoothingFWHM = 5.0f;
    settings.StimulationProtocol = folder + "/bench.prt";
    settings.ContrastFile = folder + "/bench.ctr";
    return writeText(settings.StimulationProtocol, protocolText(nrOfConditions, volumes)) &&
           writeText(settings.ContrastFile, contrastText(nrOfConditions)) &&
           writeSettingsFile(settings);
}

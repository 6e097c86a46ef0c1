// SPDX-License-Identifier: GPL-3.0-or-later
#include "siemens_ima_files.h"

#include "mosaic_image.h"
#include "raw_bytes.h"

#include <algorithm>

namespace {

constexpr int patient = 513;
/// The images before it are those of the localizers.
constexpr int firstImageOfSeries = 17;
constexpr int headerBytes = 6144;

/// Tiles in a row, and in a column, of one mosaic file.
int tilesOf(const SimulationOptions& options, const ScanGeometry& geometry) {
    return options.mosaicTiles > 0 ? options.mosaicTiles : geometry.mosaicTiles();
}

void addMosaicSizes(SettingsLines& lines, bool isMosaic, int resolution, bool fixedStudy) {
    lines.number("SiemensMosaicSequence:", isMosaic ? 1 : 0);
    lines.number("SiemensMosaicResolution:", resolution);
    lines.blank();
    lines.number("SiemensFixedRunNumber:", fixedStudy ? 1 : 0);
    lines.blank();
}

} // namespace

int SiemensImaFormat::firstStudy() const {
    // Each run has its own studies, as many as it needs.
    const int studiesOfRun = options().fixedStudyNumber && isMosaic() ? 1 : options().nrOfVolumes;
    return 3 + (options().run - 1) * studiesOfRun;
}

int SiemensImaFormat::study(int volume) const {
    if (!options().fixedStudyNumber)
        return firstStudy() + volume;
    // Single slices still have a study per volume; the fixed number only excludes the skipped
    // volumes from the count.
    return firstStudy() + (isMosaic() ? 0 : std::max(0, volume - options().nrOfVolumesToSkip));
}

QStringList SiemensImaFormat::fileNames(int volume) const {
    const int imagesOfVolume = isMosaic() ? 1 : geometry().nrOfSlices;
    const auto name = [&](int image) {
        return QString("%1-%2-%3.ima").arg(patient).arg(study(volume)).arg(image);
    };
    QStringList names;
    for (int image = 0; image < imagesOfVolume; ++image)
        names << name(firstImageOfSeries + volume * imagesOfVolume + image);
    // Numbers of second parts follow those of all first parts.
    const int tiles = tilesOf(options(), geometry());
    if (isMosaic() && geometry().nrOfSlices > tiles * tiles)
        names << name(firstImageOfSeries + volume + options().nrOfVolumes);
    return names;
}

QByteArray SiemensImaFormat::file(std::span<const uint16_t> pixels) const {
    HeaderBytes header(headerBytes, sampleOrder());
    header.float64(1544, geometry().sliceThickness);
    header.float64(3744, geometry().pixelSize * geometry().sizeX);
    header.float64(3752, geometry().pixelSize * geometry().sizeY);
    header.float64(4136, geometry().sliceGap() / geometry().sliceThickness);
    header.float64(5000, geometry().pixelSize);
    header.float64(5008, geometry().pixelSize);
    return header.bytes() + sampleBytes(pixels, sampleOrder());
}

std::vector<ScannerFile> SiemensImaFormat::files(int volume,
                                                 std::span<const uint16_t> samples) const {
    const QStringList names = fileNames(volume);
    const int tiles = tilesOf(options(), geometry());
    const size_t samplesOfFile = geometry().sliceVoxels() * size_t(isMosaic() ? tiles * tiles : 1);
    std::vector<ScannerFile> files;
    for (const QString& name : names) {
        const auto part =
            samples.subspan(files.size() * samplesOfFile)
                .first(std::min(samplesOfFile, samples.size() - files.size() * samplesOfFile));
        files.push_back(
            {name, isMosaic() ? file(mosaicImage(geometry(), tiles, part)) : file(part)});
    }
    return files;
}

void SiemensImaFormat::addTypeBlock(SettingsLines& lines) const {
    lines.number("SiemensPatientID:", patient);
    lines.number("SiemensFirstStudyNr:", firstStudy());
    lines.number("SiemensFirstImageNr:", firstImageOfSeries);
}

void SiemensImaFormat::addMosaicEntries(SettingsLines& lines) const {
    addMosaicSizes(lines, isMosaic(), tilesOf(options(), geometry()) * geometry().sizeX,
                   options().fixedStudyNumber);
}

int SiemensPixelDataFormat::firstImage() const {
    // There is no study number, so the image numbers continue from the previous run.
    return firstImageOfSeries + (options().run - 1) * options().nrOfVolumes;
}

QStringList SiemensPixelDataFormat::fileNames(int volume) const {
    return {QString("%1").arg(firstImage() + volume, 3, 10, QChar('0'))};
}

std::vector<ScannerFile> SiemensPixelDataFormat::files(int volume,
                                                       std::span<const uint16_t> samples) const {
    const auto image = mosaicImage(geometry(), tilesOf(options(), geometry()),
                                   reversedSlices(geometry(), samples));
    return {{fileNames(volume).first(), sampleBytes(image, sampleOrder())}};
}

void SiemensPixelDataFormat::addTypeBlock(SettingsLines& lines) const {
    lines.number("SiemensPatientID:", -1); // names have no patient and no study
    lines.number("SiemensFirstStudyNr:", -1);
    lines.number("SiemensFirstImageNr:", firstImage());
}

void SiemensPixelDataFormat::addMosaicEntries(SettingsLines& lines) const {
    addMosaicSizes(lines, true, tilesOf(options(), geometry()) * geometry().sizeX, false);
}

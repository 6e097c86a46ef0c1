// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_mosaic_reader.h"

#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/mosaic.h"
#include "intake/siemens_protocol.h"
#include "intake/slice_geometry.h"

SiemensMosaicReader::SiemensMosaicReader(const IntakeContext& context)
    : DicomVolumeReader(
          context, {.search = PixelKeySearch::Last,
                    .settleMilliseconds = 30,
                    .memoryMessage = "ERROR: Could not allocate memory to read DICOM MOSAIC file:",
                    .missingKeyMessage =
                        "ERROR: This file (\"%1\") is not a DICOM or ACR-NEMA file: Header does "
                        "not contain \"begin-of-data\" key (7FE0,0010) !"}) {}

QString SiemensMosaicReader::fileName(qint64 measured) const {
    return dicomFileName(settings().dicomFilePrefix, settings().DicomFirstVolumeNr,
                         settings().DicomFirstImageNr + measured, settings());
}

bool SiemensMosaicReader::layoutIsUsable() const {
    const MosaicTiling layout = MosaicTiling::of(settings());
    return layout.holdsAllSlices() ||
           failWith(QString("ERROR: A mosaic of %1 x %2 does not hold %3 slices of %4 x %5 - check "
                            "settings file !")
                        .arg(layout.mosaicSizeX)
                        .arg(layout.mosaicSizeY)
                        .arg(layout.nrOfSlices)
                        .arg(layout.matrixSizeX)
                        .arg(layout.matrixSizeY));
}

// With a list of folders instead of a watch folder, the first one that has the file counts; the
// size must then be met exactly, so that the file of another run in one of them is passed by.
ExpectedFile SiemensMosaicReader::expectedFirstFile() const {
    const qint64 size = qint64(MosaicTiling::of(settings()).mosaicSamples()) * 2;
    if (!settings().WatchFolder.isEmpty() || settings().watchFolderList.isEmpty())
        return {{watchedPath(fileName(0))}, size, true};
    ExpectedFile expected{{}, size, false};
    for (const QString& folder : settings().watchFolderList)
        expected.names << paths::join(folder, fileName(0));
    return expected;
}

bool SiemensMosaicReader::readFirstVolume() {
    if (!layoutIsUsable() || firstVolume().empty())
        return false;
    const auto image = awaitImage(expectedFirstFile(), Stage::FirstVolume,
                                  MosaicTiling::of(settings()).mosaicSamples());
    if (!image)
        return false;
    state().watchFolder = paths::folderWithSlash(image->path);
    project().FirstDataSourceFile = paths::fileName(image->path);
    return takeVolume(*image, Stage::FirstVolume, firstVolume());
}

bool SiemensMosaicReader::readVolume(int volume) {
    if (!layoutIsUsable() || analysedVolume(volume).empty())
        return false;
    const size_t samples = MosaicTiling::of(settings()).mosaicSamples();
    const auto image =
        awaitImage({{watchedPath(fileName(measuredVolume(volume)))}, qint64(samples) * 2, true},
                   Stage::Loop, samples);
    return image && takeVolume(*image, Stage::Loop, analysedVolume(volume));
}

bool SiemensMosaicReader::takeVolume(const Image& image, Stage stage,
                                     std::span<int16_t> volume) const {
    const MosaicTiling layout = MosaicTiling::of(settings());
    // In the loop the size of the swapped part comes from another key of the settings: settings
    // that disagree between the two keep their known result.
    const size_t loopSide = size_t(std::max(settings().SiemensMosaicResolution, 0));
    if (image.byteOrder != hostByteOrder)
        swapSamples(image.samples,
                    stage == Stage::Loop ? loopSide * loopSide : layout.mosaicSamples());
    return splitMosaic(image.samples, volume, layout);
}

bool SiemensMosaicReader::headerFitsSettings() const {
    const DicomHeader& header = state().header;
    const RunSettings& run = settings();
    return (header.columns == run.MosaicResolutionX && header.rows >= run.MosaicResolutionY) ||
           failForDimensions(run.MosaicResolutionX, run.MosaicResolutionY);
}

bool SiemensMosaicReader::readHeaders() {
    const QString path = watchedPath(fileName(0));
    DicomHeader& header = state().header;
    if (!readHeader(path) || !headerFitsSettings())
        return false;
    takeSizes(path);
    FMRPositionInfo& position = project().position;
    // A header without directions leaves them as they are; the positions decide.
    static_cast<void>(parseImageOrientation(header.imageOrientationText, position));
    if (!parseSiemensProtocol(bytes(), project()) &&
        !computeMosaicGeometry(path, header, state().rawDataByteOrder, project()))
        return false;
    position.positionInfoValid = 1;
    return true;
}

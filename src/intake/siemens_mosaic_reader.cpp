// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_mosaic_reader.h"

#include "intake/dicom_names.h"
#include "intake/siemens_protocol.h"
#include "intake/siemens_slice_times.h"
#include "intake/slice_geometry.h"
#include "intake/tiled_image.h"

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
    const TiledImageLayout layout = TiledImageLayout::of(settings(), project());
    return layout.holdsAllSlices() || failWith(unusableLayoutMessage(layout));
}

bool SiemensMosaicReader::readFirstVolume() {
    if (!layoutIsUsable() || firstVolume().empty())
        return false;
    const size_t samples = TiledImageLayout::of(settings(), project()).imageSamples();
    const auto image = awaitImage(expectedFirstFile(fileName(0), qint64(samples) * 2),
                                  Stage::FirstVolume, samples);
    if (!image)
        return false;
    takeFirstFile(image->path);
    return takeVolume(*image, Stage::FirstVolume, firstVolume());
}

bool SiemensMosaicReader::readVolume(int volume) {
    if (!layoutIsUsable() || analysedVolume(volume).empty())
        return false;
    const size_t samples = TiledImageLayout::of(settings(), project()).imageSamples();
    const auto image =
        awaitImage({{watchedPath(fileName(measuredVolume(volume)))}, qint64(samples) * 2, true},
                   Stage::Loop, samples);
    return image && takeVolume(*image, Stage::Loop, analysedVolume(volume));
}

bool SiemensMosaicReader::takeVolume(const Image& image, Stage stage,
                                     std::span<int16_t> volume) const {
    const TiledImageLayout layout = TiledImageLayout::of(settings(), project());
    // In the loop the size of the swapped part comes from another key of the settings: settings
    // that disagree between the two keep their known result.
    const size_t loopSide = size_t(std::max(settings().SiemensMosaicResolution, 0));
    const size_t count = stage == Stage::Loop ? loopSide * loopSide : layout.imageSamples();
    toHostOrder(image.samples.first(2 * std::min(count, image.samples.size() / 2)),
                image.byteOrder);
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
    project().sliceTimes = siemensSliceTimes(bytes(), project().NrOfSlices);
    FMRPositionInfo& position = project().position;
    // A header without directions leaves them as they are; the positions decide.
    static_cast<void>(parseImageOrientation(header.imageOrientationText, position));
    if (!parseSiemensProtocol(bytes(), project()) &&
        !computeMosaicGeometry(path, header, state().rawDataByteOrder, project()))
        return false;
    position.positionInfoValid = 1;
    return true;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_readers.h"

#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/siemens_private_header.h"
#include "intake/slice_geometry.h"
#include "intake/tiled_image.h"

DicomSliceReader::DicomSliceReader(const IntakeContext& context)
    : DicomVolumeReader(context, ImageKind::singleSlice()) {}

// Names of this type begin with the delimiter; at most sites the prefix of the first file name
// precedes it. Both are looked for.
QStringList DicomSliceReader::namesOf(qint64 measured, int slice) const {
    const RunSettings& run = settings();
    const qint64 volumeNumber = run.DicomFirstVolumeNr + measured;
    const qint64 imageNumber = qint64(run.DicomFirstImageNr) + slice;
    QStringList names{watchedPath(dicomFileName({}, volumeNumber, imageNumber, run))};
    if (!run.dicomFilePrefix.isEmpty())
        names << watchedPath(dicomFileName(run.dicomFilePrefix, volumeNumber, imageNumber, run));
    return names;
}

bool DicomSliceReader::readFirstVolume() {
    return readSlices(Stage::FirstVolume, 0);
}

bool DicomSliceReader::readVolume(int volume) {
    return readSlices(Stage::Loop, volume);
}

bool DicomSliceReader::readSlices(Stage stage, int volume) {
    const bool first = stage == Stage::FirstVolume;
    const qint64 measured = first ? 0 : measuredVolume(volume);
    const size_t nrOfSamples = targetSlice(stage, volume, 0).size();
    if (nrOfSamples == 0)
        return false;
    for (int slice = 0; slice < project().NrOfSlices; ++slice) {
        const auto following = [&](int step) {
            const int next = slice + 1 + step;
            return next < project().NrOfSlices ? namesOf(measured, next) : QStringList();
        };
        // Any size counts as arrived, since the length of the header is unknown.
        const auto image =
            awaitImage({namesOf(measured, slice), 0, true}, stage, nrOfSamples, following);
        if (!image || !takeSlice(*image, stage, targetSlice(stage, volume, slice)))
            return false;
        if (first && slice == 0)
            project().FirstDataSourceFile = paths::fileName(image->path);
    }
    return true;
}

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
    // In the loop the size of the swapped part comes from another settings key: where the two
    // differ, results stay what they have always been.
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

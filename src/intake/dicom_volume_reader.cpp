// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_volume_reader.h"

#include "base/messages.h"
#include "intake/dicom_refusal.h"
#include "intake/header_sizes.h"

#include <QFileInfo>
#include <algorithm>

ImageKind ImageKind::singleSlice() {
    return {.search = PixelKeySearch::First,
            .settleMilliseconds = 10,
            .memoryMessage = "ERROR: Could not allocate memory to read DICOM file:",
            .missingKeyMessage = "ERROR: This file is not a DICOM or ACR-NEMA file: Header does "
                                 "not contain \"begin-of-data\" key (7FE0,0010) !"};
}

std::optional<DicomVolumeReader::Image>
DicomVolumeReader::awaitImage(const ExpectedFile& expected, Stage stage, size_t nrOfSamples,
                              const FollowingFiles& following) {
    const StopWatch watch = newWatch();
    const FileWaitScope told = tellWait(expected);
    const QString path = awaitPath(expected,
                                   {.timeOutMilliseconds = timeOutMilliseconds(),
                                    .settleMilliseconds = kind_.settleMilliseconds},
                                   following);
    if (!path.isEmpty())
        return readImage(path, watch, stage, nrOfSamples);
    if (stage == Stage::FirstVolume && !pump().waitsGivenUp())
        explainLateFile(expected.names);
    return std::nullopt;
}

bool DicomVolumeReader::readWhole(const QString& fileName, const StopWatch& watch) {
    return FileVolumeReader::readWhole(fileName, watch, kind_.memoryMessage);
}

std::optional<DicomVolumeReader::Image> DicomVolumeReader::readImage(const QString& fileName,
                                                                     const StopWatch& watch,
                                                                     Stage stage,
                                                                     size_t nrOfSamples) {
    for (;;) {
        if (!readWhole(fileName, watch) || (stage == Stage::FirstVolume && !acceptsFile(fileName)))
            return std::nullopt;
        const std::optional<PixelData> found = findPixelData(bytes(), kind_.search);
        if (found && found->encapsulated()) {
            showWarning(compressedMessage(fileName, "unknown"));
            return std::nullopt;
        }
        const std::span<uint8_t> samples = found ? pixelBytes(bytes(), *found) : bytes().first(0);
        if (found && samples.size() / 2 >= nrOfSamples)
            return Image{fileName, samples, found->byteOrder};
        // A file that has all its stated data won't grow.
        const bool whole = found && found->statedLength && samples.size() >= *found->statedLength;
        if (!whole && waitAgain(watch, fileName))
            continue;
        if (pump().waitsGivenUp())
            return std::nullopt;
        showWarning(found ? QString("ERROR: File \"%1\" holds less image data than stated in the "
                                    "settings file !")
                                .arg(fileName)
                          : QString(kind_.missingKeyMessage).replace("%1", fileName));
        return std::nullopt;
    }
}

bool DicomVolumeReader::acceptsFile(const QString& fileName) {
    const QString refusal = unsupportedReason(bytes(), fileName);
    return refusal.isEmpty() || failWith(refusal);
}

// Explains why an existing file was never accepted: a compressed one stays below the expected size.
void DicomVolumeReader::explainLateFile(const QStringList& names) {
    for (const QString& name : names)
        if (QFileInfo(name).isFile() && readNow(name) && !acceptsFile(name))
            return;
}

bool DicomVolumeReader::takeSlice(const Image& image, Stage stage,
                                  std::span<int16_t> target) const {
    // The first volume uses the byte order of the file, the loop that of the run.
    const ByteOrder order =
        stage == Stage::FirstVolume ? image.byteOrder : state().rawDataByteOrder;
    const std::span<uint8_t> samples =
        image.samples.first(std::min(target.size_bytes(), image.samples.size()));
    toHostOrder(samples, order);
    return store(samples, target);
}

bool DicomVolumeReader::readHeader(const QString& fileName) {
    return readWhole(fileName, newWatch()) && acceptsFile(fileName) &&
           parseDicomHeader(bytes(), fileName, state().header, state().rawDataByteOrder);
}

void DicomVolumeReader::takeSizes(const QString& fileName) {
    const DicomHeader& header = state().header;
    HeaderSizes sizes;
    sizes.pixelSizeX = statedLength(header.pixelSpacingSecond);
    sizes.pixelSizeY = statedLength(header.pixelSpacingFirst);
    // A header that never stated the spacing says nothing about a gap.
    const bool spaced = header.spacingBetweenSlices > 0.0f;
    if (spaced || header.sliceThickness != 0.0f) {
        sizes.sliceThickness = header.sliceThickness;
        sizes.sliceGap = spaced ? header.spacingBetweenSlices - header.sliceThickness : 0.0f;
    }
    if (sizes.pixelSizeX)
        sizes.fieldOfViewX = float(project().ResolutionX) * *sizes.pixelSizeX;
    if (sizes.pixelSizeY)
        sizes.fieldOfViewY = float(project().ResolutionY) * *sizes.pixelSizeY;
    takeHeaderSizes(sizes, fileName, project());
}

bool DicomVolumeReader::failForDimensions(int columns, int rows) const {
    return failWith(QString("ERROR - dimensions of DICOM file (%1 x %2) do not match those in VCO "
                            "file (%3 x %4) !")
                        .arg(state().header.rows)
                        .arg(state().header.columns)
                        .arg(rows)
                        .arg(columns));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_volume_reader.h"

#include "base/messages.h"
#include "intake/dicom_refusal.h"

#include <QFileInfo>

std::optional<DicomVolumeReader::Image>
DicomVolumeReader::awaitImage(const ExpectedFile& expected, Stage stage, size_t nrOfSamples) {
    const StopWatch watch = newWatch();
    const QString path = awaitFile(expected,
                                   {.timeOutMilliseconds = settings().timeOutMilliseconds,
                                    .settleMilliseconds = kind_.settleMilliseconds},
                                   pump());
    if (!path.isEmpty())
        return readImage(path, watch, stage, nrOfSamples);
    if (stage == Stage::FirstVolume)
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
        // A file that has all that it promises won't grow.
        const bool whole = found && found->statedLength && samples.size() >= *found->statedLength;
        if (!whole && waitsOn(watch))
            continue;
        showWarning(found ? QString("ERROR: File \"%1\" holds less image data than stated in the "
                                    "settings file !")
                                .arg(fileName)
                          : QString(kind_.missingKeyMessage).replace("%1", fileName));
        return std::nullopt;
    }
}

bool DicomVolumeReader::acceptsFile(const QString& fileName) {
    const QString refusal = refusalOf(bytes(), fileName);
    return refusal.isEmpty() || failWith(refusal);
}

// Says why one of these files was never taken, where it is there but of no use: a compressed file
// stays below the expected size for good.
void DicomVolumeReader::explainLateFile(const QStringList& names) {
    for (const QString& name : names)
        if (QFileInfo(name).isFile() && readNow(name) && !acceptsFile(name))
            return;
}

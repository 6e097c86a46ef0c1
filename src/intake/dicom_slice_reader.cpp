// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_slice_reader.h"

#include "base/paths.h"
#include "intake/dicom_names.h"

#include <cstring>

namespace {

constexpr int settleMilliseconds = 10;

const QString& memoryMessage() {
    static const QString text = "ERROR: Could not allocate memory to read DICOM file:";
    return text;
}

const QString& missingKeyMessage() {
    static const QString text =
        "ERROR: This file is not a DICOM or ACR-NEMA file: Header does not contain "
        "\"begin-of-data\" key (7FE0,0010) !";
    return text;
}

} // namespace

// Names of this type begin with the delimiter; the files of most sites bear the prefix of the first
// file name before it. Both are looked for.
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
    // Events are processed in each wait, so the volume is looked up behind it.
    const auto target = [&] { return first ? firstVolume() : analysedVolume(volume); };
    if (target().empty())
        return false;
    for (int slice = 0; slice < settings().NrOfSlices; ++slice) {
        // Any size counts as arrived: how long a header is, the settings don't tell.
        const QString path = await({namesOf(measured, slice), 0, true}, settleMilliseconds);
        if (path.isEmpty() || !takeSlice(path, stage, target(), slice))
            return false;
        if (first && slice == 0)
            project().FirstDataSourceFile = paths::fileName(path);
    }
    return true;
}

bool DicomSliceReader::takeSlice(const QString& path, Stage stage, std::span<int16_t> volume,
                                 int slice) {
    if (volume.empty() || !readWhole(path, memoryMessage()) ||
        (stage == Stage::FirstVolume && !acceptsFile(path)))
        return false;
    const auto found = pixelData(path, PixelKeySearch::First, missingKeyMessage());
    if (!found)
        return false;
    const std::span<uint8_t> samples = pixelBytes(bytes(), *found);
    const size_t sliceSamples = volume.size() / size_t(settings().NrOfSlices);
    if (!holdsSamples(samples, sliceSamples, path))
        return false;
    // The first volume goes by the file, the loop by the order that the program has settled on.
    const ByteOrder order =
        stage == Stage::FirstVolume ? found->byteOrder : state().rawDataByteOrder;
    if (order != hostByteOrder)
        swapSamples(samples, sliceSamples);
    std::memcpy(volume.subspan(size_t(slice) * sliceSamples).data(), samples.data(),
                2 * sliceSamples);
    return true;
}

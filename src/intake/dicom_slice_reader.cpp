// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_slice_reader.h"

#include "base/paths.h"
#include "intake/dicom_names.h"

#include <cstring>

DicomSliceReader::DicomSliceReader(const IntakeContext& context)
    : DicomVolumeReader(context,
                        {.search = PixelKeySearch::First,
                         .settleMilliseconds = 10,
                         .memoryMessage = "ERROR: Could not allocate memory to read DICOM file:",
                         .missingKeyMessage =
                             "ERROR: This file is not a DICOM or ACR-NEMA file: Header does not "
                             "contain \"begin-of-data\" key (7FE0,0010) !"}) {}

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
    const auto target = [&] { return targetVolume(stage, volume); };
    if (target().empty())
        return false;
    const size_t sliceSamples = target().size() / size_t(settings().NrOfSlices);
    for (int slice = 0; slice < settings().NrOfSlices; ++slice) {
        // Any size counts as arrived: how long a header is, the settings don't tell.
        const auto image = awaitImage({namesOf(measured, slice), 0, true}, stage, sliceSamples);
        if (!image || target().empty())
            return false;
        takeSlice(*image, stage, target().subspan(size_t(slice) * sliceSamples, sliceSamples));
        if (first && slice == 0)
            project().FirstDataSourceFile = paths::fileName(image->path);
    }
    return true;
}

void DicomSliceReader::takeSlice(const Image& image, Stage stage, std::span<int16_t> target) const {
    // The first volume goes by the file, the loop by the order that the program has settled on.
    const ByteOrder order =
        stage == Stage::FirstVolume ? image.byteOrder : state().rawDataByteOrder;
    if (order != hostByteOrder)
        swapSamples(image.samples, target.size());
    std::memcpy(target.data(), image.samples.data(), target.size_bytes());
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/dicom_slice_reader.h"

#include "base/paths.h"
#include "intake/dicom_names.h"

DicomSliceReader::DicomSliceReader(const IntakeContext& context)
    : DicomVolumeReader(context, ImageKind::singleSlice()) {}

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
    const size_t nrOfSamples = targetSlice(stage, volume, 0).size();
    if (nrOfSamples == 0)
        return false;
    for (int slice = 0; slice < project().NrOfSlices; ++slice) {
        // Any size counts as arrived: how long a header is, the settings don't tell.
        const auto image = awaitImage({namesOf(measured, slice), 0, true}, stage, nrOfSamples);
        if (!image || !takeSlice(*image, stage, targetSlice(stage, volume, slice)))
            return false;
        if (first && slice == 0)
            project().FirstDataSourceFile = paths::fileName(image->path);
    }
    return true;
}

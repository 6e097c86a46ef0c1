// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_slice_reader.h"

#include "intake/siemens_ima_header.h"
#include "intake/siemens_ima_names.h"

// The study number rises with each volume, also with SiemensFixedRunNumber: for files of single
// slices that only takes the skipped volumes out of it.
QString SiemensImaSliceReader::fileName(Stage stage, int volume, int slice) const {
    const RunSettings& run = settings();
    if (stage == Stage::FirstVolume)
        return imaFileName(run, run.SiemensFirstStudyNr, qint64(run.SiemensFirstImageNr) + slice);
    return imaFileName(run, fileStudyNr(run) + volume,
                       fileImageNr(run, project()) + qint64(project().NrOfSlices) * volume + slice);
}

bool SiemensImaSliceReader::readFirstVolume() {
    return readSlices(Stage::FirstVolume, 0);
}

bool SiemensImaSliceReader::readVolume(int volume) {
    return readSlices(Stage::Loop, volume);
}

bool SiemensImaSliceReader::readSlices(Stage stage, int volume) {
    const qint64 sliceBytes = qint64(targetSlice(stage, volume, 0).size_bytes());
    if (sliceBytes == 0)
        return false;
    for (int slice = 0; slice < project().NrOfSlices; ++slice) {
        const auto image = awaitHeadedFile({.name = fileName(stage, volume, slice),
                                            .firstOfRun = stage == Stage::FirstVolume && slice == 0,
                                            .headerBytes = imaHeaderBytes,
                                            .sampleBytes = sliceBytes});
        if (!image || !store(image->samples, targetSlice(stage, volume, slice)))
            return false;
    }
    return true;
}

bool SiemensImaSliceReader::readHeaders() {
    readSiemensIMAHeader(watchedPath(firstImaFileName(settings())), state().rawDataByteOrder,
                         project());
    return true;
}

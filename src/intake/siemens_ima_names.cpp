// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_names.h"

qint64 fileStudyNr(const RunSettings& settings) {
    if (settings.SiemensPatientID == -1)
        return -1;
    const int skipped = settings.SiemensFixedRunNumber ? 0 : settings.NrOfVolumesToSkip;
    return qint64(settings.SiemensFirstStudyNr) + skipped;
}

qint64 fileImageNr(const RunSettings& settings, const VolumeGeometry& geometry) {
    const bool oneFileASlice =
        !settings.SiemensMosaicSequence && settings.documentDataType != "SIEMENSPIXELDATA";
    const qint64 numbersAVolume = oneFileASlice ? geometry.NrOfSlices : 1;
    return settings.SiemensFirstImageNr + settings.NrOfVolumesToSkip * numbersAVolume;
}

qint64 tilesPerFile(const RunSettings& settings, const VolumeGeometry& geometry) {
    if (geometry.ResolutionX <= 0 || settings.SiemensMosaicResolution <= 0)
        return 0;
    const qint64 tilesPerRow = settings.SiemensMosaicResolution / geometry.ResolutionX;
    return tilesPerRow * tilesPerRow;
}

qint64 filesPerVolume(const RunSettings& settings, const VolumeGeometry& geometry) {
    const qint64 tiles = tilesPerFile(settings, geometry);
    return tiles == 0 ? 0 : (geometry.NrOfSlices + tiles - 1) / tiles;
}

QString imaFileName(const RunSettings& settings, qint64 study, qint64 image) {
    return QString("%1-%2-%3.ima").arg(settings.SiemensPatientID).arg(study).arg(image);
}

QString firstImaFileName(const RunSettings& settings) {
    return imaFileName(settings, settings.SiemensFirstStudyNr, settings.SiemensFirstImageNr);
}

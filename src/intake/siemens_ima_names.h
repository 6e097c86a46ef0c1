// Numbers and names of the files of the Siemens types that are older than DICOM.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"
#include "volume/volume_geometry.h"

/// Study and image number of the first analysed volume: those of the settings advanced by the
/// skipped volumes. Without a patient number (-1) the study number is -1 too; with
/// SiemensFixedRunNumber it stays that of the settings.
[[nodiscard]] qint64 fileStudyNr(const RunSettings& settings);
[[nodiscard]] qint64 fileImageNr(const RunSettings& settings, const VolumeGeometry& geometry);

/// Tiles in one file: the square of SiemensMosaicResolution / columns of a slice, an integer
/// division; 0 if no tile fits.
[[nodiscard]] qint64 tilesPerFile(const RunSettings& settings, const VolumeGeometry& geometry);
/// Files needed for all slices; 0 if no tile fits.
[[nodiscard]] qint64 filesPerVolume(const RunSettings& settings, const VolumeGeometry& geometry);

/// "513-3-17.ima": patient, study and image number.
[[nodiscard]] QString imaFileName(const RunSettings& settings, qint64 study, qint64 image);
/// The first file that is measured, with the three numbers as the settings state them.
[[nodiscard]] QString firstImaFileName(const RunSettings& settings);

// Parses the first file names of the settings, which determine the names of all further files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

/// documentFirstFileName, joined to the watch folder where it has no folder, and for the Analyze
/// types the prefix and number of a name of the form "subject_00001.img".
void deriveFirstFile(RunSettings& settings);

/// For "DICOM" and "SIEMENS_DICOM_MOSAIC": dicomFilePrefix, dicomImageNumberWidth and
/// DicomFirstVolumeNr from a first file name of the form prefix, volume, image. The volume number
/// in the name overrides the setting (as 0 when it is not a number); a name without that field
/// leaves the setting.
void deriveDicomNames(RunSettings& settings);

/// For "GE_STANFORD": pFilePath, empty when the header's name has no "P".
void derivePFile(RunSettings& settings);

/// For "GE_MR" inplanes: series prefix and first number from a name of the form "E1S2I3.MR".
void deriveInplaneFirstFile(RunSettings& settings);

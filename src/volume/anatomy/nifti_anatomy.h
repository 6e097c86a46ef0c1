// Anatomies in the NIfTI-1 and NIfTI-2 formats, brought into the cube.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/anatomy/vmr_volume.h"

#include <QString>

/// True for names that end in .nii or .nii.gz, in any case of letters.
[[nodiscard]] bool isNiftiName(const QString& path);

/// Reads the first volume of the file, turns it by its matrix, resamples it to 1 mm and brings its
/// intensities to 8 bit. `volume` gets a position record in the scanner's coordinates, so that it
/// lies right over a run of the same session; a file without a usable matrix gets none
/// (positionInfoValid 0). False after a message, with `volume` empty.
[[nodiscard]] bool loadNiftiAnatomy(const QString& path, VMRVolume& volume);

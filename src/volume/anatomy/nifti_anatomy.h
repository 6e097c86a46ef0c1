// Anatomies in the NIfTI-1 and NIfTI-2 formats, brought into the cube.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/nifti_volume.h"
#include "volume/anatomy/vmr_volume.h"

#include <QString>

/// True for names that end in .nii or .nii.gz, in any case of letters.
[[nodiscard]] bool isNiftiName(const QString& path);

/// Reads the first volume of the file, turns it by its matrix, resamples it to 1 mm and brings its
/// intensities to 8 bit. `volume` gets a position record in the scanner's coordinates, so that it
/// lies right over a run of the same session; a file without a usable matrix, or with one to an
/// atlas, gets none (positionInfoValid 0). False after a message, with `volume` empty.
[[nodiscard]] bool loadNiftiAnatomy(const QString& path, VMRVolume& volume);

/// The same from a volume in memory, without messages. The middle of its grid becomes the middle of
/// the cube, whose x runs to the back, y down and z to the left. A point between voxels is
/// interpolated linearly; half a voxel beyond the outer centres still belongs to the volume, and
/// the rest of the cube is 0. The record's centres are those of the first and last plane along z,
/// so it needs no correction to the middle of the grid. False, with `volume` empty, when memory
/// runs out.
[[nodiscard]] bool niftiToCube(const NiftiVolume& nifti, VMRVolume& volume);

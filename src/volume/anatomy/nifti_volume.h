// The samples of NIfTI files (.nii, .nii.gz).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "volume/anatomy/nifti_header.h"

#include <QIODevice>

/// The most memory that the values of a volume may take.
inline constexpr size_t largestNiftiBytes = size_t(512) << 20;

struct NiftiVolume {
    NiftiHeader header;
    /// Of the first volume, scaled: x fastest, then y, then z. All finite: what is not, or exceeds
    /// the range of float, is 0.
    ZeroedBuffer<float> values;
};

/// Reads the header and the first volume from an open device that stands at its start. Whether it
/// is compressed shows in the bytes. Memory is taken only for a volume that the file can hold.
/// Returns what is wrong, as parseNiftiHeader() does; empty when `volume` has been set.
[[nodiscard]] QString readNiftiVolume(QIODevice& device, NiftiVolume& volume);

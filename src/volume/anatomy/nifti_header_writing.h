// Writing the headers of NIfTI-1 files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/nifti_header.h"

#include <QByteArray>

/// Bytes before the samples: the header and four zeros, which say that no extension follows.
inline constexpr size_t nifti1DataOffset = 352;
/// The most that a dimension of NIfTI-1 can count.
inline constexpr int64_t largestNifti1Dimension = 32767;

/// What a header says besides sizes and places.
struct NiftiMeaning {
    double repetitionTime = 0.0;             ///< seconds; 0 where the fourth dimension isn't time
    int intentCode = 0;                      ///< 0 none, 2 correlation, 3 t, 4 F
    std::array<float, 3> intentParameters{}; ///< degrees of freedom
    QString description;                     ///< 79 bytes of UTF-8 are kept
    QString intentName;                      ///< 15 bytes are kept
};

/// The bytes before the samples, little endian. Of `header` count the sizes, which must be 1 to
/// largestNifti1Dimension, the kind of samples, the voxel sizes, and `bySform`, which is written as
/// sform and as qform; without it both codes are 0. A fourth dimension is written for more than one
/// volume and for a repetition time.
[[nodiscard]] QByteArray nifti1Header(const NiftiHeader& header, const NiftiMeaning& meaning);

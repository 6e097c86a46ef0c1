// The headers of NIfTI-1 and NIfTI-2 files (.nii).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "volume/anatomy/nifti_matrix.h"

#include <QString>
#include <array>
#include <cstdint>
#include <span>

// The format is published by the NIfTI Data Format Working Group (nifti1.h, 2004; nifti2.h, 2011).
// It is parsed here instead of by a library, which would believe the sizes, offsets and lengths of
// a file that may be damaged, and would load all volumes of a series where one is asked for.

inline constexpr size_t nifti1HeaderBytes = 348;
inline constexpr size_t nifti2HeaderBytes = 540;
/// Of the volumes that are read.
inline constexpr int64_t largestNiftiSide = 1024;

/// How a sample is stored. Colours, complex numbers and 128-bit numbers are not read.
enum class NiftiSample : int16_t {
    UInt8 = 2,
    Int16 = 4,
    Int32 = 8,
    Float32 = 16,
    Float64 = 64,
    Int8 = 256,
    UInt16 = 512,
    UInt32 = 768,
    Int64 = 1024,
    UInt64 = 1280
};

/// 1 to 8 bytes; 0 for a kind that is not read.
[[nodiscard]] size_t bytesOf(NiftiSample kind);

/// The space of a matrix. A file may state others, which count as Aligned.
enum class NiftiSpace : int { Unknown = 0, Scanner = 1, Aligned = 2, Talairach = 3, MNI = 4 };

/// A matrix to millimetres: x to the right, y to the front, z up.
struct NiftiPlace {
    NiftiSpace space = NiftiSpace::Unknown;
    NiftiMatrix matrix;
};

struct NiftiHeader {
    int version = 1; ///< 1 or 2
    ByteOrder byteOrder = ByteOrder::Little;
    std::array<int64_t, 3> size = {1, 1, 1}; ///< x, y, z; x fastest
    int64_t nrOfVolumes = 1;
    NiftiSample kind = NiftiSample::Int16;
    double slope = 1.0; ///< value = slope * sample + intercept
    double intercept = 0.0;
    uint64_t dataOffset = 0;                 ///< bytes from the start of the (inflated) file
    NiftiPoint voxelSizes = {1.0, 1.0, 1.0}; ///< mm; 1 where the file has no usable size
    std::optional<NiftiPlace> bySform;       ///< nothing without a code or a usable matrix
    std::optional<NiftiPlace> byQform;       ///< likewise

    /// Of one volume.
    [[nodiscard]] size_t volumeSamples() const {
        return size_t(size[0]) * size_t(size[1]) * size_t(size[2]);
    }
    /// The place in the scanner if one of the matrices states it, first the sform, else any place.
    [[nodiscard]] std::optional<NiftiPlace> place() const;
};

/// The bytes that the header takes by the first four of a file; 0 when it is no NIfTI header.
[[nodiscard]] size_t niftiHeaderBytes(std::span<const uint8_t> start);

/// Parses a header from the start of a file, which may go on behind it. Returns what is wrong, as
/// the end of a sentence that begins with the name of the file; empty when `header` has been set.
/// Sides are 1 to largestNiftiSide then, the data begin behind the header and below 64 MiB, and
/// slope and intercept are finite.
[[nodiscard]] QString parseNiftiHeader(std::span<const uint8_t> start, NiftiHeader& header);

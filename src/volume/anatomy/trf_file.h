// Rigid transformations (.trf).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/c3d_matrix.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <optional>

/// The cube that an AC-PC volume is framed in.
struct FramingCube {
    int side = 0;       ///< voxels
    float value = 0.0f; ///< the number with a key of its own behind it
};

struct TransformationFile {
    /// The two slots of the anatomical view: the alignment, and the one beside it.
    std::array<C3dMatrix, 2> matrices;
    bool hasMatrix = false; ///< the file held the first matrix
    bool hasSecondMatrix = false;
    int TransformationType = 0;
    int CoordinateSystem = 2;
    int NrOfTransformationVolumes = 0;
    std::optional<FramingCube> framingCube; ///< of _ACPC.trf and _aACPC.trf, version 6 and later
};

/// False for a version below 3, or a text that ends early or holds no number where one belongs, or
/// a number that isn't finite; `file` is then unchanged. `fileName` decides on the framing cube.
[[nodiscard]] bool parseTransformation(const QString& text, const QString& fileName,
                                       TransformationFile& file);
/// The same from a file. False after a message when it can't be read; without one as above.
[[nodiscard]] bool readTransformationFile(const QString& path, TransformationFile& file);
/// Version 5: the matrix with the names of source and target.
[[nodiscard]] QByteArray transformationText(const C3dMatrix& matrix, const QString& sourceFile,
                                            const QString& targetFile);

// The file of a whole-run model (.glm).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/whole_run_model.h"

#include <QByteArray>
#include <span>

/// Name of a model that belongs to no project.
inline const QString defaultGLMFileName = QStringLiteral("vco.glm");

enum class GLMParseResult {
    Ok,
    Damaged,             ///< shorter or longer than its counts say, or with impossible values
    OtherDataType,       ///< not of functional slices
    NoFunctionalProject, ///< the file is of functional slices, the project has none: an empty size
    OtherDimensions,     ///< matrix or slices are not `size`
    InsufficientMemory,  ///< for the maps
    NotDerived,          ///< deriveFromDesign() failed, after its message
};

/// Parses a file and derives what it does not hold. Every count is checked against the number of
/// bytes before anything is allocated. A file has the type 2 or 3; it is of functional slices when
/// its resolution is 3, since smaller ones count voxels of anatomical space. Design, inverse and
/// maps must be finite. conditionOfColumn stays empty and subjects are 1. The model is released
/// unless Ok.
[[nodiscard]] GLMParseResult parseGLM(std::span<const uint8_t> bytes, const VolumeSize& size,
                                      WholeRunModel& model);

/// Everything before the maps. The maps follow as nrOfMapRows() x nrOfVoxels() little-endian
/// floats. A text is Latin-1, or UTF-8 where Latin-1 can't hold it; at most 4095 bytes.
[[nodiscard]] QByteArray glmHeader(const WholeRunModel& model);

/// Reads the file of a functional project with volumes of this size, without a copy of it in
/// memory. False after a message, with the model released. The caller fills conditionOfColumn.
[[nodiscard]] bool readGLMFile(const QString& fileName, const VolumeSize& size,
                               WholeRunModel& model);
/// Writes the file atomically, map row by map row; GLMType becomes 3. An empty name means the
/// default. False after a message, with an existing file and GLMType untouched; so also for a model
/// that is not valid.
[[nodiscard]] bool writeGLMFile(const QString& fileName, WholeRunModel& model);

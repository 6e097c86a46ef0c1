// The file of a whole-run model (.glm).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/whole_run_model.h"

#include <QByteArray>
#include <span>

enum class GLMParseResult {
    Ok,
    Damaged,        ///< shorter than its counts say, or counts that can't be
    OtherDataType,  ///< not of functional slices
    OtherDimensions ///< matrix or slices are not `size`
};

/// Parses a file and derives what it does not hold. Every count is checked against the number of
/// bytes before anything is allocated. conditionOfColumn stays empty. The model is released unless
/// Ok.
[[nodiscard]] GLMParseResult parseGLM(std::span<const uint8_t> bytes, const VolumeSize& size,
                                      WholeRunModel& model);

/// Everything before the maps. The maps follow as nrOfMapRows() x nrOfVoxels() little-endian
/// floats.
[[nodiscard]] QByteArray glmHeader(const WholeRunModel& model);

/// Reads the file of a functional project with volumes of this size. False after a message, with
/// the model released. The caller fills conditionOfColumn.
[[nodiscard]] bool readGLMFile(const QString& fileName, const VolumeSize& size,
                               WholeRunModel& model);
/// Writes the file atomically, map row by map row; GLMType becomes 3. False after a message, with
/// an existing file untouched.
[[nodiscard]] bool writeGLMFile(const QString& fileName, WholeRunModel& model);

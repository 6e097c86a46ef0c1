// The first volume of a run as it was read, before any correction (-firstvol.img).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

/// Project path without extension + "-firstvol.img".
[[nodiscard]] QString firstVolumeFileName(const FMRProject& project);

/// Writes the samples of project.firstVolume, 16-bit little endian in slice order. False after a
/// message, with an existing file untouched, when that fails; false without a message when the run
/// has no first volume.
[[nodiscard]] bool writeFirstVolume(const FMRProject& project);

/// Reads it into project.firstVolume, whose size the project states. False, with nothing read,
/// after a message when the file is missing or too short.
[[nodiscard]] bool readFirstVolume(FMRProject& project);

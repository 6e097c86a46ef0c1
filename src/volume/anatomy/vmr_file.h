// The file of an anatomical volume (.vmr).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/vmr_volume.h"

#include <QString>
#include <cstdint>
#include <span>

enum class VMRBlock { Working, Secondary };

/// Reads sizes and place, and the voxels if `voxels` is asked for and has their number. False after
/// a message: no file, a version above 4, cut off.
[[nodiscard]] bool readVMRHeader(const QString& path, VMRHeader& header);

/// Loads the voxels into the cube, in its middle when they are fewer. `requireCube`: only 256 on
/// all sides is taken. False after a message; `volume` is then empty. A side above 256 is not
/// taken. Failing memory ends the program after a message.
[[nodiscard]] bool loadVMR(const QString& path, VMRVolume& volume, bool requireCube = false);

/// Writes the working or the secondary cube, as a whole 256 cube or, with sizes below that, the
/// part that the sizes and offsets name. False after a message, with an existing file untouched.
[[nodiscard]] bool saveVMR(const QString& path, const VMRVolume& volume,
                           VMRBlock block = VMRBlock::Working);

// The file of an anatomical volume (.vmr).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/vmr_volume.h"

#include <QString>

enum class VMRBlock { Working, Secondary };

/// Reads sizes and place; the voxels are only counted. In the prefix form nothing behind the voxels
/// is read. False after a message, with `header` unchanged: no file, a version above 4, a side of
/// 0, cut off, or a count that the rest of the file can't hold.
[[nodiscard]] bool readVMRHeader(const QString& path, VMRHeader& header);

/// Loads the voxels into the cube, in its middle when they are fewer. `requireCube`: only 256 on
/// all sides is taken. False after a message; `volume` is then empty. A side above 256 is not
/// taken. Failing memory ends the program after a message. What stands behind the voxels may be cut
/// off or damaged: the volume then has no place, or no second block.
[[nodiscard]] bool loadVMR(const QString& path, VMRVolume& volume, bool requireCube = false);

/// Writes the working or the secondary cube, as a whole 256 cube or, with sizes below that, the
/// part that the sizes and offsets name. With `hasExtendedHeader` the second block follows, zeros
/// where there is none. Without it a file can't begin with a DimX of 2 to 10, which would read as a
/// version: the whole cube is written then. False after a message, with an existing file untouched,
/// also for a volume without the block that is asked for.
[[nodiscard]] bool saveVMR(const QString& path, const VMRVolume& volume,
                           VMRBlock block = VMRBlock::Working);

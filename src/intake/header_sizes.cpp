// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/header_sizes.h"

#include "base/messages.h"

#include <cmath>

namespace {

// A number that is none fails each comparison.
bool isLength(float value) {
    return value > 0.0f && value <= largestLength;
}

// False when the length is stated and can't be.
bool take(const std::optional<float>& length, float& target) {
    if (!length)
        return true;
    if (isLength(*length))
        target = *length;
    return isLength(*length);
}

bool takeGap(const std::optional<float>& gap, FMRProject& project) {
    if (!gap)
        return true;
    const bool usable = std::abs(*gap) <= largestLength && isLength(project.sliceThickness + *gap);
    if (usable)
        project.sliceGap = *gap;
    return usable;
}

} // namespace

void takeHeaderSizes(const HeaderSizes& sizes, const QString& fileName, FMRProject& project) {
    FMRPositionInfo& position = project.position;
    bool usable = take(sizes.pixelSizeX, project.pixelSizeX);
    usable &= take(sizes.pixelSizeY, project.pixelSizeY);
    // A gap goes with the thickness that it was stated with.
    usable &=
        take(sizes.sliceThickness, project.sliceThickness) && takeGap(sizes.sliceGap, project);
    usable &= take(sizes.fieldOfViewX, position.fovColumns);
    usable &= take(sizes.fieldOfViewY, position.fovRows);
    position.nrOfRows = project.ResolutionY;
    position.nrOfColumns = project.ResolutionX;
    position.sliceThickness = project.sliceThickness;
    position.sliceGap = project.sliceGap;
    if (usable && sizes.pixelSizeX && sizes.pixelSizeY && sizes.sliceThickness)
        project.VoxelResolutionVerified = true;
    if (!usable)
        showWarning(QString("WARNING: The header of file \"%1\" states sizes that can't be; the "
                            "run goes on without them. Check voxel size and field of view !")
                        .arg(fileName));
}

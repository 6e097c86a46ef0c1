// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/header_sizes.h"

#include "base/messages.h"

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

// Thickness and gap go together: they are right or wrong by the distance that they make.
bool takeDistance(const HeaderSizes& sizes, FMRProject& project) {
    const float thickness = sizes.sliceThickness.value_or(project.sliceThickness);
    const float gap = sizes.sliceGap.value_or(project.sliceGap);
    if (!(thickness >= 0.0f && thickness <= largestLength && isLength(thickness + gap)))
        return false;
    project.sliceThickness = thickness;
    project.sliceGap = gap;
    return true;
}

} // namespace

void takeHeaderSizes(const HeaderSizes& sizes, const QString& fileName, FMRProject& project) {
    FMRPositionInfo& position = project.position;
    bool usable = take(sizes.pixelSizeX, project.pixelSizeX);
    usable &= take(sizes.pixelSizeY, project.pixelSizeY);
    if (sizes.sliceThickness || sizes.sliceGap)
        usable &= takeDistance(sizes, project);
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

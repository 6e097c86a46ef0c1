// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/header_sizes.h"

#include "base/messages.h"
#include "intake/header_numbers.h"

namespace {

// False when the stated length is invalid.
bool take(const std::optional<float>& length, float& target) {
    if (!length)
        return true;
    if (isLength(*length))
        target = *length;
    return isLength(*length);
}

// Thickness and gap are valid or invalid together, by the slice distance.
bool takeDistance(const HeaderSizes& sizes, FMRProject& project) {
    const float thickness = sizes.sliceThickness.value_or(project.sliceThickness);
    const float gap = sizes.sliceGap.value_or(project.sliceGap);
    // With a stated gap a thickness of 0 means that it is unknown.
    const bool unknown = thickness == 0.0f && sizes.sliceGap.has_value();
    if (!(unknown || isLength(thickness)) || !isLength(thickness + gap))
        return false;
    project.sliceThickness = thickness;
    project.sliceGap = gap;
    return true;
}

} // namespace

// NaN fails each comparison.
bool isLength(float millimetres) {
    return millimetres > 0.0f && millimetres <= largestLength;
}

std::optional<float> statedLength(double millimetres) {
    return millimetres == 0.0 ? std::nullopt : std::optional(limitedFloat(millimetres));
}

void takeHeaderSizes(const HeaderSizes& sizes, const QString& fileName, FMRProject& project) {
    FMRPositionInfo& position = project.position;
    bool usable = take(sizes.pixelSizeX, project.pixelSizeX);
    usable &= take(sizes.pixelSizeY, project.pixelSizeY);
    if (sizes.sliceThickness || sizes.sliceGap)
        usable &= takeDistance(sizes, project);
    usable &= take(sizes.fieldOfViewX, position.fovColumns);
    usable &= take(sizes.fieldOfViewY, position.fovRows);
    position.sizesFromHeaders = true;
    if (usable && sizes.pixelSizeX && sizes.pixelSizeY && sizes.sliceThickness)
        project.VoxelResolutionVerified = true;
    if (!usable)
        showWarning(QString("WARNING: The header of file \"%1\" states invalid sizes; the run "
                            "goes on without them. Check voxel size and field of view !")
                        .arg(fileName));
}

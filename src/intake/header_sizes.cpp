// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/header_sizes.h"

#include "base/messages.h"
#include "intake/header_numbers.h"

namespace {

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
    // Beside a gap that the header states, a thickness of 0 is one that is not known.
    const bool unknown = thickness == 0.0f && sizes.sliceGap.has_value();
    if (!(unknown || isLength(thickness)) || !isLength(thickness + gap))
        return false;
    project.sliceThickness = thickness;
    project.sliceGap = gap;
    return true;
}

} // namespace

// A number that is none fails each comparison.
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
    if (usable && sizes.pixelSizeX && sizes.pixelSizeY && sizes.sliceThickness)
        project.VoxelResolutionVerified = true;
    if (!usable)
        showWarning(QString("WARNING: The header of file \"%1\" states sizes that can't be; the "
                            "run goes on without them. Check voxel size and field of view !")
                        .arg(fileName));
}

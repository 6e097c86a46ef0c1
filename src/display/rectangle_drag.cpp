// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/rectangle_drag.h"

#include <algorithm>

VoxelRectangle RectangleDrag::rectangle() const {
    const auto [left, right] = std::minmax(first.x, last.x);
    const auto [top, bottom] = std::minmax(first.y, last.y);
    return {first.slice, left, right + 1, top, bottom + 1};
}

QRect RectangleDrag::voxels() const {
    const VoxelRectangle sides = rectangle();
    return {sides.left, sides.top, sides.right - sides.left, sides.bottom - sides.top};
}

QString rectangleText(const VoxelRectangle& rectangle, const SliceRange& slices) {
    const auto range = [](int first, int last) {
        return first == last ? QString::number(first) : QString("%1-%2").arg(first).arg(last);
    };
    const qint64 count = qint64(rectangle.right - rectangle.left) *
                         (rectangle.bottom - rectangle.top) * (slices.last - slices.first + 1);
    return QString("x %1  y %2  %3 %4   %5 %6")
        .arg(range(rectangle.left + 1, rectangle.right), range(rectangle.top + 1, rectangle.bottom),
             slices.first == slices.last ? "slice" : "slices",
             range(slices.first + 1, slices.last + 1))
        .arg(count)
        .arg(count == 1 ? "voxel" : "voxels");
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/section_fields.h"

#include "volume/anatomy/vmr_volume.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr CubeVoxel origin{0, 0, 0};

int product(const CubeVoxel& first, const CubeVoxel& second) {
    return first.x * second.x + first.y * second.y + first.z * second.z;
}

/// Where a voxel lies in a section, from 0.
int columnOf(SectionAxis axis, const CubeVoxel& voxel) {
    return product(voxel, sectionVoxel(axis, 1, 0, origin));
}

int rowOf(SectionAxis axis, const CubeVoxel& voxel) {
    return product(voxel, sectionVoxel(axis, 0, 1, origin));
}

int limited(int coordinate) {
    return std::clamp(coordinate, 0, cubeSide - 1);
}

/// The number of the voxel at this share of a side.
int voxelAtShare(double share) {
    return int(std::clamp(std::floor(share * cubeSide), 0.0, double(cubeSide - 1)));
}

} // namespace

std::optional<SectionAxis> SectionFields::sectionAt(QPointF position) const {
    for (const SectionAxis axis : {SectionAxis::X, SectionAxis::Y, SectionAxis::Z})
        if (sections[size_t(axis)].contains(position))
            return axis;
    return {};
}

CubeVoxel SectionFields::voxelAt(SectionAxis axis, QPointF position, const CubeVoxel& cross) const {
    const QRectF& area = sections[size_t(axis)];
    const int column = voxelAtShare((position.x() - area.left()) / area.width());
    const int row = voxelAtShare((position.y() - area.top()) / area.height());
    return sectionVoxel(axis, column, upsideDown[size_t(axis)] ? cubeSide - 1 - row : row, cross);
}

QRectF SectionFields::areaOf(SectionAxis axis, const CubeVoxel& voxel) const {
    const QRectF& area = sections[size_t(axis)];
    const double side = area.width() / cubeSide;
    const int row = rowOf(axis, voxel);
    const int shownRow = upsideDown[size_t(axis)] ? cubeSide - 1 - row : row;
    return {area.left() + columnOf(axis, voxel) * side, area.top() + shownRow * side, side, side};
}

SectionFields sectionFields(const QRectF& room, double pixelRatio) {
    const auto onPixels = [pixelRatio](double length) {
        return std::floor(length * pixelRatio) / pixelRatio;
    };
    const double gap = onPixels(4);
    const double side = onPixels((std::min(room.width(), room.height()) - gap) / 2);
    if (side <= 0)
        return {};
    const double left = onPixels(room.center().x() - side - gap / 2);
    const double top = onPixels(room.center().y() - side - gap / 2);
    const double right = left + side + gap;
    const double below = top + side + gap;
    SectionFields fields;
    fields.sections[size_t(SectionAxis::X)] = {left, top, side, side};
    fields.sections[size_t(SectionAxis::Z)] = {right, top, side, side};
    fields.sections[size_t(SectionAxis::Y)] = {left, below, side, side};
    fields.readOut = {right, below, room.right() - right, side};
    return fields;
}

CubeVoxel movedVoxel(SectionAxis axis, const CubeVoxel& voxel, int columns, int rows,
                     int sections) {
    const CubeVoxel within = sectionVoxel(axis, columns, rows, origin);
    const auto moved = [&](int from, int by, SectionAxis through) {
        return limited(from + by + (axis == through ? sections : 0));
    };
    return {moved(voxel.x, within.x, SectionAxis::X), moved(voxel.y, within.y, SectionAxis::Y),
            moved(voxel.z, within.z, SectionAxis::Z)};
}

// What is drawn over the tiles at the resolution of the screen: their borders, slice numbers, the
// patient's sides, the cross of a voxel.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/patient_sides.h"
#include "display/slice_mosaic_geometry.h"

#include <QColor>
#include <QFont>

class QPainter;

inline const QColor labelColor(196, 202, 210);
inline const QColor labelGround(0, 0, 0, 150);

/// A text in the middle of a ground that keeps it readable on bright pictures.
void paintLabel(QPainter& painter, const QRectF& ground, const QString& text);

/// Lines between the tiles; in the visible part of each that is large enough for it, the number of
/// its slice, from 1, and the sides where they are known.
void paintTileMarks(QPainter& painter, const MosaicTiles& tiles, const PatientSides& sides,
                    const QRectF& visible, const QFont& font);

/// A cross around the voxel, if its slice is shown.
void paintVoxelCross(QPainter& painter, const MosaicTiles& tiles, const VoxelPosition& voxel);

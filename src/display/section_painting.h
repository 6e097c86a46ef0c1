// What is drawn over the sections and beside them, at the resolution of the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/anatomical_picture.h"
#include "display/anatomical_read_out.h"
#include "display/section_fields.h"
#include "display/section_sides.h"

#include <QFont>

class QPainter;

/// "Coronal  x 128", or without a known name "x 128".
[[nodiscard]] QString sectionTitle(const SectionSides& sides, SectionAxis axis,
                                   const CubeVoxel& cross);

/// The image of one section in its field, its title, the letters of the patient's sides and the
/// lines of the cross, which leave the voxel itself free.
void paintSection(QPainter& painter, const QImage& image, const SectionFields& fields,
                  SectionAxis axis, const SectionSides& sides, const CubeVoxel& cross,
                  const QFont& font);

/// A title and as many of the lines as the area has room for.
void paintReadOutLines(QPainter& painter, const QRectF& area, const QString& title,
                       const std::vector<ReadOutLine>& lines, const QFont& font);

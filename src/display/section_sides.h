// Which sides of the patient the borders of a section are.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/anatomy.h"

#include <QString>

/// The letters at the borders of a section, as image headers have them: R and L, A and P, H(ead)
/// and F(eet). Empty where a side isn't known or lies further than 45 degrees from it.
struct SectionSides {
    QString left; ///< where the columns begin
    QString right;
    QString top; ///< where the rows begin
    QString bottom;
    QString name; ///< "Sagittal", "Coronal", "Transversal"; empty where that isn't known

    /// The section is to be shown with its rows from below, so that the head or the front is above.
    [[nodiscard]] bool upsideDown() const { return top == "F" || top == "P"; }
};

/// From the way to the scanner's coordinates where the cube has one; a cube in AC-PC or Talairach
/// space lies as these prescribe (x from front to back, y from head to feet, z from right to left,
/// or from left to right where the file states the neurological convention). Nothing is known of
/// other cubes.
[[nodiscard]] SectionSides sectionSides(const AnatomicalCube& cube, SectionAxis axis);

// Which side of a slice image is the patient's left.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <QString>

/// The letters at the left and the right border of the images: "L" and "R" of the patient.
struct PatientSides {
    QString atLeft;
    QString atRight;

    [[nodiscard]] bool known() const { return !atLeft.isEmpty(); }
};

/// Known only where image headers gave the direction of the rows, in patient coordinates that grow
/// to the patient's left, and the rows run within 45 degrees of the left-right axis: in transversal
/// and coronal slices. Readers that may turn images over (ImageTransformation) take no positions
/// from headers, so the rows are stored as the header describes them. The convention that a project
/// file states says nothing of how its slices are stored, and is not used.
[[nodiscard]] PatientSides patientSides(const FMRPositionInfo& position);

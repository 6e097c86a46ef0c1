// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/patient_sides.h"

#include <cmath>

PatientSides patientSides(const FMRPositionInfo& position) {
    constexpr int scannerCoordinates = 1;
    constexpr float cosineOf45Degrees = 0.70710678f;
    constexpr float tolerance = 0.01f;
    const Vector3& row = position.rowDirection;
    const float length = std::hypot(row[0], row[1], row[2]);
    // Also false for directions that are not numbers.
    const bool isDirection = std::fabs(length - 1.0f) <= tolerance;
    if (position.positionInfoValid != 1 || position.coordinateSystem != scannerCoordinates ||
        !isDirection || std::fabs(row[0]) <= cosineOf45Degrees)
        return {};
    return row[0] > 0.0f ? PatientSides{"R", "L"} : PatientSides{"L", "R"};
}

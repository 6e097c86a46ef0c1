// Reference responses that are computed. The file that comes with the program is made of them, and
// a test keeps the two equal; the program itself reads that file, as it reads any other one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

/// Responses of the two-gamma function to the nine courses, for windows of `nrOfPoints` with `TR`
/// in milliseconds, as percent signal change above 100: a task starts 0, 10 or 20 s after the start
/// of the compared window and is held for 10, 20 or 30 s. A point is the response in the middle of
/// its volume. Each curve has a standard deviation of 0.5 % over its points, unless it has none.
/// All 100 without a TR.
[[nodiscard]] ReferenceCurves idealResponses(int nrOfPoints, double TR);

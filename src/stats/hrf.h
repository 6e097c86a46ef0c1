// The two-gamma haemodynamic response.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

struct TwoGammaHRFParams {
    float timeToPeak = 6.0f;        ///< seconds, positive response
    float timeToUndershoot = 16.0f; ///< seconds
    float dispersion = 1.0f;
    float undershootDispersion = 1.0f;
    float undershootRatio = 6.0f; ///< response to undershoot
    float onset = 0.0f;           ///< seconds
    float length = 32.0f;         ///< seconds, of the kernel
};

// The linear model of the mean time course of one region, and its table.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>
#include <span>
#include <vector>

struct WholeRunDesign;

/// The fit of a time course of n points with p predictors.
struct ROIGLM {
    int n = 0;
    int p = 0;
    double SSY = 0.0; ///< total, about the mean
    double SSR = 0.0; ///< regression
    double SSE = 0.0; ///< residual
    float MSE = 0.0f;
    float R = 0.0f;
    float adjustedR = 0.0f;
    float F = 0.0f;
    float pOfF = 1.0f;
    float AR1 = 0.0f; ///< lag-one value of the residuals
    std::vector<float> betas;
    std::vector<float> standardErrors;
    std::vector<float> t;
    std::vector<float> pOfT;
    std::vector<float> data; ///< n, as fitted
    std::vector<float> model;
    std::vector<float> residuals;

    [[nodiscard]] int dfRegression() const { return p > 1 ? p - 1 : 1; }
    [[nodiscard]] int dfResidual() const { return n - p; }
};

inline constexpr int fewestROIGLMPoints = 30;

/// True when a curve of this length can be fitted with the design.
[[nodiscard]] bool canFitROIGLM(const WholeRunDesign& design, int nrOfValues);
/// Least squares of the curve. False when canFitROIGLM() is, or memory runs out, which ends the
/// program. A curve that the model explains nothing of gives R = 0 and F = 0.
[[nodiscard]] bool fitROIGLM(const WholeRunDesign& design, std::span<const float> curve,
                             ROIGLM& result);
/// The same fit to curve and design whitened within each study by the lag-one value of `first`.
[[nodiscard]] bool fitWhitenedROIGLM(const WholeRunDesign& design, std::span<const float> curve,
                                     const ROIGLM& first, ROIGLM& result);

/// The HTML page with the table of each fit: the first as it is, then, if there is one, that of the
/// whitened data.
[[nodiscard]] QByteArray roiGLMTable(const ROIGLM& fit, const ROIGLM* whitened,
                                     const QStringList& predictorNames);

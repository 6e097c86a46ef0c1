// The linear model of the mean time course of one region, and its table.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>
#include <span>
#include <vector>

struct WholeRunDesign;

/// The fit of a time course of n points with p predictors. Double, where the table is printed from:
/// a signal of 1000 with three decimals has more digits than a float.
struct ROIGLM {
    int n = 0;
    int p = 0;
    int rank = 0;     ///< directions of the design; p unless columns are zeros or depend on others
    double SSY = 0.0; ///< total, about the mean
    double SSR = 0.0; ///< regression
    double SSE = 0.0; ///< residual
    double MSE = 0.0;
    float R = 0.0f;
    float adjustedR = 0.0f;
    double F = 0.0;
    float pOfF = 1.0f;
    double AR1 = 0.0;          ///< lag-one value of the residuals, within studies
    double whitenedBy = 0.0;   ///< lag-one value that data and design were whitened with
    std::vector<double> betas; ///< p, like the next three
    std::vector<double> standardErrors;
    std::vector<double> t; ///< 0 with p of 1 where there is no standard error
    std::vector<float> pOfT;
    std::vector<float> data; ///< n, as fitted, like the next two
    std::vector<float> model;
    std::vector<float> residuals;

    /// Columns that depend on others don't count, as in the maps.
    [[nodiscard]] int dfRegression() const { return rank > 1 ? rank - 1 : 1; }
    [[nodiscard]] int dfResidual() const { return n - rank; }
    /// The model explains nothing: no variance in the curve, or none that the predictors share.
    [[nodiscard]] bool explainsNothing() const { return SSR <= 0.0; }
};

inline constexpr int fewestROIGLMPoints = 30;

/// True when a curve of this length can be fitted with the design: as many points as the design
/// has, at least fewestROIGLMPoints, and at least one predictor, all values finite.
[[nodiscard]] bool canFitROIGLM(const WholeRunDesign& design, int nrOfValues);
/// Least squares of the curve. False when canFitROIGLM() is, or memory runs out, which ends the
/// program. A curve that the model explains nothing of gives R = 0 and F = 0.
[[nodiscard]] bool fitROIGLM(const WholeRunDesign& design, std::span<const float> curve,
                             ROIGLM& result);
/// The same fit to curve and design whitened within each study by the lag-one value a of `first`:
/// y(t) - a y(t-1), without the first point of each study (D. Cochrane and G. H. Orcutt, Journal of
/// the American Statistical Association 44, 1949, 32-61).
[[nodiscard]] bool fitWhitenedROIGLM(const WholeRunDesign& design, std::span<const float> curve,
                                     const ROIGLM& first, ROIGLM& result);

/// The HTML page with the table of each fit: the first as it is, then, if there is one, that of the
/// whitened data. ASCII; what else names hold is written as character references.
[[nodiscard]] QByteArray roiGLMTable(const ROIGLM& fit, const ROIGLM* whitened,
                                     const QStringList& predictorNames);

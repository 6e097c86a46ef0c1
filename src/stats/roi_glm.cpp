// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/roi_glm.h"

#include "base/file_writing.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/program_end.h"
#include "stats/numerics/linear_systems.h"
#include "stats/numerics/matrix_products.h"
#include "stats/thresholds.h"
#include "stats/whole_run_model.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// What is fitted, in double.
struct Observations {
    std::vector<double> y; ///< n
    std::vector<double> X; ///< n x p
    std::vector<int> studyPoints;
    int p = 0;

    [[nodiscard]] int n() const { return int(y.size()); }
};

Observations observations(const WholeRunDesign& design, std::span<const float> curve) {
    Observations observed;
    observed.y.assign(curve.begin(), curve.end());
    observed.X.assign(design.GLMDesign.begin(), design.GLMDesign.end());
    observed.p = design.GLMPredictors();
    for (const GLMStudy& study : design.studies)
        observed.studyPoints.push_back(study.dataPoints);
    return observed;
}

/// Each point less a times the one before in its study, which the first points don't have.
Observations whitened(const Observations& observed, double a) {
    Observations result;
    result.p = observed.p;
    const size_t p = size_t(observed.p);
    size_t t = 0;
    for (const int points : observed.studyPoints) {
        const size_t end = t + size_t(points);
        for (++t; t < end; ++t) {
            result.y.push_back(observed.y[t] - a * observed.y[t - 1]);
            for (size_t i = t * p; i < (t + 1) * p; ++i)
                result.X.push_back(observed.X[i] - a * observed.X[i - p]);
        }
        result.studyPoints.push_back(points - 1);
    }
    return result;
}

double squaredAboutMean(const std::vector<double>& values) {
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) /
                        double(std::max<size_t>(values.size(), 1));
    double sum = 0.0;
    for (const double value : values)
        sum += (value - mean) * (value - mean);
    return sum;
}

double squared(const std::vector<double>& values) {
    return std::inner_product(values.begin(), values.end(), values.begin(), 0.0);
}

/// Sum of e(t) e(t-1) within studies over the sum of e(t) squared.
double lagOneValue(const std::vector<double>& e, const std::vector<int>& studyPoints) {
    double products = 0.0;
    size_t t = 0;
    for (const int points : studyPoints) {
        const size_t end = t + size_t(points);
        for (++t; t < end; ++t)
            products += e[t] * e[t - 1];
    }
    const double all = squared(e);
    return all > 0.0 ? products / all : 0.0;
}

void setSums(ROIGLM& fit, const std::vector<double>& y, const std::vector<double>& model) {
    // Below this share of the model's squares there is nothing but rounding.
    constexpr double rounding = 1e-20;
    fit.SSY = squaredAboutMean(y);
    fit.SSR = squaredAboutMean(model);
    if (fit.SSY <= 0.0 || fit.SSR <= rounding * squared(model))
        fit.SSR = 0.0;
    // The constants of the studies make both sums add up; rounding must not turn the rest negative.
    fit.SSE = std::max(fit.SSY - fit.SSR, 0.0);
    const int df = fit.dfResidual();
    fit.MSE = df > 0 ? fit.SSE / df : 0.0;
    const double RSquared = fit.SSR > 0.0 ? std::min(fit.SSR / fit.SSY, 1.0) : 0.0;
    fit.R = float(std::sqrt(RSquared));
    fit.adjustedR =
        float(std::sqrt(std::max(0.0, 1.0 - (1.0 - RSquared) * (fit.n - 1) / std::max(1, df))));
}

void setTests(ROIGLM& fit, const std::vector<double>& inverse) {
    const int df = fit.dfResidual();
    if (!fit.explainsNothing() && df > 0) {
        fit.F = fit.SSR / fit.dfRegression() / fit.MSE;
        fit.pOfF = fProbability(fit.F, fit.dfRegression(), df);
    }
    for (size_t j = 0; j < fit.betas.size(); ++j) {
        const double variance = fit.MSE * inverse[j * fit.betas.size() + j];
        const double error = std::sqrt(std::max(variance, 0.0));
        const double t = error > 0.0 ? fit.betas[j] / error : 0.0;
        fit.standardErrors.push_back(error);
        fit.t.push_back(t);
        fit.pOfT.push_back(error > 0.0 ? tProbability(t, df) : 1.0f);
    }
}

std::vector<float> asFloats(const std::vector<double>& values) {
    return {values.begin(), values.end()};
}

// In double, since with a signal of 1000 an inverse and sums in float would be wrong in digits that
// the table prints.
bool fitObservations(const Observations& observed, ROIGLM& fit) {
    const int n = observed.n();
    const int p = observed.p;
    fit = {};
    fit.n = n;
    fit.p = p;
    std::vector<double> xx(size_t(p) * size_t(p));
    std::vector<double> xy(size_t(p), 0.0);
    const double* X = observed.X.data();
    numerics::t_intel_matrix_matrix_mult_d(X, X, xx.data(), p, p, n, true, false);
    numerics::t_intel_matrix_vector_mult_d(X, observed.y.data(), xy.data(), n, p, true);
    numerics::NormalInverse inverted;
    if (!numerics::invertNormalMatrix(xx, p, inverted))
        return false;
    fit.rank = inverted.rank;
    fit.betas.assign(size_t(p), 0.0);
    numerics::t_intel_matrix_vector_mult_d(inverted.inverse.data(), xy.data(), fit.betas.data(), p,
                                           p, false);
    std::vector<double> model(size_t(n), 0.0);
    numerics::t_intel_matrix_vector_mult_d(X, fit.betas.data(), model.data(), n, p, false);
    std::vector<double> residuals(observed.y);
    for (size_t t = 0; t < residuals.size(); ++t)
        residuals[t] -= model[t];
    setSums(fit, observed.y, model);
    setTests(fit, inverted.inverse);
    fit.AR1 = fit.SSY > 0.0 ? lagOneValue(residuals, observed.studyPoints) : 0.0;
    fit.data = asFloats(observed.y);
    fit.model = asFloats(model);
    fit.residuals = asFloats(residuals);
    return true;
}

/// Room for data and design, as they are and whitened, and for what is made of them.
bool hasMemory(const WholeRunDesign& design) {
    constexpr size_t copies = 4;
    if (memoryIsAvailable(copies * (design.GLMDesign.size() + size_t(design.GLMDataPoints())),
                          sizeof(double)))
        return true;
    showCritical("ERROR: Insufficient memory!");
    endProgram(1);
    return false;
}

// The lines of the page.

QByteArray escaped(const QString& name) {
    QByteArray text;
    for (const uint character : name.toHtmlEscaped().toUcs4())
        text += character < 128 ? QByteArray(1, char(character))
                                : "&#" + QByteArray::number(character) + ';';
    return text;
}

QByteArray varianceTable(const ROIGLM& fit) {
    constexpr char row[] = "  <tr bgcolor=#9090f0><td align=\"right\"><b>%s</b></td><td>%i</td>"
                           "<td>%6.3f</td><td>%6.3f</td>%s</tr>\n";
    constexpr char noTest[] = "<td> </td><td> </td>";
    const QByteArray test = formatted("<td>%6.3f</td><td>%8.6f</td>", fit.F, double(fit.pOfF));
    QByteArray text =
        "  <table border=\"0\" cellpadding=\"8\" cellspacing=\"1\">\n"
        "  <tr bgcolor=#90f090><th align=\"center\" colspan=\"6\">ANOVA</th></tr>\n"
        "  <tr bgcolor=#90f090><th>Source of Variation </th><th>df</th><th>SS</th><th>MS</th>"
        "<th><i>F</i></th><th><i>p</i></th></tr>\n";
    text += formatted(row, "Regression", fit.dfRegression(), fit.SSR, fit.SSR / fit.dfRegression(),
                      test.constData());
    text += formatted(row, "Residual", fit.dfResidual(), fit.SSE, fit.MSE, noTest);
    text += formatted(row, "Total", fit.n - 1, fit.SSY, fit.SSY / std::max(1, fit.n - 1), noTest);
    text += formatted("  <tr bgcolor=#9090f0><td colspan=\"6\">data points = %i &nbsp; &nbsp; "
                      "<b>R</b> = %4.3f &nbsp; adj.R = %4.3f &nbsp; &nbsp; <b>AR(1)</b> = %4.3f"
                      "</td></tr>\n",
                      fit.n, double(fit.R), double(fit.adjustedR), fit.AR1);
    return text + "  </table>\n"
                  "  <br /><br />\n";
}

QByteArray predictorTable(const ROIGLM& fit, const QStringList& names) {
    QByteArray text = "  <table border=\"0\" cellpadding=\"8\" cellspacing=\"1\">\n"
                      "  <tr bgcolor=#90f090><th>Predictor</th><th>beta</th><th>se</th>"
                      "<th><i>t</i></th><th><i>p</i></th></tr>\n";
    for (size_t j = 0; j < fit.betas.size(); ++j)
        text += formatted("  <tr bgcolor=#9090f0><td align=\"right\"><b>%s</b></td><td>%6.3f</td>"
                          "<td>%6.3f</td><td>%6.3f</td><td>%8.6f</td></tr>\n",
                          escaped(names.value(qsizetype(j))).constData(), fit.betas[j],
                          fit.standardErrors[j], fit.t[j], double(fit.pOfT[j]));
    return text + "  </table>\n"
                  "  <br /><br />\n";
}

QByteArray whiteningNote(double a) {
    return formatted("  <font color=#ffffff>\n"
                     "  <h2 align=\"center\"> After Correction of Serial Correlations</h2>\n"
                     "  <p>Data and design of each run were whitened with the AR(1) value %4.3f "
                     "above: each point less %4.3f times the one before. The first point of each "
                     "run is left out.</p>\n"
                     "  </font>\n",
                     a, a);
}

} // namespace

bool canFitROIGLM(const WholeRunDesign& design, int nrOfValues) {
    size_t points = 0;
    for (const GLMStudy& study : design.studies) {
        if (study.dataPoints < 1)
            return false;
        points += size_t(study.dataPoints);
    }
    return nrOfValues >= fewestROIGLMPoints && points == size_t(nrOfValues) &&
           design.GLMPredictors() > 0 &&
           design.GLMDesign.size() == points * size_t(design.GLMPredictors()) &&
           std::ranges::all_of(design.GLMDesign, [](float value) { return std::isfinite(value); });
}

bool fitROIGLM(const WholeRunDesign& design, std::span<const float> curve, ROIGLM& result) {
    return canFitROIGLM(design, int(curve.size())) && hasMemory(design) &&
           fitObservations(observations(design, curve), result);
}

bool fitWhitenedROIGLM(const WholeRunDesign& design, std::span<const float> curve,
                       const ROIGLM& first, ROIGLM& result) {
    const double a = first.AR1;
    if (!canFitROIGLM(design, int(curve.size())) || !hasMemory(design) ||
        !fitObservations(whitened(observations(design, curve), a), result))
        return false;
    result.whitenedBy = a;
    return true;
}

QByteArray roiGLMTable(const ROIGLM& fit, const ROIGLM* whitened,
                       const QStringList& predictorNames) {
    QByteArray page = "<html>\n"
                      " <head>\n"
                      "  <title>ROI Time Course - GLM Results</title>\n"
                      "  <meta name=\"generator\" content=\"Cortivo\">\n"
                      " </head>\n"
                      " <body bgcolor=#000000>\n"
                      " <font face=\"Helvetica,Arial\" color=#ffffff>\n"
                      "  <pre>\n</pre>\n"
                      "  <h1 align=\"center\"> ROI Time Course - GLM Results</h1>\n"
                      "  <br />\n"
                      "  </font>\n"
                      "  <font face=\"Helvetica,Arial\" color=#000000>\n";
    page += varianceTable(fit) + predictorTable(fit, predictorNames);
    if (whitened)
        page += whiteningNote(whitened->whitenedBy) + varianceTable(*whitened) +
                predictorTable(*whitened, predictorNames);
    return page + "  </font>\n"
                  " </body>\n"
                  "</html>\n";
}

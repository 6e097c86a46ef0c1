// The model of a region against NumPy in double, printed digit by printed digit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/roi_glm.h"

#include "stats/whole_run_model.h"
#include "support/files.h"

#include <cmath>
#include <limits>

namespace {

/// As in make_roi_glm_pages.py, which wrote the expected pages.
struct Measured {
    WholeRunDesign design;
    QStringList names{"Faces <left>", QString::fromUtf8("H\u00e4user")};
    std::vector<float> curve;

    explicit Measured(const std::vector<int>& points) {
        const size_t runs = points.size();
        for (size_t run = 0; run < runs; ++run) {
            design.studies.push_back({points[run], {}, {}});
            names << QString("Constant %1").arg(run + 1);
        }
        if (runs == 1)
            names << "Trend";
        design.predictors.resize(size_t(names.size()));
        unsigned state = 12345;
        double noise = 0.0;
        int t = 0;
        for (size_t run = 0; run < runs; ++run)
            for (const int end = t + points[run]; t < end; ++t) {
                const double first = t % 20 / 5 == 1 ? 1.0 : 0.0;
                const double second = t % 18 < 12 ? 0.0 : (t % 18 - 11) / 4.0;
                design.GLMDesign.insert(design.GLMDesign.end(), {float(first), float(second)});
                for (size_t constant = 0; constant < runs; ++constant)
                    design.GLMDesign.push_back(constant == run ? 1.0f : 0.0f);
                if (runs == 1)
                    design.GLMDesign.push_back(float(t) / 64.0f);
                state = (state * 1103515245u + 12345u) % (1u << 31);
                noise = 0.5 * noise + (int((state >> 16) % 2001) - 1000) / 64.0;
                curve.push_back(
                    float(1000.0 + 40.0 * double(run) + 12.0 * first - 5.0 * second + noise));
            }
    }
    [[nodiscard]] ROIGLM fit() const {
        ROIGLM result;
        EXPECT_TRUE(fitROIGLM(design, curve, result));
        return result;
    }
    [[nodiscard]] ROIGLM whitened() const {
        ROIGLM result;
        EXPECT_TRUE(fitWhitenedROIGLM(design, curve, fit(), result));
        return result;
    }
};

QByteArray expectedPage(const QString& name) {
    return contentOf(QStringLiteral(VELO_SOURCE_DIR "/tests/stats/") + name);
}

/// The design of one predictor.
WholeRunDesign oneColumn(int n) {
    WholeRunDesign design;
    design.studies.push_back({n, {}, {}});
    design.predictors.resize(1);
    design.GLMDesign.assign(size_t(n), 1.0f);
    return design;
}

void expectAllFinite(const ROIGLM& fit) {
    for (const std::vector<double>* values : {&fit.betas, &fit.standardErrors, &fit.t})
        for (const double value : *values)
            EXPECT_TRUE(std::isfinite(value));
}

} // namespace

TEST(ROIGLM, PagesHaveThePrintedDigitsOfDoublePrecision) {
    for (const auto& [name, points] : {std::pair("roi_glm_one_run.html", std::vector{120}),
                                       {"roi_glm_two_runs.html", std::vector{50, 40}}}) {
        const Measured measured(points);
        const ROIGLM second = measured.whitened();
        const QByteArray expected = expectedPage(name);
        ASSERT_FALSE(expected.isEmpty()) << name;
        EXPECT_EQ(roiGLMTable(measured.fit(), &second, measured.names).toStdString(),
                  expected.toStdString());
        // Without the correction: the same up to its heading, then the same end.
        const qsizetype heading = expected.indexOf("  <font color=#ffffff>\n  <h2");
        EXPECT_EQ(roiGLMTable(measured.fit(), nullptr, measured.names).toStdString(),
                  (expected.left(heading) + "  </font>\n </body>\n</html>\n").toStdString());
    }
}

TEST(ROIGLM, CurvesAreThoseOfTheFit) {
    const Measured measured({50, 40});
    const ROIGLM fit = measured.fit();
    const ROIGLM whitened = measured.whitened();
    EXPECT_EQ(fit.data, measured.curve);
    ASSERT_EQ(whitened.data.size(), 88u);
    EXPECT_EQ(whitened.whitenedBy, fit.AR1);
    for (const auto& [point, t] : {std::pair(0u, 1u), {48u, 49u}, {49u, 51u}, {87u, 89u}})
        EXPECT_NEAR(double(whitened.data[point]),
                    double(measured.curve[t]) - fit.AR1 * double(measured.curve[t - 1]), 1e-4);
    for (const ROIGLM* one : {&fit, &whitened})
        for (size_t t = 0; t < one->data.size(); ++t)
            EXPECT_NEAR(one->data[t] - one->model[t], one->residuals[t], 1e-4f);
}

TEST(ROIGLM, WantsACurveOfTheDesignsLength) {
    WholeRunDesign wrong = oneColumn(40);
    wrong.studies = {{45, {}, {}}, {-5, {}, {}}};
    WholeRunDesign infinite = oneColumn(40);
    infinite.GLMDesign[7] = std::numeric_limits<float>::infinity();
    WholeRunDesign empty = oneColumn(40);
    empty.predictors.clear();
    empty.GLMDesign.clear();
    const std::tuple<WholeRunDesign, int, bool> cases[] = {
        {oneColumn(29), 29, false}, {oneColumn(30), 30, true}, {oneColumn(30), 31, false},
        {wrong, 40, false},         {infinite, 40, false},     {empty, 40, false}};
    for (const auto& [design, length, possible] : cases) {
        ROIGLM fit;
        const std::vector<float> curve(size_t(length), 7.0f);
        EXPECT_EQ(canFitROIGLM(design, length), possible) << length;
        EXPECT_EQ(fitROIGLM(design, curve, fit), possible);
        EXPECT_EQ(fitWhitenedROIGLM(design, curve, {}, fit), possible);
    }
}

TEST(ROIGLM, WithoutVarianceOrExplanationThereIsNoCorrelation) {
    Measured flat({120});
    flat.curve.assign(120, 1000.1f);
    const ROIGLM fit = flat.fit();
    EXPECT_TRUE(fit.explainsNothing());
    EXPECT_EQ(fit.SSY, 0.0);
    EXPECT_EQ(fit.R + fit.adjustedR + float(fit.F + fit.AR1), 0.0f);
    EXPECT_EQ(fit.pOfF, 1.0f);
    expectAllFinite(fit);
    expectAllFinite(flat.whitened());

    // A constant alone explains nothing of a curve, and its single degree of freedom stays 1.
    Measured alone({120});
    alone.design = oneColumn(120);
    const ROIGLM mean = alone.fit();
    EXPECT_TRUE(mean.explainsNothing());
    EXPECT_EQ(mean.dfRegression(), 1);
    EXPECT_EQ(mean.dfResidual(), 119);
    EXPECT_EQ(mean.F, 0.0);
    EXPECT_NEAR(mean.standardErrors[0], std::sqrt(mean.SSY / 119 / 120), 1e-9);
}

TEST(ROIGLM, AsManyPredictorsAsPointsLeaveNothingToTest) {
    Measured full({30});
    full.design.predictors.resize(30);
    full.design.GLMDesign.assign(900, 0.0f);
    for (size_t t = 0; t < 30; ++t)
        full.design.GLMDesign[t * 31] = 1.0f;
    const ROIGLM fit = full.fit();
    EXPECT_EQ(fit.dfResidual(), 0);
    EXPECT_EQ(fit.MSE + fit.F + fit.t[0], 0.0);
    EXPECT_EQ(fit.pOfF, 1.0f);
    EXPECT_NEAR(fit.betas[7], full.curve[7], 1e-3f);
    expectAllFinite(full.whitened());
}

TEST(ROIGLM, ColumnsThatSayNothingNewDoNotCount) {
    const Measured plain({120});
    Measured doubled({120});
    doubled.design.predictors.resize(6);
    doubled.design.GLMDesign.clear();
    for (size_t t = 0; t < 120; ++t) {
        const auto row = plain.design.GLMDesign.begin() + qsizetype(t) * 4;
        doubled.design.GLMDesign.insert(doubled.design.GLMDesign.end(), row, row + 4);
        doubled.design.GLMDesign.insert(doubled.design.GLMDesign.end(), {*row, 0.0f});
    }
    const ROIGLM fit = doubled.fit();
    EXPECT_EQ(fit.rank, 4);
    EXPECT_NEAR(fit.MSE, plain.fit().MSE, 1e-8);
    EXPECT_NEAR(fit.betas[0] + fit.betas[4], plain.fit().betas[0], 1e-8);
    EXPECT_EQ(fit.betas[5], 0.0);
    EXPECT_EQ(fit.pOfT[5], 1.0f);
    EXPECT_EQ(fit.dfResidual(), 116);
}

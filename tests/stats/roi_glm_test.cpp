// The model of a region against NumPy in double, printed digit by printed digit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/roi_glm.h"

#include "stats/whole_run_model.h"
#include "support/expected_table.h"

#include <cmath>
#include <limits>

namespace {

/// A run of 120 points, or two of 50 and 40, of make_roi_glm_pages.py.
struct Measured {
    WholeRunDesign design;
    QStringList names{"Faces <left>", QString::fromUtf8("H\u00e4user"), "Constant 1"};
    std::vector<float> curve;

    explicit Measured(const QByteArray& runs = "one_run") {
        const char* const table = "stats/roi_glm_runs.tsv";
        design.GLMDesign = expectedNumbers<float>(table, runs + " design");
        curve = expectedNumbers<float>(table, runs + " curve");
        const bool one = runs == "one_run";
        names << (one ? "Trend" : "Constant 2");
        design.studies = {{one ? 120 : 50, {}, {}}};
        if (!one)
            design.studies.push_back({40, {}, {}});
        design.predictors.resize(4);
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

/// The design of one predictor.
WholeRunDesign oneColumn(int n) {
    WholeRunDesign design;
    design.studies.push_back({n, {}, {}});
    design.predictors.resize(1);
    design.GLMDesign.assign(size_t(n), 1.0f);
    return design;
}

} // namespace

TEST(ROIGLM, PagesHaveThePrintedDigitsOfDoublePrecision) {
    for (const QByteArray runs : {"one_run", "two_runs"}) {
        const Measured measured(runs);
        const ROIGLM second = measured.whitened();
        const QByteArray expected =
            contentOf(VELO_SOURCE_DIR "/tests/stats/roi_glm_" + runs + ".html");
        EXPECT_EQ(roiGLMTable(measured.fit(), &second, measured.names).toStdString(),
                  expected.toStdString());
        // Without the correction: the same up to its heading, then the same end.
        const qsizetype heading = expected.indexOf("  <font color=#ffffff>\n  <h2");
        EXPECT_EQ(roiGLMTable(measured.fit(), nullptr, measured.names).toStdString(),
                  (expected.left(heading) + "  </font>\n </body>\n</html>\n").toStdString());
    }
}

TEST(ROIGLM, CurvesAreThoseOfTheFit) {
    const Measured measured("two_runs");
    const ROIGLM fit = measured.fit();
    const ROIGLM whitened = measured.whitened();
    EXPECT_EQ(fit.data, measured.curve);
    ASSERT_EQ(whitened.data.size(), 88u);
    EXPECT_EQ(whitened.whitenedBy, fit.AR1);
    for (const auto& [point, t] : {std::pair(0u, 1u), {48u, 49u}, {49u, 51u}, {87u, 89u}})
        EXPECT_NEAR(double(whitened.data[point]),
                    double(measured.curve[t]) - fit.AR1 * double(measured.curve[t - 1]), 1e-4);
    for (const ROIGLM& one : {fit, whitened})
        for (size_t t = 0; t < one.data.size(); ++t)
            EXPECT_NEAR(one.data[t] - one.model[t], one.residuals[t], 1e-4f);
}

TEST(ROIGLM, WantsACurveOfTheDesignsLength) {
    WholeRunDesign wrong = oneColumn(40), infinite = wrong, empty = wrong;
    wrong.studies = {{45, {}, {}}, {-5, {}, {}}};
    infinite.GLMDesign[7] = std::numeric_limits<float>::infinity();
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

TEST(ROIGLM, WhereNothingCanBeTestedAllIsFinite) {
    Measured flat, alone, full;
    flat.curve.assign(120, 1000.1f);
    alone.design = oneColumn(120); // a constant alone explains nothing of a curve
    full.curve.resize(30);
    full.design = oneColumn(30);
    full.design.predictors.resize(30);
    full.design.GLMDesign.assign(900, 0.0f);
    for (size_t t = 0; t < 30; ++t)
        full.design.GLMDesign[t * 31] = 1.0f;
    const std::tuple<Measured, bool, int> cases[] = {
        {flat, true, 116}, {alone, true, 119}, {full, false, 0}};
    for (const auto& [measured, explainsNothing, dfResidual] : cases) {
        const ROIGLM fit = measured.fit();
        EXPECT_EQ(fit.explainsNothing(), explainsNothing);
        EXPECT_EQ(fit.dfResidual(), dfResidual);
        EXPECT_EQ(fit.F, 0.0);
        EXPECT_EQ(fit.pOfF, 1.0f);
        for (const ROIGLM& one : {fit, measured.whitened()})
            for (const std::vector<double>* values : {&one.betas, &one.standardErrors, &one.t})
                EXPECT_TRUE(
                    std::ranges::all_of(*values, [](double x) { return std::isfinite(x); }));
    }
    EXPECT_EQ(flat.fit().R + flat.fit().adjustedR + float(flat.fit().AR1), 0.0f);
    EXPECT_EQ(full.fit().MSE + full.fit().t[0], 0.0);
    EXPECT_NEAR(full.fit().betas[7], full.curve[7], 1e-3f);
    const ROIGLM mean = alone.fit();
    EXPECT_EQ(mean.dfRegression(), 1);
    EXPECT_NEAR(mean.standardErrors[0], std::sqrt(mean.SSY / 119 / 120), 1e-9);
}

TEST(ROIGLM, ColumnsThatSayNothingNewDoNotCount) {
    const Measured plain;
    Measured doubled;
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

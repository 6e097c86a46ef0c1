// Thresholds: the controls, and the texts with their probabilities.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/thresholds.h"
#include "stats/whole_run_model.h"

#include <gtest/gtest.h>

TEST(ThresholdControls, StepWithinTheirLimits) {
    const std::tuple<MapKind, OverlayThresholds, bool, OverlayThresholds> cases[] = {
        {MapKind::T, {3.0f, 8.0f}, true, {3.2f, 8.0f}},
        {MapKind::F, {3.8f, 4.0f}, true, {4.0f, 5.0f}},
        {MapKind::T, {0.0001f, 0.5f}, false, {1.0f, 2.0f}},
        {MapKind::Correlation, {0.62f, 0.7f}, true, {0.64f, 0.74f}},
        {MapKind::CrossCorrelation, {0.9f, 1.0f}, true, {0.9f, 1.02f}},
    };
    for (const auto& [kind, before, up, after] : cases) {
        OverlayThresholds thresholds = before;
        stepThreshold(thresholds, kind, up);
        EXPECT_NEAR(thresholds.Threshold, after.Threshold, 1e-6f) << before.Threshold;
        EXPECT_NEAR(thresholds.ColorMaxThreshold, after.ColorMaxThreshold, 1e-6f);
    }
}

TEST(ThresholdControls, StartWithWhatTheSettingsState) {
    EXPECT_EQ(thresholdsAtStart(2.5f, 6), (OverlayThresholds{2.5f, 8.0f, 6}));
    EXPECT_EQ(thresholdsAtStart(7.5f, 0), (OverlayThresholds{7.5f, 8.5f, 1}));
}

TEST(ThresholdTexts, ShowTheValueAndItsProbability) {
    // Probabilities from SciPy's t and F distributions.
    StatisticalMaps maps;
    maps.MapDF1 = 190;
    EXPECT_EQ(thresholdText(maps, {3.0f}),
              " Threshold: <b>t</b>(190) =  3.00, <b>p</b> = 0.003062.");
    maps.MapType = MapKind::F;
    maps.MapDF1 = 3;
    maps.MapDF2 = 96;
    EXPECT_EQ(thresholdText(maps, {4.5f}),
              " Threshold: <b>F</b>(3,96) =  4.50, <b>p</b> = 0.005342.");
    maps.MapDF1 = 0; // of maps with unlike degrees of freedom
    EXPECT_EQ(thresholdText(maps, {4.5f}), " Threshold: <b>F</b> = <b> 4.50</b>");
    maps.MapType = MapKind::T;
    EXPECT_EQ(thresholdText(maps, {4.5f}), " Threshold: <b>t</b> = <b> 4.50</b>");
    for (const MapKind kind : {MapKind::Correlation, MapKind::CrossCorrelation}) {
        maps.MapType = kind;
        EXPECT_EQ(thresholdText(maps, {0.4f}), "<b>R</b> > <b> 0.40</b>");
        EXPECT_EQ(thresholdPrefix(maps), "<b>R</b> > ");
    }
    WholeRunModel model;
    EXPECT_EQ(meanAR1Text(model), "");
    model.MeanAR1Before = 0.25f;
    EXPECT_EQ(meanAR1Text(model), " Mean AR(1) = 0.2500");
    model.MeanAR1After = -0.01f;
    EXPECT_EQ(meanAR1Text(model), " Before correction of serial correlations, mean AR(1) = 0.2500  "
                                  "After correction, mean AR(1) = -0.0100");
    EXPECT_EQ(singleRunPanelText(12, 21.96, "T"),
              " volume <b>12</b>,  elapsed time: <b>  22.0</b> secs<br> T<br><br> Ready.<br>");
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/thresholds.h"

#include "base/file_writing.h"
#include "stats/numerics/special_functions.h"
#include "stats/whole_run_model.h"

#include <algorithm>
#include <cmath>

namespace {

bool isCorrelation(MapKind kind) {
    return kind == MapKind::Correlation || kind == MapKind::CrossCorrelation;
}

/// Colours need an upper threshold above the lower one.
void keepColorMaxAbove(OverlayThresholds& thresholds) {
    if (!(thresholds.ColorMaxThreshold > thresholds.Threshold))
        thresholds.ColorMaxThreshold = thresholds.Threshold + 1.0f;
}

/// Checked because betai ends the program on a ratio that is not a number.
bool areDegreesOfFreedom(double df) {
    return std::isfinite(df) && df > 0.0;
}

QByteArray fThresholdText(const StatisticalMaps& maps, float threshold) {
    if (maps.MapDF1 < 1 || maps.MapDF2 < 1)
        return formatted(" Threshold: <b>F</b> = <b>%5.2f</b>", double(threshold));
    const float p = fProbability(threshold, float(maps.MapDF1), float(maps.MapDF2));
    return formatted(" Threshold: <b>F</b>(%i,%i) = %5.2f, <b>p</b> = %8.6f.", maps.MapDF1,
                     maps.MapDF2, double(threshold), double(p));
}

QByteArray tThresholdText(const StatisticalMaps& maps, float threshold) {
    if (maps.MapDF1 < 1)
        return formatted(" Threshold: <b>t</b> = <b>%5.2f</b>", double(threshold));
    const float p = tProbability(threshold, float(maps.MapDF1));
    return formatted(" Threshold: <b>t</b>(%i) = %5.2f, <b>p</b> = %8.6f.", maps.MapDF1,
                     double(threshold), double(p));
}

} // namespace

OverlayThresholds thresholdsAtStart(float threshold, int clusterSizePixels) {
    OverlayThresholds thresholds;
    thresholds.Threshold = threshold;
    thresholds.ColorMaxThreshold = std::max(thresholds.ColorMaxThreshold, threshold + 1.0f);
    changeClusterSize(thresholds, clusterSizePixels);
    return thresholds;
}

float tProbability(double t, double df) {
    if (std::isnan(t) || !areDegreesOfFreedom(df))
        return 1.0f;
    return float(numerics::betai(0.5 * df, 0.5, df / (df + t * t)));
}

float fProbability(double F, double df1, double df2) {
    if (F < 0.0)
        return 0.0f;
    if (std::isnan(F) || !areDegreesOfFreedom(df1) || !areDegreesOfFreedom(df2))
        return 1.0f;
    return float(numerics::betai(0.5 * df2, 0.5 * df1, df2 / (df2 + df1 * F)));
}

QString thresholdText(const StatisticalMaps& maps, const OverlayThresholds& thresholds) {
    const float threshold = thresholds.Threshold;
    if (isCorrelation(maps.MapType))
        return QString::fromLatin1(formatted("<b>R</b> > <b>%5.2f</b>", double(threshold)));
    return QString::fromLatin1(maps.MapType == MapKind::F ? fThresholdText(maps, threshold)
                                                          : tThresholdText(maps, threshold));
}

QString thresholdPrefix(const StatisticalMaps& maps) {
    return isCorrelation(maps.MapType) ? QStringLiteral("<b>R</b> > ")
                                       : QStringLiteral("<b>t</b> > ");
}

QString meanAR1Text(const WholeRunModel& model) {
    const auto before = double(model.MeanAR1Before);
    if (model.MeanAR1Before == noMeanAR1)
        return {};
    if (model.MeanAR1After == noMeanAR1)
        return QString::fromLatin1(formatted(" Mean AR(1) = %6.4f", before));
    return QString::fromLatin1(formatted(" Before correction of serial correlations, mean AR(1) = "
                                         "%6.4f  After correction, mean AR(1) = %6.4f",
                                         before, double(model.MeanAR1After)));
}

QString singleRunPanelText(int volume, double elapsedSeconds, const QString& thresholdText) {
    return QString::fromUtf8(
        formatted(" volume <b>%i</b>,  elapsed time: <b>%6.1f</b> secs<br> %s<br><br> Ready.<br>",
                  volume, elapsedSeconds, thresholdText.toUtf8().constData()));
}

QString multiRunPanelText(const QString& thresholdText) {
    return "<br> " + thresholdText + "<br><br><br> Ready.<br>";
}

void stepThreshold(OverlayThresholds& thresholds, MapKind kind, bool up) {
    float& threshold = thresholds.Threshold;
    if (isCorrelation(kind)) {
        threshold += up ? 0.02f : -0.02f;
        thresholds.ColorMaxThreshold = threshold <= 0.6f ? 0.7f : threshold + 0.1f;
        threshold = std::clamp(threshold, 0.1f, 0.9f);
        return;
    }
    threshold = std::max(threshold + (up ? 0.2f : -0.2f), 1.0f);
    keepColorMaxAbove(thresholds);
}

void changeThreshold(OverlayThresholds& thresholds, float value) {
    constexpr float smallest = 0.0001f;
    thresholds.Threshold = value > smallest ? value : smallest;
    keepColorMaxAbove(thresholds);
}

void changeColorMaxThreshold(OverlayThresholds& thresholds, float value) {
    thresholds.ColorMaxThreshold = value;
    keepColorMaxAbove(thresholds);
}

void changeClusterSize(OverlayThresholds& thresholds, int value) {
    thresholds.ClusterSizePixels = std::max(value, 1);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/thresholds.h"

#include "base/file_writing.h"
#include "stats/numerics/special_functions.h"

#include <algorithm>
#include <cmath>

namespace {

bool isCorrelation(const StatisticalMaps& maps) {
    return maps.MapType == MapKind::Correlation || maps.MapType == MapKind::CrossCorrelation;
}

/// Colours need an upper threshold above the lower one.
void keepColorMaxAbove(StatisticalMaps& maps) {
    if (!(maps.ColorMaxThreshold > maps.Threshold))
        maps.ColorMaxThreshold = maps.Threshold + 1.0f;
}

/// What betai can take: it ends the program on a ratio that is no number.
bool areDegreesOfFreedom(float df) {
    return std::isfinite(df) && df > 0.0f;
}

QByteArray fThresholdText(const StatisticalMaps& maps) {
    const double threshold = double(maps.Threshold);
    if (maps.MapDF1 < 1 || maps.MapDF2 < 1)
        return formatted(" Threshold: <b>F</b> = <b>%5.2f</b>", threshold);
    const float p = fProbability(maps.Threshold, float(maps.MapDF1), float(maps.MapDF2));
    return formatted(" Threshold: <b>F</b>(%i,%i) = %5.2f, <b>p</b> = %8.6f.", maps.MapDF1,
                     maps.MapDF2, threshold, double(p));
}

QByteArray tThresholdText(const StatisticalMaps& maps) {
    const double threshold = double(maps.Threshold);
    if (maps.MapDF1 < 1)
        return formatted(" Threshold: <b>t</b> = <b>%5.2f</b>", threshold);
    const float p = tProbability(maps.Threshold, float(maps.MapDF1));
    return formatted(" Threshold: <b>t</b>(%i) = %5.2f, <b>p</b> = %8.6f.", maps.MapDF1, threshold,
                     double(p));
}

} // namespace

float tProbability(float t, float df) {
    if (std::isnan(t) || !areDegreesOfFreedom(df))
        return 1.0f;
    return float(numerics::betai(double(0.5f * df), 0.5, double(df / (df + t * t))));
}

float fProbability(float F, float df1, float df2) {
    if (F < 0.0f)
        return 0.0f;
    if (std::isnan(F) || !areDegreesOfFreedom(df1) || !areDegreesOfFreedom(df2))
        return 1.0f;
    return float(
        numerics::betai(double(0.5f * df2), double(0.5f * df1), double(df2 / (df2 + df1 * F))));
}

QString thresholdText(const StatisticalMaps& maps) {
    if (isCorrelation(maps))
        return QString::fromLatin1(formatted("<b>R</b> > <b>%5.2f</b>", double(maps.Threshold)));
    return QString::fromLatin1(maps.MapType == MapKind::F ? fThresholdText(maps)
                                                          : tThresholdText(maps));
}

QString thresholdPrefix(const StatisticalMaps& maps) {
    return isCorrelation(maps) ? QStringLiteral("<b>R</b> > ") : QStringLiteral("<b>t</b> > ");
}

QString singleRunPanelText(int volume, double elapsedSeconds, const QString& thresholdText) {
    return QString::fromUtf8(
        formatted(" volume <b>%i</b>,  elapsed time: <b>%6.1f</b> secs<br> %s<br><br> Ready.<br>",
                  volume, elapsedSeconds, thresholdText.toUtf8().constData()));
}

QString multiRunPanelText(const QString& thresholdText) {
    return "<br> " + thresholdText + "<br><br><br> Ready.<br>";
}

void stepThreshold(StatisticalMaps& maps, bool up) {
    if (isCorrelation(maps)) {
        maps.Threshold += up ? 0.02f : -0.02f;
        maps.ColorMaxThreshold = maps.Threshold <= 0.6f ? 0.7f : maps.Threshold + 0.1f;
        maps.Threshold = std::clamp(maps.Threshold, 0.1f, 0.9f);
        return;
    }
    maps.Threshold = std::max(maps.Threshold + (up ? 0.2f : -0.2f), 1.0f);
    keepColorMaxAbove(maps);
}

void changeThreshold(StatisticalMaps& maps, float value) {
    constexpr float smallest = 0.0001f;
    maps.Threshold = value > smallest ? value : smallest;
    keepColorMaxAbove(maps);
}

void changeColorMaxThreshold(StatisticalMaps& maps, float value) {
    maps.ColorMaxThreshold = value;
    keepColorMaxAbove(maps);
}

void changeClusterSize(StatisticalMaps& maps, int value) {
    maps.ClusterSizePixels = std::max(value, 1);
}

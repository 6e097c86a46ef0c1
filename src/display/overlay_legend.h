// The colour legend of the map overlay, beside the slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/appearance.h"
#include "stats/overlay_colors.h"
#include "stats/thresholds.h"

#include <QColor>
#include <QFont>
#include <QString>
#include <array>
#include <vector>

class QPainter;
class QRect;

struct OverlayLegend {
    /// The colour of a contrast, or of the overlap of several.
    struct Entry {
        QString name;
        QColor color;
    };

    bool overlayShown = false; ///< without, the legend is empty
    bool significanceColorCoding = false;
    QString statistic; ///< "t", "R" or "F", or what a view calls it
    float threshold = 0.0f;
    float colorMaxThreshold = 0.0f;
    bool positive = false; ///< a shown map colours positive values
    bool negative = false;
    std::array<QColor, nrOfOverlayColors> scale;
    std::vector<Entry> entries; ///< with contrast colours only
};

/// The legend of the shown maps.
[[nodiscard]] OverlayLegend makeOverlayLegend(const StatisticalMaps& maps,
                                              const OverlayThresholds& thresholds,
                                              const ContrastDefinitions& contrasts,
                                              const OverlayColors& colors,
                                              bool significanceColorCoding);

/// Name of a shown map's contrast; "Conjunction", or "Selected contrasts" where one F map is of all
/// of them.
[[nodiscard]] QString shownMapName(const StatisticalMaps& maps,
                                   const ContrastDefinitions& contrasts, int map);
/// "t", "R" or "F".
[[nodiscard]] QString statisticOf(MapKind kind);

/// The thresholds and all names in full, for a tool tip.
[[nodiscard]] QString legendText(const OverlayLegend& legend);

/// Width that a legend needs with this font, in logical pixels.
[[nodiscard]] int legendWidth(const QFont& font);

/// Paints on a dark background. `font` is for texts; numbers use the system's fixed-width font at
/// its size.
void paintOverlayLegend(QPainter& painter, const QRect& area, const OverlayLegend& legend,
                        const QFont& font);

// The colour legend of the map overlay, beside the slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/appearance.h"
#include "display/shown_maps.h"
#include "stats/thresholds.h"

#include <QColor>
#include <QFont>
#include <QString>
#include <array>
#include <vector>

class QPainter;
class QRect;

struct OverlayLegend {
    /// The colour of a map, or of the overlap of several.
    struct Entry {
        QString name;
        QColor color;
    };

    bool overlayShown = false; ///< without, the legend is empty
    bool significanceColorCoding = false;
    QString statistic; ///< as the maps say
    float threshold = 0.0f;
    float colorMaxThreshold = 0.0f;
    bool positive = false; ///< a shown map colours positive values
    bool negative = false;
    std::array<QColor, nrOfOverlayColors> scale;
    std::vector<Entry> entries; ///< where each map has a colour of its own
};

/// The legend of the shown maps.
[[nodiscard]] OverlayLegend makeOverlayLegend(const ShownMaps& maps,
                                              const OverlayThresholds& thresholds);

/// The thresholds and all names in full, for a tool tip.
[[nodiscard]] QString legendText(const OverlayLegend& legend);

/// Width that a legend needs with this font, in logical pixels.
[[nodiscard]] int legendWidth(const QFont& font);

/// Paints on a dark background. `font` is for texts; numbers use the system's fixed-width font at
/// its size.
void paintOverlayLegend(QPainter& painter, const QRect& area, const OverlayLegend& legend,
                        const QFont& font);

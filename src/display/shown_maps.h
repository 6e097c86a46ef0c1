// The maps that are painted over the slices, whoever made them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/plugin_maps.h"
#include "run/document/qt_cortivo_doc.h"
#include "stats/overlay_colors.h"

#include <QString>
#include <QStringList>
#include <array>
#include <span>
#include <vector>

/// At most four maps of one size, in the order of their colours. Points into a document: valid as
/// long as its maps are.
struct ShownMaps {
    VolumeSize size;
    std::vector<std::span<const float>> values; ///< of each map, one float per voxel
    std::vector<int> states;                    ///< of each: ContrastState bits, above 0
    QStringList names;                          ///< of each
    QString statistic;                          ///< "t", "R", "F", or "map" for those of plug-ins
    OverlayColorTable colors = significanceColors(); ///< that they are painted with
    bool significanceColorCoding = false;
    /// By slice and pixel the size of its cluster; nullptr for maps that are not filtered by it.
    const std::vector<std::vector<int>>* clusterSizes = nullptr;

    [[nodiscard]] int count() const { return int(values.size()); }
    [[nodiscard]] bool empty() const { return values.empty(); }
};

/// Those of the contrasts; empty when none is selected or none is computed.
[[nodiscard]] ShownMaps shownContrastMaps(const QtCortivoDoc& document);
/// Those of the plug-in, or, unless these are shown, those of the contrasts.
[[nodiscard]] ShownMaps shownMaps(const QtCortivoDoc& document,
                                  const RegisteredPluginMaps& registered);

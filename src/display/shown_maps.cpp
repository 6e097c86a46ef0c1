// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/shown_maps.h"

#include "stats/glm_contrasts.h"

namespace {

QString statisticOf(MapKind kind) {
    if (kind == MapKind::F)
        return "F";
    return kind == MapKind::Correlation || kind == MapKind::CrossCorrelation ? "R" : "t";
}

/// Name of a shown map's contrast, or of what one map says of several.
QString contrastMapName(const StatisticalMaps& maps, const ContrastDefinitions& contrasts,
                        int map) {
    if (conjunctionApplies(contrasts, maps))
        return "Conjunction";
    if (maps.MapType == MapKind::F && contrasts.shownStatistic == ShownStatistic::FOfSelected)
        return "Selected contrasts";
    if (size_t(map) >= maps.contrastOfMap.size())
        return {};
    return contrasts.ContrastNames.value(maps.contrastOfMap[size_t(map)]);
}

OverlayColorTable pluginMapColors(int count) {
    std::array<RgbColor, 4> colors;
    for (size_t place = 0; place < colors.size(); ++place)
        colors[place] = pluginMapColor(int(place));
    MultiMapColorTable table = unsetMultiMapColors();
    setMultiMapColors(table, colors, count);
    OverlayColorTable active = significanceColors();
    std::ranges::copy(table, active.begin());
    return active;
}

ShownMaps mapsOfPlugin(const QtCortivoDoc& document, const RegisteredPluginMaps& registered) {
    const PluginMapValues& values = document.pluginMaps;
    ShownMaps shown;
    shown.size = values.size;
    shown.statistic = "map";
    shown.significanceColorCoding = document.SignificanceColorCoding;
    for (const int map : shownPluginMaps(registered, values)) {
        shown.values.push_back(values.map(map));
        shown.states.push_back(registered.state(map));
        shown.names << registered.name(map);
    }
    if (!shown.significanceColorCoding)
        shown.colors = pluginMapColors(shown.count());
    return shown;
}

} // namespace

ShownMaps shownContrastMaps(const QtCortivoDoc& document) {
    const StatisticalMaps& maps = document.maps;
    ShownMaps shown;
    shown.size = maps.size;
    shown.statistic = statisticOf(maps.MapType);
    shown.colors = document.overlayColors.active;
    shown.significanceColorCoding = document.SignificanceColorCoding;
    shown.clusterSizes = &maps.ClusterSizeSlices;
    // Fewer maps may be in use by now than were counted to be shown.
    if (maps.NrOfShownMaps > maps.nrOfMapsToShow(false))
        return shown;
    for (int map = 0; map < maps.NrOfShownMaps; ++map) {
        shown.values.push_back(maps.map(map));
        shown.states.push_back(maps.states[size_t(map)]);
        shown.names << contrastMapName(maps, document.contrasts, map);
    }
    return shown;
}

ShownMaps shownMaps(const QtCortivoDoc& document, const RegisteredPluginMaps& registered) {
    return registered.shown ? mapsOfPlugin(document, registered) : shownContrastMaps(document);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ui/plugin_map_rows.h"

#include "run/session/run_session.h"

QString PluginMapRows::toolTip() const {
    return "Maps of the plug-in. Click + to show positive values and \u2212 to show negative ones; "
           "the first four maps with a mark are shown, in the colours beside them. The "
           "keys + and \u2212 do the same for the current map. A double click on a name shows this "
           "map alone";
}

std::vector<MapRow> PluginMapRows::rows() const {
    const RegisteredPluginMaps& maps = session_.requests.pluginMaps;
    std::vector<MapRow> rows;
    for (int map = 0; map < std::min(maps.count(), mostRows); ++map)
        rows.push_back({maps.name(map), maps.state(map), {}});
    if (!session_.functionalDocument)
        return rows;
    const std::vector<int> shown = shownPluginMaps(maps, session_.functionalDocument->pluginMaps);
    for (size_t place = 0; place < shown.size(); ++place)
        if (size_t(shown[place]) < rows.size())
            rows[size_t(shown[place])].color = pluginMapColor(int(place));
    return rows;
}

int PluginMapRows::nrOfUnlisted() const {
    return std::max(session_.requests.pluginMaps.count() - mostRows, 0);
}

void PluginMapRows::toggle(int index, ContrastState bit) {
    session_.pluginMaps.toggleState(index, bit);
}

void PluginMapRows::showAlone(int index) {
    session_.pluginMaps.showAlone(index);
}

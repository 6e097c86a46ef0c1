// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/plugin_maps.h"

#include "stats/contrasts.h"

#include <array>

bool RegisteredPluginMaps::registerMaps(int count) {
    if (count < 1)
        return false;
    count_ = count;
    names_.clear();
    states_ = {{0, ContrastBoth}};
    return true;
}

void RegisteredPluginMaps::clear() {
    *this = {};
}

QString RegisteredPluginMaps::name(int map) const {
    const auto found = names_.find(map);
    return found == names_.end() ? QStringLiteral("no name") : found->second;
}

int RegisteredPluginMaps::state(int map) const {
    const auto found = states_.find(map);
    return found == states_.end() ? int(ContrastOff) : found->second;
}

void RegisteredPluginMaps::setName(int map, const QString& name) {
    if (exists(map))
        names_[map] = name;
}

void RegisteredPluginMaps::setState(int map, int state) {
    if (exists(map) && state >= ContrastOff && state <= ContrastBoth)
        states_[map] = state;
}

void RegisteredPluginMaps::showAlone(int map) {
    if (!exists(map))
        return;
    const int before = state(map);
    states_ = {{map, before == ContrastOff ? int(ContrastBoth) : before}};
}

bool PluginMapValues::allocate(int count, const VolumeSize& sizeOfEach) {
    size = sizeOfEach;
    NrOfPluginMaps = 0;
    PluginMaps.release(); // also where there is not enough memory
    const size_t samples = size.samples();
    if (count < 1 || !memoryIsAvailable(size_t(count), samples * sizeof(float)) ||
        !PluginMaps.allocate(size_t(count) * samples))
        return false;
    NrOfPluginMaps = count;
    return true;
}

std::span<const float> PluginMapValues::map(int index) const {
    return PluginMaps.span().subspan(size_t(index) * size.samples(), size.samples());
}

std::vector<int> shownPluginMaps(const RegisteredPluginMaps& registered,
                                 const PluginMapValues& values) {
    std::vector<int> maps;
    if (!registered.shown)
        return maps;
    const int count = std::min(registered.count(), values.NrOfPluginMaps);
    for (const auto& [map, state] : registered.states()) {
        if (map >= count || maps.size() == size_t(ContrastDefinitions::maximumShownMaps))
            break;
        if (state != ContrastOff)
            maps.push_back(map);
    }
    return maps;
}

RgbColor pluginMapColor(int place) {
    // Away from those that contrasts begin with.
    static constexpr std::array<RgbColor, 4> colors{
        {{255, 190, 40}, {190, 110, 255}, {60, 220, 200}, {255, 120, 170}}};
    return colors[size_t(place) % colors.size()];
}

// Maps that a plug-in shows over the slices in place of those of the contrasts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "base/rgb_color.h"
#include "volume/volume_geometry.h"

#include <QString>
#include <map>
#include <span>
#include <vector>

/// Smallest value that is coloured, unless the plug-in says otherwise.
inline constexpr float defaultPluginMapsThreshold = 2.5f;

/// What a plug-in has registered, and what of it is shown. It outlives documents; the maps
/// themselves belong to one. Names and states are kept only where they differ from the default, as
/// a plug-in may register any number of maps.
class RegisteredPluginMaps {
public:
    [[nodiscard]] int count() const { return count_; }
    /// False for a count below 1, without a change. The first map gets both signs, the others none;
    /// the names are forgotten.
    bool registerMaps(int count);
    /// No maps, not shown, default threshold.
    void clear();

    /// "no name" for a map without one.
    [[nodiscard]] QString name(int map) const;
    /// A combination of ContrastState bits: 0 not shown, 1 positive values, 2 negative values, 3
    /// both.
    [[nodiscard]] int state(int map) const;
    /// Both do nothing for an index out of bounds.
    void setName(int map, const QString& name);
    void setState(int map, int state);
    /// The others are not shown any more; with both signs if it was not shown.
    void showAlone(int map);

    /// The states by map, in ascending order; maps that are missing are not shown.
    [[nodiscard]] const std::map<int, int>& states() const { return states_; }

    bool shown = false; ///< list and slices show these maps and not the contrasts
    float threshold = defaultPluginMapsThreshold;

private:
    [[nodiscard]] bool exists(int map) const { return map >= 0 && map < count_; }

    int count_ = 0;
    std::map<int, QString> names_;
    std::map<int, int> states_;
};

/// Part of a document: the values. One map is one float per voxel, x fastest, then y, then slices;
/// map m starts at m * size.samples().
struct PluginMapValues {
    VolumeSize size; ///< of each map
    int NrOfPluginMaps = 0;
    ZeroedBuffer<float> PluginMaps; ///< plug-ins write here

    /// Replaces the maps by `count` zeroed ones. False, with none allocated, when memory runs out.
    [[nodiscard]] bool allocate(int count, const VolumeSize& sizeOfEach);
    /// Values of a map below NrOfPluginMaps.
    [[nodiscard]] std::span<const float> map(int index) const;
};

/// The maps to show, at most four: the first ones with a state above 0 that have values. Empty
/// unless they are `shown`.
[[nodiscard]] std::vector<int> shownPluginMaps(const RegisteredPluginMaps& registered,
                                               const PluginMapValues& values);

/// Colour of a map by its place among the shown ones, 0 to 3: maps of plug-ins have colours of
/// their own.
[[nodiscard]] RgbColor pluginMapColor(int place);

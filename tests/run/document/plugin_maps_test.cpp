// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/plugin_maps.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr int mostMaps = std::numeric_limits<int>::max();
using Maps = std::vector<int>;

} // namespace

TEST(RegisteredPluginMaps, KeepWhatIsValidAndForgetItWithTheNextRegistration) {
    RegisteredPluginMaps maps;
    for (const int count : {0, -1, std::numeric_limits<int>::min()})
        EXPECT_FALSE(maps.registerMaps(count));
    EXPECT_EQ(maps.count(), 0);
    EXPECT_TRUE(maps.registerMaps(mostMaps));
    EXPECT_EQ(std::pair(maps.state(0), maps.state(1)), std::pair(3, 0));
    maps.setName(mostMaps - 1, "last");
    maps.setState(mostMaps - 1, 2);
    for (const int map : {-1, mostMaps}) {
        maps.setName(map, "none");
        maps.setState(map, 1);
        maps.showAlone(map);
        EXPECT_EQ(maps.state(map), 0);
    }
    for (const int state : {-1, 4})
        maps.setState(0, state);
    EXPECT_EQ(maps.states(), (std::map<int, int>{{0, 3}, {mostMaps - 1, 2}}));
    EXPECT_EQ(maps.name(mostMaps - 1), "last");
    maps.showAlone(mostMaps - 1);
    EXPECT_EQ(maps.states(), (std::map<int, int>{{mostMaps - 1, 2}}));
    maps.showAlone(7);
    EXPECT_EQ(maps.states(), (std::map<int, int>{{7, 3}}));

    EXPECT_TRUE(maps.registerMaps(3));
    EXPECT_EQ(maps.states(), (std::map<int, int>{{0, 3}}));
    EXPECT_TRUE(maps.registerMaps(mostMaps));
    EXPECT_EQ(maps.name(mostMaps - 1), "no name");
}

TEST(PluginMapValues, TheFirstFourWithAStateAndValuesAreShown) {
    RegisteredPluginMaps maps;
    PluginMapValues values;
    ASSERT_TRUE(maps.registerMaps(8));
    for (const int map : {1, 3, 4, 6, 7})
        maps.setState(map, 1);
    maps.setState(3, 0);
    maps.shown = true;
    EXPECT_EQ(shownPluginMaps(maps, values), Maps()) << "before the run";
    ASSERT_TRUE(values.allocate(7, {3, 2, 2}));
    EXPECT_EQ(shownPluginMaps(maps, values), (Maps{0, 1, 4, 6}));
    maps.setState(0, 0);
    EXPECT_EQ(shownPluginMaps(maps, values), (Maps{1, 4, 6})) << "the last one has no values";
    maps.setState(5, 2);
    values.PluginMaps[5 * 12 + 11] = 4.0f;
    EXPECT_EQ(values.map(5).back(), 4.0f);
    EXPECT_EQ(values.map(6).front(), 0.0f);
    maps.shown = false;
    EXPECT_EQ(shownPluginMaps(maps, values), Maps());
    EXPECT_FALSE(values.allocate(mostMaps, {1 << 15, 1 << 15, 1 << 15}));
    EXPECT_EQ(values.NrOfPluginMaps, 0);
    EXPECT_TRUE(values.PluginMaps.empty());
}

// The maps of the plug-in itself.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/host/plugin_text.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

bool tRegisterMaps(int count) {
    return session() && session()->pluginMaps.registerMaps(count);
}

void tSetPluginMapName(int index, const char* name) {
    if (session())
        session()->pluginMaps.setName(index, pluginLine(pluginText(name)));
}

void tSetDisplayStatusOfMap(int index, int status) {
    if (session())
        session()->pluginMaps.setState(index, status);
}

void tSetPluginMapsThreshold(float threshold) {
    if (session())
        session()->pluginMaps.setThreshold(threshold);
}

void tShowPluginMaps(bool show) {
    if (session())
        session()->pluginMaps.show(show);
}

void tUpdateMapList() {
    if (session())
        session()->pluginMaps.updateList();
}

float* tGetPluginMaps() {
    QtCortivoDoc* run = document();
    return run && !run->pluginMaps.PluginMaps.empty() ? run->pluginMaps.PluginMaps.data() : nullptr;
}

// A plug-in to begin with: change the texts, fill the operations that you need, delete the others.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <velo_cortivo_plugin.h>

#include <string>
#include <vector>

namespace {

class MyPlugin : public VeloCortivoPlugin {
public:
    // First of all, when the plug-in is chosen in the menu. Register maps and ask for parameters
    // here; false ends the plug-in without a trace, as when the operator cancels.
    bool initPlugin() override { return true; }

    // The window of the plug-in is up: tLogText() works from now on.
    bool executeAtLaunch() override {
        tLogText("My plug-in is running.");
        return true;
    }

    // At each volume, before it is corrected and analysed. Keep it short: the run waits.
    void executeBeforeVolume() override {}

    // At each volume, after its analysis.
    void executeAfterVolume() override {
        const int volumes = tGetCurrentTimePoint(); // so far, this one included
        tLogText(("Volume " + std::to_string(volumes)).c_str());
    }

    // After the last volume, just before the run is saved: ask nothing here.
    void executeAfterRun() override { tLogText("The run has ended."); }
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "My Plug-in";
}

VELO_CORTIVO_EXPORT const char* getPluginDescription() {
    return "Says when a volume was analysed.";
}

VELO_CORTIVO_EXPORT const char* getAuthor() {
    return "Your name";
}

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new MyPlugin;
}

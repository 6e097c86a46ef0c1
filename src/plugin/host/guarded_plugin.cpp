// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/guarded_plugin.h"

#include "plugin/host/plugin_library.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

// A plug-in may have been built with a class of its own that agrees in its table of functions only.
#define VELO_PLUGIN_CALL __attribute__((no_sanitize("vptr")))

namespace {

VELO_PLUGIN_CALL bool initialise(VeloCortivoPlugin& plugin) {
    return plugin.initPlugin();
}

VELO_PLUGIN_CALL bool launch(VeloCortivoPlugin& plugin) {
    return plugin.executeAtLaunch();
}

VELO_PLUGIN_CALL bool beforeVolume(VeloCortivoPlugin& plugin) {
    plugin.executeBeforeVolume();
    return true;
}

VELO_PLUGIN_CALL bool afterVolume(VeloCortivoPlugin& plugin) {
    plugin.executeAfterVolume();
    return true;
}

VELO_PLUGIN_CALL bool afterRun(VeloCortivoPlugin& plugin) {
    plugin.executeAfterRun();
    return true;
}

} // namespace

GuardedPlugin::GuardedPlugin(EventPump& pump, std::unique_ptr<VeloCortivoPlugin> plugin)
    : pump_(pump), plugin_(std::move(plugin)) {}

VELO_PLUGIN_CALL GuardedPlugin::~GuardedPlugin() {
    delete plugin_.release(); // here, where the class need not be the one of the header
}

bool GuardedPlugin::call(const char* name, bool (*operation)(VeloCortivoPlugin& plugin)) {
    if (inCall_)
        return false;
    inCall_ = true;
    bool result = false;
    const StopWatch watch(pump_);
    const std::optional<QString> thrown = thrownBy([&] { result = operation(*plugin_); });
    lastCall_ = watch.elapsed();
    inCall_ = false;
    if (thrown)
        fault_ = QStringLiteral("%1: %2").arg(QLatin1String(name), *thrown);
    return result;
}

bool GuardedPlugin::initPlugin() {
    return call("initPlugin", initialise);
}

bool GuardedPlugin::executeAtLaunch() {
    return call("executeAtLaunch", launch);
}

void GuardedPlugin::executeBeforeVolume() {
    call("executeBeforeVolume", beforeVolume);
}

void GuardedPlugin::executeAfterVolume() {
    call("executeAfterVolume", afterVolume);
}

void GuardedPlugin::executeAfterRun() {
    call("executeAfterRun", afterRun);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_host.h"

#include "base/paths.h"
#include "run/session/run_session.h"

PluginHost::PluginHost(const Parts& parts) : parts_(parts) {
    parts_.session.listeners.add(*this, ListenerPlace::PlugIn);
}

PluginHost::~PluginHost() = default;

const PluginCatalogue& PluginHost::discover() {
    return catalogue_;
}

void PluginHost::launch(int) {}

void PluginHost::close() {}

void PluginHost::log(const QString&) {}

void PluginHost::setLastUsedFolder(const QString& folder) {
    lastUsedFolder_ = paths::withTrailingSlash(folder);
}

bool PluginHost::beforeVolume(const VolumeAtHand&) {
    return true;
}

bool PluginHost::atStep(VolumeStep, const VolumeAtHand&) {
    return true;
}

void PluginHost::loopEnded(QtCortivoDoc&) {}

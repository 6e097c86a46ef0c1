// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_plugin_maps.h"

#include "run/document/session_phase.h"

#include <cmath>

SessionPluginMaps::SessionPluginMaps(const Parts& parts) : parts_(parts) {
    parts_.listeners.add(*this, ListenerPlace::PlugIn);
}

bool SessionPluginMaps::registerMaps(int count) {
    if (!parts_.requests.pluginMaps.registerMaps(count))
        return false;
    parts_.listeners.mapListChanged();
    return true;
}

void SessionPluginMaps::setName(int map, const QString& name) {
    parts_.requests.pluginMaps.setName(map, name);
}

void SessionPluginMaps::setState(int map, int state) {
    parts_.requests.pluginMaps.setState(map, state);
}

void SessionPluginMaps::setThreshold(float threshold) {
    if (!std::isfinite(threshold))
        return;
    parts_.requests.pluginMaps.threshold = threshold;
    if (document_)
        applyThreshold();
}

void SessionPluginMaps::applyThreshold() {
    OverlayThresholds& thresholds = parts_.requests.thresholds;
    float shown = parts_.requests.pluginMaps.threshold;
    thresholds.Threshold = shown;
    if (!(thresholds.ColorMaxThreshold > thresholds.Threshold))
        shown = thresholds.ColorMaxThreshold = thresholds.Threshold + 1.0f;
    parts_.thresholdsChanged();
    parts_.listeners.pluginThresholdApplied(shown);
}

void SessionPluginMaps::updateList() {
    parts_.listeners.mapListChanged();
    if (!parts_.phase.runActive())
        parts_.display.updateViews();
}

void SessionPluginMaps::clear() {
    parts_.requests.pluginMaps.clear();
    // The next plug-in must not find the values of this one, nor room for another number of maps.
    if (document_)
        document_->pluginMaps = {};
    shownChanged();
}

void SessionPluginMaps::show(bool shown) {
    parts_.requests.pluginMaps.shown = shown;
    shownChanged();
}

void SessionPluginMaps::toggleState(int map, int bit) {
    const RegisteredPluginMaps& maps = parts_.requests.pluginMaps;
    setState(map, maps.state(map) ^ bit);
    shownChanged();
}

void SessionPluginMaps::showAlone(int map) {
    parts_.requests.pluginMaps.showAlone(map);
    shownChanged();
}

void SessionPluginMaps::shownChanged() {
    parts_.listeners.mapListChanged();
    if (document_)
        parts_.display.updateViews();
}

void SessionPluginMaps::documentsLeaving() {
    document_ = nullptr;
}

void SessionPluginMaps::documentsArrived(QtCortivoDoc& functional) {
    document_ = &functional;
}

void SessionPluginMaps::runPrepared(QtCortivoDoc& functional) {
    if (functional.pluginMaps.NrOfPluginMaps > 0)
        applyThreshold();
}

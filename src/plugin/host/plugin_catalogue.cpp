// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_catalogue.h"

QString PluginDescription::menuText() const {
    return name.endsWith("...") ? name : name + "...";
}

// The menu "Plugins", which is made anew each time it opens.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/host/plugin_catalogue.h"

#include <QString>
#include <vector>

struct PluginMenuRow {
    QString text; ///< empty for a separator
    QString toolTip;
    int index = -1; ///< in the catalogue; -1 for a row that can't be chosen
};

/// A row for each plug-in, or one that says that there are none; last, how many libraries can't be
/// used, with the reasons as its tool tip.
[[nodiscard]] std::vector<PluginMenuRow> pluginMenuRows(const PluginCatalogue& catalogue,
                                                        const QString& pluginFolder);

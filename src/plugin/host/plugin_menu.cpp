// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_menu.h"

#include <QStringList>
#include <QTextDocument>

namespace {

QString paragraph(const QString& html) {
    return html.isEmpty() ? QString() : "<p>" + html + "</p>";
}

/// As HTML also where it is plain text, so that it wraps.
QString toolTipOf(const PluginDescription& plugin) {
    const QString& description = plugin.description;
    return paragraph(Qt::mightBeRichText(description) ? description : description.toHtmlEscaped()) +
           paragraph(plugin.author.isEmpty() ? QString()
                                             : "Author: " + plugin.author.toHtmlEscaped());
}

PluginMenuRow refusedRow(const QStringList& refused) {
    constexpr qsizetype mostShown = 12;
    QString toolTip;
    for (const QString& reason : refused.first(std::min(refused.size(), mostShown)))
        toolTip += paragraph(reason.toHtmlEscaped());
    if (refused.size() > mostShown)
        toolTip += paragraph(QStringLiteral("And %1 more.").arg(refused.size() - mostShown));
    const QString libraries = refused.size() == 1
                                  ? QStringLiteral("1 library")
                                  : QStringLiteral("%1 libraries").arg(refused.size());
    return {libraries + " can't be used", toolTip};
}

} // namespace

std::vector<PluginMenuRow> pluginMenuRows(const PluginCatalogue& catalogue,
                                          const QString& pluginFolder) {
    std::vector<PluginMenuRow> rows;
    if (catalogue.plugins.empty())
        rows.push_back({"<No plug-ins>", paragraph("Plug-ins are looked for in the folder " +
                                                   pluginFolder.toHtmlEscaped())});
    else
        rows.push_back({});
    for (size_t i = 0; i < catalogue.plugins.size(); ++i)
        rows.push_back({catalogue.plugins[i].menuText(), toolTipOf(catalogue.plugins[i]), int(i)});
    if (!catalogue.refused.isEmpty())
        rows.push_back(refusedRow(catalogue.refused));
    return rows;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_catalogue.h"

#include "base/paths.h"
#include "plugin/host/plugin_library.h"
#include "plugin/host/plugin_text.h"

#include <QDir>

namespace {

PluginDescription described(PluginLibrary& library, const QString& path,
                            const QString& pluginFolder) {
    return {path, pluginLine(library.text("getPluginName")),
            descriptionWithLinks(library.text("getPluginDescription"), path, pluginFolder),
            library.text("getAuthor"), library.text("getHelpFile")};
}

} // namespace

QString PluginDescription::menuText() const {
    return name.endsWith("...") ? name : name + "...";
}

QString PluginDescription::helpPath() const {
    return helpFile.isEmpty() ? QString()
                              : QDir(paths::folderWithSlash(path)).absoluteFilePath(helpFile);
}

PluginCatalogue readPlugins(const QString& folder) {
    PluginCatalogue catalogue;
    const QDir::Filters files = QDir::Files | QDir::NoSymLinks | QDir::CaseSensitive;
    for (const QFileInfo& file : QDir(folder).entryInfoList({"*.so"}, files, QDir::Name)) {
        PluginLibrary library;
        if (!library.open(file.absoluteFilePath())) {
            catalogue.refused << file.fileName() + ": " + library.fault();
            continue;
        }
        PluginDescription plugin = described(library, file.absoluteFilePath(), folder);
        if (!plugin.name.isEmpty())
            catalogue.plugins.push_back(std::move(plugin));
    }
    return catalogue;
}

QString descriptionWithLinks(const QString& description, const QString& libraryPath,
                             const QString& pluginFolder) {
    const QString folder = paths::folderWithSlash(libraryPath);
    const qsizetype firstLink = description.indexOf("<a href");
    if (firstLink < 0 || folder == paths::withTrailingSlash(pluginFolder))
        return description;
    QString links = description.mid(firstLink);
    links.replace("<a href=\"", "<a href=\"" + folder);
    return description.left(firstLink) + links;
}

// The plug-ins in a folder, and what each says of itself.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

/// What a library says of itself; a text that it doesn't export is empty.
struct PluginDescription {
    QString path;
    QString name;        ///< one line, not empty, at most 100 characters
    QString description; ///< may hold HTML, with links relative to the folder of the library
    QString author;
    QString helpFile;

    /// The name with "..." after it, unless it ends so already.
    [[nodiscard]] QString menuText() const;
    /// Full path of the help file; empty for none.
    [[nodiscard]] QString helpPath() const;
};

struct PluginCatalogue {
    std::vector<PluginDescription> plugins; ///< in the listing's order
    /// For each library that can't be used, its file name and why.
    QStringList refused;
};

/// Lists the shared libraries (*.so) directly in the folder, without links and subfolders, opens
/// each, asks it for its texts and closes it again. A library without a name is passed over.
[[nodiscard]] PluginCatalogue readPlugins(const QString& folder);

/// Links of a description, from the first on, made relative to the folder of a library that does
/// not lie directly in the plug-in folder: "<a href=\"" gets the library's folder and "/" behind
/// it. Other descriptions come back as they are.
[[nodiscard]] QString descriptionWithLinks(const QString& description, const QString& libraryPath,
                                           const QString& pluginFolder);

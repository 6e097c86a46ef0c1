// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/standard_folders.h"

#include "base/paths.h"

#include <QDir>
#include <QStandardPaths>

namespace {

QString location(QStandardPaths::StandardLocation which) {
    return paths::withTrailingSlash(
        paths::withForwardSlashes(QStandardPaths::writableLocation(which)));
}

} // namespace

StandardFolders standardFolders() {
    StandardFolders folders;
    const QString documents = location(QStandardPaths::DocumentsLocation);
    folders.extensionsPath = documents + "VCOExtensions/";
    folders.pluginsPath = folders.extensionsPath + "Plugins_64/";
    folders.dataPath = documents + "VCOData/";
    folders.applicationDataPath = location(QStandardPaths::AppDataLocation) + "VCO/";
    folders.homePath = location(QStandardPaths::HomeLocation);
    return folders;
}

void createStandardFolders(const StandardFolders& folders) {
    for (const QString& folder : {folders.extensionsPath, folders.pluginsPath, folders.dataPath,
                                  folders.applicationDataPath})
        QDir().mkpath(folder);
}

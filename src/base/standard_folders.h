// The program's folders: the one place that asks the system where they are.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// All with "/" as separator and a "/" at the end.
struct StandardFolders {
    QString extensionsPath;      ///< documents, VCOExtensions
    QString pluginsPath;         ///< below it, Plugins_64
    QString dataPath;            ///< documents, VCOData: default settings folder and samples
    QString applicationDataPath; ///< application data, VCO: the file MasterVCO
    QString homePath;            ///< the user's home
};

/// The folders of the current user. Nothing is created.
[[nodiscard]] StandardFolders standardFolders();

/// Creates the folders where they are missing. A failure is not reported.
void createStandardFolders(const StandardFolders& folders);

// Paths in settings files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/paths.h"

/// A path for use: "/" as separator, and a leading "./" replaced by the folder of the settings
/// file.
[[nodiscard]] inline QString cleanedPath(const QString& value, const QString& settingsFileDir) {
    const QString path = paths::withForwardSlashes(value);
    return path.startsWith("./") ? paths::join(settingsFileDir, path.mid(2)) : path;
}

/// The same for a folder, which gets a "/" at its end; an empty value stays empty.
[[nodiscard]] inline QString cleanedFolder(const QString& value, const QString& settingsFileDir) {
    return cleanedPath(paths::withTrailingSlash(paths::withForwardSlashes(value)), settingsFileDir);
}

/// The project file that a run of this name writes into a folder: ".fmr" is added to a name without
/// a dot.
[[nodiscard]] inline QString projectFile(const QString& folder, const QString& projectName) {
    return paths::join(folder, paths::withDefaultExtension(projectName, "fmr"));
}

/// A path for writing: a leading settingsFileDir replaced by "./".
[[nodiscard]] inline QString relativePath(const QString& path, const QString& settingsFileDir) {
    if (settingsFileDir.isEmpty() || !path.startsWith(settingsFileDir))
        return path;
    return "./" + path.mid(settingsFileDir.size());
}

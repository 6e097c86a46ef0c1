// Paths as settings files use them: "/" as separator, folders that end in "/".
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace paths {

/// "\" changed to "/".
[[nodiscard]] QString withForwardSlashes(QString path);
/// One "/" at the end, added where it is missing; an empty path stays empty.
[[nodiscard]] QString withTrailingSlash(QString folder);
/// The part up to and including the last "/"; empty when there is none.
[[nodiscard]] QString folderWithSlash(const QString& path);
/// The part before the last "/"; empty when there is none.
[[nodiscard]] QString folderWithoutSlash(const QString& path);
/// The part after the last "/".
[[nodiscard]] QString fileName(const QString& path);
/// The text after the last "." of the file name, in lower case; empty when there is none.
[[nodiscard]] QString extension(const QString& path);
/// The path without the last "." of its file name and what follows.
[[nodiscard]] QString withoutExtension(const QString& path);
/// The path with `extension` (without dot) added where its file name has none.
[[nodiscard]] QString withDefaultExtension(const QString& path, const QString& extension);
/// Both parts joined with exactly one "/"; an empty folder gives the name alone.
[[nodiscard]] QString join(const QString& folder, const QString& name);

} // namespace paths

// Watch folders: placeholders for the newest series, and lists of folders.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <optional>

/// A folder that ends in "Ser<N>" or "<N>" (or with a small n) stands for its sibling "Ser0012" or
/// "0012" with the highest number from 1 to 99 that exists, or number 0 when none does. The whole
/// last component is replaced, and the result has no trailing "/". Other folders are returned
/// unchanged.
[[nodiscard]] QString resolvedSeriesFolder(const QString& watchFolder);

struct WatchFolderList {
    QStringList folders;
    int count = 0; ///< as stated in the file
};

/// The content of a watch folder list: a count, then folder names without blanks. Normally only the
/// first name is read: after a name of length L the counter continues from L + 1, and reading stops
/// at the count. A name relative to the settings file keeps a doubled "/".
[[nodiscard]] WatchFolderList parseWatchFolderList(const QString& text,
                                                   const QString& settingsFileDir);

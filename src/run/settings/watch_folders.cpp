// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/watch_folders.h"

#include "base/paths.h"
#include "base/text_reading.h"

#include <QFileInfo>

namespace {

constexpr int highestSeries = 99;
constexpr qsizetype mostFolders = 1000; // more only in a damaged list

QString numberedName(const QString& prefix, int number) {
    return prefix + (number < 10 ? "000" : "00") + QString::number(number);
}

QString newestFolder(const QString& parent, const QString& prefix) {
    int newest = 0;
    for (int number = 1; number <= highestSeries; ++number)
        if (QFileInfo(paths::join(parent, numberedName(prefix, number))).isDir())
            newest = number;
    return paths::join(parent, numberedName(prefix, newest));
}

} // namespace

QString resolvedSeriesFolder(const QString& watchFolder) {
    const QString folder = watchFolder.endsWith('/') ? watchFolder.chopped(1) : watchFolder;
    const QString parent = paths::folderWithSlash(folder);
    if (folder.endsWith("Ser<N>") || folder.endsWith("Ser<n>"))
        return newestFolder(parent, "Ser");
    if (folder.endsWith("<N>") || folder.endsWith("<n>"))
        return newestFolder(parent, {});
    return watchFolder;
}

WatchFolderList parseWatchFolderList(const QString& text, const QString& settingsFileDir) {
    TokenStream stream(text);
    WatchFolderList list;
    list.count = stream.integer();
    qsizetype round = 0;
    while (round < list.count && list.folders.size() < mostFolders && !stream.atEnd()) {
        const QString name = stream.word();
        round = name.size() + 1;
        const QString folder = paths::withTrailingSlash(paths::withForwardSlashes(name));
        list.folders << (folder.startsWith("./") ? settingsFileDir + folder.mid(1) : folder);
    }
    return list;
}

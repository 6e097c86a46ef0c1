// SPDX-License-Identifier: GPL-3.0-or-later
#include "watch_folder.h"

#include "base/paths.h"

#include <QDir>

namespace {

constexpr char incoming[] = "incoming/";
constexpr char listFile[] = "watch_folders.txt";
constexpr char examFolder[] = "e1234/";

QString fourDigits(int number) {
    return QString("%1").arg(number, 4, 10, QChar('0'));
}

/// Below incoming/, with "/" at its end; empty when the scanner writes into incoming/ itself.
QString seriesFolder(const SimulationOptions& options) {
    if (options.type == ScannerType::GeHdxtDicom)
        return examFolder + QString("s%1/").arg(seriesNumber(options));
    if (options.type == ScannerType::Bruker2dseq)
        return QString("%1/pdata/1/").arg(seriesNumber(options));
    if (options.watchFolder == WatchFolderForm::SeriesMark)
        return "Ser" + fourDigits(options.run) + '/';
    if (options.watchFolder == WatchFolderForm::NumberMark)
        return fourDigits(options.run) + '/';
    return {};
}

/// The name in the settings, below incoming/.
QString namedFolder(const SimulationOptions& options) {
    switch (options.watchFolder) {
    case WatchFolderForm::SeriesMark:
        return "Ser<N>";
    case WatchFolderForm::NumberMark:
        return "<N>";
    case WatchFolderForm::Exam:
        return examFolder;
    case WatchFolderForm::Plain:
    case WatchFolderForm::List:
        break;
    }
    return seriesFolder(options);
}

} // namespace

QString watchFolder(const SimulationOptions& options) {
    return paths::join(options.folder, incoming + seriesFolder(options));
}

bool makeWatchFolder(const SimulationOptions& options) {
    if (!QDir().mkpath(watchFolder(options)))
        return false;
    return options.watchFolder != WatchFolderForm::List ||
           writeFileAtomically(paths::join(options.folder, listFile),
                               QByteArray("1\n./") + incoming + '\n');
}

void addWatchFolderEntry(SettingsLines& lines, const SimulationOptions& options) {
    if (options.watchFolder == WatchFolderForm::List)
        lines.quoted("WATCHFOLDERLIST:", QString("./") + listFile);
    else
        lines.quoted("WatchFolder:", QString("./") + incoming + namedFolder(options));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/first_file_names.h"

#include "base/paths.h"
#include "run/settings/settings_paths.h"

namespace {

constexpr int numberAndExtension = 9; // "00001.img"
constexpr int extensionLength = 4;
constexpr int analyzeNumberStart = 7;

QString withoutLast(const QString& text, int count) {
    return text.left(std::max(text.size() - count, qsizetype(0)));
}

QString bareName(const QString& path) {
    return paths::fileName(paths::withForwardSlashes(path));
}

// The text before and after the last delimiter; found is false when there is none.
struct Split {
    QString before;
    QString behind;
    bool found = false;
};

Split splitAtLast(const QString& text, const QString& delimiter) {
    const qsizetype position = delimiter.isEmpty() ? -1 : text.lastIndexOf(delimiter);
    if (position < 0)
        return {text, {}, false};
    return {text.left(position), text.mid(position + delimiter.size()), true};
}

} // namespace

void deriveFirstFile(RunSettings& settings) {
    const QString path = cleanedPath(settings.FirstFileName, settings.settingsFileDir);
    settings.documentFirstFileName =
        path.contains('/') ? path : paths::join(settings.WatchFolder, path);
    const QString name = bareName(path);
    const QString type = settings.DataType.toUpper();
    if (type == "ANALYZE_NW") {
        settings.philipsFilePrefix = withoutLast(name, numberAndExtension);
        settings.philipsFirstNumber =
            withoutLast(name.mid(analyzeNumberStart), extensionLength).toInt();
    } else if (type == "PHILIPS_ANALYZE_DRIN") {
        settings.philipsFilePrefix = withoutLast(name, numberAndExtension);
        settings.philipsFirstNumber =
            withoutLast(name.right(numberAndExtension), extensionLength).toInt();
    }
}

void deriveDicomNames(RunSettings& settings) {
    const QString name = paths::withoutExtension(bareName(settings.FirstFileName));
    const Split image = splitAtLast(name, settings.DicomNameDelimiter);
    const Split volume = splitAtLast(image.before, settings.DicomNameDelimiter);
    if (const int number = volume.behind.toInt(); volume.found && number >= 0)
        settings.DicomFirstVolumeNr = number;
    settings.dicomFilePrefix = volume.before;
    const bool padded = image.behind.startsWith('0') || image.behind.size() >= 4;
    settings.dicomImageNumberWidth = padded ? int(image.behind.size()) : -1;
}

void derivePFile(RunSettings& settings) {
    settings.pFilePath.clear();
    const QString header = cleanedPath(settings.PFileHeader, settings.settingsFileDir);
    const QString name = paths::fileName(header);
    const qsizetype start = name.lastIndexOf('P');
    if (start < 0)
        return;
    const QString folder =
        header.contains('/') ? paths::folderWithSlash(header) : settings.WatchFolder;
    settings.pFilePath = paths::join(folder, name.mid(start));
}

void deriveInplaneFirstFile(RunSettings& settings) {
    if (settings.OverlayInplaneDataType.toUpper() != "GE_MR")
        return;
    const QString name = paths::withoutExtension(bareName(settings.OverlayInplaneFirstFileName));
    const qsizetype position = name.lastIndexOf('I');
    settings.overlayInplaneSeriesPrefix = name.left(position + 1);
    settings.overlayInplaneFirstNumber = name.mid(position + 1).toInt();
}

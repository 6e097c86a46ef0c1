// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/inplane_names.h"

#include "base/messages.h"
#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/ge_i_names.h"

#include <QRegularExpression>

namespace {

InplaneNames refuse(const QString& text) {
    showWarning(text);
    return {};
}

InplaneNames refuseNumber(const QString& name) {
    return refuse(
        QStringLiteral("ERROR: No image number found in high res inplane file name \"%1\" - check "
                       "settings file!")
            .arg(name));
}

// The extension of a name with its dot.
QString dotAndExtension(const QString& name) {
    return name.mid(paths::withoutExtension(name).size());
}

} // namespace

QString firstInplaneName(const RunSettings& settings) {
    return paths::fileName(paths::withForwardSlashes(settings.OverlayInplaneFirstFileName));
}

InplaneNames threeDigitNames() {
    return [](int slice) { return geIImageName(slice + 1); };
}

InplaneNames seriesNames(const RunSettings& settings) {
    return [prefix = settings.overlayInplaneSeriesPrefix,
            first = qint64(settings.overlayInplaneFirstNumber),
            extension = dotAndExtension(firstInplaneName(settings))](int slice) {
        return prefix + QString::number(first + slice) + extension;
    };
}

InplaneNames delimitedNames(const RunSettings& settings) {
    const QString name = firstInplaneName(settings);
    const QString stem = paths::withoutExtension(name);
    const QString& delimiter = settings.DicomNameDelimiter;
    const qsizetype position = delimiter.isEmpty() ? -1 : stem.lastIndexOf(delimiter);
    if (position < 0)
        return refuse(QStringLiteral("ERROR: Could not split file name, delimiter %1 not found!")
                          .arg(delimiter));
    const QString digits = stem.mid(position + delimiter.size());
    bool valid = false;
    const qint64 first = digits.toLongLong(&valid);
    if (!valid)
        return refuseNumber(name);
    return [before = stem.left(position + delimiter.size()), first, width = int(digits.size()),
            extension = dotAndExtension(name)](int slice) {
        return before + paddedNumber(first + slice, width) + extension;
    };
}

InplaneNames twoNumberNames(const RunSettings& settings) {
    static const QRegularExpression form("^i(\\d{1,9})\\.MRDC\\.(\\d{1,9})$");
    const QString name = firstInplaneName(settings);
    const QRegularExpressionMatch match = form.match(name);
    if (!match.hasMatch())
        return refuseNumber(name);
    return [first = match.captured(1).toLongLong(), second = match.captured(2).toLongLong()](
               int slice) { return geDicomFileName(first + slice, second + slice); };
}

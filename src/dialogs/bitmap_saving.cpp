// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/bitmap_saving.h"

#include "base/file_writing.h"
#include "base/messages.h"

#include <QBuffer>

namespace {

void saveBitmap(const QImage& picture, const QString& path) {
    QByteArray content;
    QBuffer buffer(&content);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "BMP") ||
        !writeFileAtomically(path, content))
        showModelessWarning(QString("WARNING: Unable to write bitmap file \"%1\"!").arg(path));
}

} // namespace

void saveBitmapAs(const QImage& picture, const QString& place) {
    chooseFileToSave("Save Bitmap File", place, "Bitmaps (*.bmp)",
                     [picture](const QString& path) { saveBitmap(picture, path); });
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/feedback_files.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"

#include <QBuffer>
#include <QDir>
#include <QTextStream>

namespace {

/// Empty for a null picture.
QByteArray pngBytes(const QImage& picture) {
    // The weakest compression: up to twice as fast as the default, little slower than none, and a
    // hundredth of the bytes that a shared folder has to take.
    constexpr int weakestCompression = 80;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG", weakestCompression))
        return {};
    return bytes;
}

/// What a file of trials holds; empty when there is none. Nothing for one that can't be read or is
/// too large to be one.
std::optional<QByteArray> trialsIn(const QString& path) {
    constexpr qint64 largestSize = 1 << 20;
    if (!QFileInfo::exists(path))
        return QByteArray();
    QFile file(path);
    if (!openPlainFile(file) || file.size() > largestSize)
        return {};
    return file.readAll();
}

} // namespace

void FeedbackFiles::begin(const QString& folder, const QString& name) {
    folder_ = folder;
    name_ = name;
    fault_.clear();
}

void FeedbackFiles::writePicture(const QImage& picture, int volume) {
    const QByteArray bytes = pngBytes(picture);
    const QString path = pathOf(name_ + '-' + QString::number(volume + 1) + ".png");
    note(!bytes.isEmpty() && writePolledFile(path, bytes), path);
}

void FeedbackFiles::writeValues(int subject, float relativeLevel, int targetLevel, int volume) {
    QByteArray line;
    QTextStream(&line) << relativeLevel << ' ' << targetLevel << '\n';
    const QString path = pathOf(name_ + "-s" + QString::number(subject) + '-' +
                                QString::number(volume + 1) + ".bpg");
    note(writePolledFile(path, line), path);
}

// The file is written anew for each trial, so that its reader never finds a part of a line.
bool FeedbackFiles::appendTrial(const QString& fileName, int trial, double value) {
    const QString path = pathOf(fileName);
    const std::optional<QByteArray> before = trial == 0 ? QByteArray() : trialsIn(path);
    const bool written =
        before && writePolledFile(path, *before + delayedFeedbackLine(trial + 1, value));
    if (!written)
        showModelessWarning(
            QStringLiteral("ERROR: Can not open feedback file: \"%1\" !").arg(path));
    note(written, path);
    return written;
}

// The folder may have gone since the last volume.
QString FeedbackFiles::pathOf(const QString& fileName) const {
    if (!folder_.isEmpty())
        QDir().mkpath(folder_);
    return paths::join(folder_, fileName);
}

void FeedbackFiles::note(bool written, const QString& path) {
    fault_ = written ? QString() : QStringLiteral("Not written: \"%1\"").arg(path);
}

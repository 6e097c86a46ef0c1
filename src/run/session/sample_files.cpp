// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/sample_files.h"

#include "base/file_writing.h"
#include "base/paths.h"
#include "base/plain_file.h"

#include <QDir>

namespace {

const QString samplesInside = QStringLiteral(":/sample_session");
const QString sampleMessageName = QStringLiteral("SampleMessage.rtc");

bool laySample(const QString& folder, const QString& name) {
    const QString path = paths::join(folder, name);
    if (QFile::exists(path))
        return fileExists(path);
    QFile source(paths::join(samplesInside, name));
    return source.open(QIODevice::ReadOnly) && writeFileAtomically(path, source.readAll());
}

} // namespace

void laySampleSession(const QString& folder) {
    QDir().mkpath(folder);
    for (const QString& name : QDir(samplesInside).entryList(QDir::Files))
        static_cast<void>(laySample(folder, name));
}

QString sampleMessagePath(const QString& folder) {
    const bool isLaid =
        !folder.isEmpty() && QDir().mkpath(folder) && laySample(folder, sampleMessageName);
    return paths::join(isLaid ? folder : samplesInside, sampleMessageName);
}

bool isSampleMessage(const QString& path, const QString& folder) {
    return path == paths::join(samplesInside, sampleMessageName) ||
           (!folder.isEmpty() && path == paths::join(folder, sampleMessageName));
}

bool isInsideProgram(const QString& path) {
    return path.startsWith(":/");
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/sample_session.h"

#include "base/file_writing.h"

#include <QDir>
#include <QFile>

void laySampleSession(const QString& folder) {
    QDir().mkpath(folder);
    const QDir source(":/sample_session");
    for (const QString& name : source.entryList(QDir::Files)) {
        QFile file(source.filePath(name));
        if (QFile::exists(folder + name) || !file.open(QIODevice::ReadOnly))
            continue;
        // The sample is a help, not a need: without it the program starts all the same.
        static_cast<void>(writeFileAtomically(folder + name, file.readAll()));
    }
}

// Where tests find their files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFile>
#include <QString>

/// The folder of real scanner files beside the project; tests that use it are skipped where it is
/// absent.
inline QString scannerDataFolder() {
    const QString chosen = qEnvironmentVariable("VELO_SCANNER_DATA");
    return chosen.isEmpty() ? QStringLiteral(VELO_SOURCE_DIR "/../shared/data") : chosen;
}

/// A text that the fuzzer begins with; empty where there is none.
inline QString corpusText(const QString& name) {
    QFile file(QStringLiteral(VELO_SOURCE_DIR "/tests/fuzz/corpus/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

#define SKIP_WITHOUT(path)                                                                         \
    if (!QFileInfo::exists(path))                                                                  \
    GTEST_SKIP() << "no scanner data at " << (path).toStdString()

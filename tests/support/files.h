// Whole files, written and read at once.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <gtest/gtest.h>

inline void writeFile(const QString& path, const QByteArray& bytes,
                      QIODevice::OpenMode mode = QIODevice::WriteOnly) {
    QFile file(path);
    ASSERT_TRUE(file.open(mode) && file.write(bytes) == bytes.size()) << path.toStdString();
}

/// Empty where the file can't be read.
inline QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

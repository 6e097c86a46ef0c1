// Real mosaics as an independent reader found them: the table that make_expected.py writes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCryptographicHash>
#include <QFile>
#include <QList>
#include <gtest/gtest.h>

struct ExpectedMosaic {
    QString name;          ///< below the folder of scanner files
    QByteArray digest;     ///< of the slices, one behind the other
    QList<double> numbers; ///< as the head of the table lists them
    [[nodiscard]] int whole(int index) const { return int(numbers[index]); }
};

inline QList<ExpectedMosaic> expectedMosaics() {
    QFile file(VELO_SOURCE_DIR "/tests/intake/expected_mosaics.tsv");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QList<ExpectedMosaic> table;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.startsWith('#'))
            continue;
        const QList<QByteArray> fields = line.trimmed().split('\t');
        ExpectedMosaic row{fields[0], fields[1], {}};
        for (const QByteArray& number : fields.mid(2))
            row.numbers << number.toDouble();
        table << row;
    }
    return table;
}

/// Of 16-bit little-endian samples.
inline QByteArray digestOf(const QByteArray& samples) {
    return QCryptographicHash::hash(samples, QCryptographicHash::Sha256).toHex();
}

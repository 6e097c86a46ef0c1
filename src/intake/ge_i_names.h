// Names of the files of a "GE_I" run: folders of 999 images, numbered in steps of 20.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// Numbers of the first expected file, as the settings state them.
struct GeINumbers {
    int seriesNr = 1;
    int firstImageNr = 1;
};

/// "I.001": the number has three digits or more.
[[nodiscard]] QString geIImageName(qint64 image);

/// Name of an expected file below the watch folder, "001/I.001": both numbers have three digits or
/// more, and the image that would be number 1000 is number 1 of the folder 20 numbers higher.
/// `index` counts files from 0.
[[nodiscard]] QString geIFileName(const GeINumbers& first, qint64 index);

struct GeIFileList {
    QByteArray text;      ///< one name in each line
    qint64 nrOfNames = 0; ///< may be less than was asked for
};

/// The first `count` expected files with the folder before each name. A list is truncated at 64
/// MiB.
[[nodiscard]] GeIFileList geIFileList(const QString& watchFolder, const GeINumbers& first,
                                      qint64 count);

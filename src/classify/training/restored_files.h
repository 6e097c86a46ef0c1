// Files that belong together: all are written, or none.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/file_writing.h"
#include "base/plain_file.h"

#include <QStringList>
#include <optional>
#include <vector>

/// Small files as they were: they come back with the end of this object, unless what was written
/// into them is kept. One that is too large to be one of these files doesn't.
class RestoredFiles {
public:
    explicit RestoredFiles(const QStringList& paths) {
        for (const QString& path : paths) {
            QFile file(path);
            if (openPlainFile(file) && file.size() <= largestSize)
                files_.push_back({path, file.readAll()});
            else if (!fileExists(path))
                files_.push_back({path, std::nullopt});
        }
    }
    ~RestoredFiles() {
        for (const SavedFile& file : files_)
            if (file.content)
                static_cast<void>(writeFileAtomically(file.path, *file.content));
            else
                QFile::remove(file.path);
    }
    RestoredFiles(const RestoredFiles&) = delete;
    RestoredFiles& operator=(const RestoredFiles&) = delete;

    void keep() { files_.clear(); }

private:
    static constexpr qint64 largestSize = qint64(64) << 20;
    struct SavedFile {
        QString path;
        std::optional<QByteArray> content; ///< none: there was no file
    };
    std::vector<SavedFile> files_;
};

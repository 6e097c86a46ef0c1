// What a run waits for at this moment, which the display may ask for at any time.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/arrival.h"

#include <optional>
#include <utility>

struct FileWait {
    ExpectedFile file; ///< names are full paths
    /// What a file that is there already still lacks, such as "lines up to volume 12"; empty while
    /// the file itself is awaited.
    QString missingPart;
    qint64 start = 0; ///< milliseconds of the pump
    int timeOutMilliseconds = 0;
};

/// Says what is waited for as long as the wait lasts.
class FileWaitScope {
public:
    FileWaitScope(std::optional<FileWait>& present, FileWait wait) : present_(present) {
        present_ = std::move(wait);
    }
    ~FileWaitScope() { present_.reset(); }
    FileWaitScope(const FileWaitScope&) = delete;
    FileWaitScope& operator=(const FileWaitScope&) = delete;

private:
    std::optional<FileWait>& present_;
};

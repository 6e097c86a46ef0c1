// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_disk.h"

#include "base/messages.h"
#include "run/loop/run_memory.h"

#include <QStorageInfo>
#include <algorithm>

namespace {

/// The journal and the results take what the samples take, each. The logs are small.
size_t diskBytesOfRun(const FMRProject& project, qint64 bytesOfJournal) {
    const size_t samples =
        size_t(std::max(project.NrOfVolumes, 0)) * project.volumeSamples() * sizeof(int16_t);
    return 2 * samples - std::min(samples, size_t(std::max(bytesOfJournal, qint64(0))));
}

} // namespace

void tellOfDiskWithoutRoom(const FMRProject& project, const QString& targetFolder,
                           qint64 bytesOfJournal) {
    const QStorageInfo disk(targetFolder);
    const size_t needed = diskBytesOfRun(project, bytesOfJournal);
    if (!disk.isValid() || disk.bytesAvailable() < 0 || size_t(disk.bytesAvailable()) >= needed)
        return;
    showModelessWarning(
        QStringLiteral("WARNING: The journal and the results of this run need %1 on the disk of "
                       "\"%2\", where %3 are free.\n\nThe run can be measured all the same. Make "
                       "room before it ends.")
            .arg(memoryText(needed), targetFolder, memoryText(size_t(disk.bytesAvailable()))));
}

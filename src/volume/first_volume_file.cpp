// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/first_volume_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"

#include <QtEndian>

QString firstVolumeFileName(const FMRProject& project) {
    return paths::withoutExtension(project.projectPath) + "-firstvol.img";
}

bool writeFirstVolume(const FMRProject& project) {
    if (project.firstVolume.empty())
        return false;
    const std::span<const int16_t> samples = project.firstVolume.span();
    QByteArray bytes(qsizetype(samples.size_bytes()), Qt::Uninitialized);
    qToLittleEndian<quint16>(samples.data(), qsizetype(samples.size()), bytes.data());
    if (writeFileAtomically(firstVolumeFileName(project), bytes))
        return true;
    showCritical("Error: Can not open file to save first volume.");
    return false;
}

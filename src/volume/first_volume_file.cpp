// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/first_volume_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"

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

bool readFirstVolume(FMRProject& project) {
    const QString name = firstVolumeFileName(project);
    const size_t samples = project.volumeSamples();
    QFile file(name);
    if (!openPlainFile(file) || file.size() < qint64(samples * sizeof(int16_t)) ||
        !project.firstVolume.allocate(samples)) {
        showCritical(QString("ERROR: Can not find / open file: %1 !").arg(name));
        return false;
    }
    const QByteArray bytes = file.read(qint64(samples * sizeof(int16_t)));
    if (size_t(bytes.size()) < samples * sizeof(int16_t)) {
        showCritical(QString("ERROR: Can not find / open file: %1 !").arg(name));
        project.firstVolume.release();
        return false;
    }
    qFromLittleEndian<quint16>(bytes.constData(), qsizetype(samples), project.firstVolume.data());
    return true;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "replay_folder.h"

#include "base/paths.h"
#include "dicom_files.h"
#include "protocol_files.h"

#include <QDir>
#include <QFile>
#include <algorithm>

namespace {

bool isDigit(QChar character) {
    return character >= '0' && character <= '9';
}

/// The run of digits at a position, without leading zeros; advances the position past it.
QString digitsAt(const QString& name, qsizetype& position) {
    const qsizetype first = position;
    while (position < name.size() && isDigit(name[position]))
        ++position;
    qsizetype significant = first;
    while (significant + 1 < position && name[significant] == '0')
        ++significant;
    return name.mid(significant, position - significant);
}

bool hasDicomMark(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(128) && file.read(4) == "DICM";
}

} // namespace

bool nameComesBefore(const QString& left, const QString& right) {
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < left.size() && j < right.size()) {
        if (isDigit(left[i]) && isDigit(right[j])) {
            const QString a = digitsAt(left, i);
            const QString b = digitsAt(right, j);
            if (a != b)
                return a.size() != b.size() ? a.size() < b.size() : a < b;
        } else if (left[i] != right[j]) {
            return left[i] < right[j];
        } else {
            ++i;
            ++j;
        }
    }
    if (i < left.size() || j < right.size())
        return j < right.size();
    return left < right; // names that differ in leading zeros alone
}

ReplayFolder::ReplayFolder(QString folder, int nrOfFilesPerVolume)
    : folder_(std::move(folder)), nrOfFilesPerVolume_(nrOfFilesPerVolume),
      names_(QDir(folder_).entryList(QDir::Files, QDir::Unsorted)) {
    const auto isOther = [this](const QString& name) {
        return !hasDicomMark(paths::join(folder_, name));
    };
    if (!std::all_of(names_.cbegin(), names_.cend(), isOther))
        names_.removeIf(isOther);
    std::sort(names_.begin(), names_.end(), nameComesBefore);
}

int ReplayFolder::nrOfVolumes() const {
    return int(names_.size()) / nrOfFilesPerVolume_;
}

std::optional<std::vector<ScannerFile>> ReplayFolder::files(int volume) const {
    std::vector<ScannerFile> files;
    for (int file = 0; file < nrOfFilesPerVolume_; ++file) {
        const QString name = names_[volume * nrOfFilesPerVolume_ + file];
        QFile source(paths::join(folder_, name));
        if (!source.open(QIODevice::ReadOnly))
            return std::nullopt;
        files.push_back({name, source.readAll()});
        if (files.back().bytes.size() != source.size())
            return std::nullopt;
    }
    return files;
}

FileNaming ReplayFolder::naming(const SimulationOptions& options) const {
    FileNaming naming = fileNaming(options);
    const QString first = names_.value(0);
    naming.extension = first.mid(paths::withoutExtension(first).size() + 1);
    const QStringList fields = paths::withoutExtension(first).split(naming.delimiter);
    naming.firstVolumeNr = fields.size() > 1 ? fields[fields.size() - 2].toInt() : 0;
    naming.firstImageNr = fields.back().toInt();
    return naming;
}

bool ReplayFolder::writeSession(const SimulationOptions& options) const {
    RunDescription run = runDescription(options, ScanGeometry(options));
    run.title = "Replay of " + QDir(folder_).dirName();
    run.format = std::make_shared<DicomFormat>(options, naming(options), names_.value(0));
    return writeSettingsFile(run) && writeProtocolHeader({options, blockProtocol(options)});
}

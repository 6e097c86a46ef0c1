// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/stc_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/program_end.h"
#include "volume/fmr_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

namespace {

constexpr qint64 sliceFileHeaderBytes = 4;

bool fail(const QString& text) {
    showCritical(text);
    endProgram(1);
    return false;
}

QString tooShort(const QString& fileName) {
    return "ERROR: The .stc file holds fewer samples than its header states: " + fileName;
}

bool failShort(const QString& fileName) {
    return fail(tooShort(fileName));
}

QString notOpened(const QString& fileName) {
    return "ERROR: Can not open .stc file: " + fileName;
}

qint64 sliceBytes(const FMRHeader& header) {
    return qint64(header.sliceSamples() * sizeof(int16_t));
}

/// Slice files are named with the prefix of the header, which may have lost its "-".
QString sliceFileName(const FMRHeader& header, const QString& folder, int slice) {
    const QString number = QString::number(slice + 1) + ".stc";
    const QString plain = paths::join(folder, header.Prefix + number);
    const QString dashed = paths::join(folder, header.Prefix + "-" + number);
    return !QFileInfo::exists(plain) && QFileInfo::exists(dashed) ? dashed : plain;
}

/// The data file to read.
QString dataFileName(const FMRHeader& header, const QString& folder) {
    const QString plain = paths::join(folder, header.Prefix + ".stc");
    return QFileInfo::exists(plain) ? plain
                                    : paths::join(folder, prefixOfFiles(header.Prefix) + ".stc");
}

bool readSamples(QIODevice& file, std::span<int16_t> samples) {
    const qint64 bytes = qint64(samples.size_bytes());
    if (file.read(reinterpret_cast<char*>(samples.data()), bytes) != bytes)
        return false;
    qFromLittleEndian<quint16>(samples.data(), qsizetype(samples.size()), samples.data());
    return true;
}

std::span<int16_t> sliceOf(FMRProject& project, int volume, int slice) {
    return project.volumes[size_t(volume)].subspan(size_t(slice) * project.sliceSamples(),
                                                   project.sliceSamples());
}

/// Collects samples into large writes.
class SampleWriter {
public:
    explicit SampleWriter(QIODevice& file) : file_(file) { buffer_.reserve(flushSize); }

    bool add(std::span<const int16_t> samples) {
        const qsizetype start = buffer_.size();
        buffer_.resize(start + qsizetype(samples.size_bytes()));
        qToLittleEndian<quint16>(samples.data(), qsizetype(samples.size()), buffer_.data() + start);
        return buffer_.size() < flushSize || flush();
    }
    bool flush() {
        const bool written = file_.write(buffer_) == buffer_.size();
        buffer_.resize(0);
        return written;
    }

private:
    static constexpr qsizetype flushSize = 1 << 20;
    QIODevice& file_;
    QByteArray buffer_;
};

bool writeSlices(const FMRProject& project, int nrOfVolumes, QIODevice& file,
                 ProgressReporter* progress, EventPump* pump, int from, int to) {
    const std::vector<int16_t> noSamples(project.sliceSamples(), 0);
    SampleWriter writer(file);
    for (int slice = 0; slice < project.NrOfSlices; ++slice) {
        for (int volume = 0; volume < nrOfVolumes; ++volume) {
            const bool exists = size_t(volume) < project.volumes.size() &&
                                project.volumes.samplesOfEach() >= project.volumeSamples();
            if (!writer.add(
                    exists ? project.volumes[size_t(volume)].subspan(
                                 size_t(slice) * project.sliceSamples(), project.sliceSamples())
                           : std::span<const int16_t>(noSamples)))
                return false;
        }
        if (progress)
            progress->setProgress(from + int(qint64(slice) * (to - from) / project.NrOfSlices));
        if (pump)
            pump->processEvents();
        if (progress && progress->cancelled())
            return false;
    }
    return writer.flush();
}

bool checkSliceFile(const FMRProject& project, const QString& fileName) {
    QFile file(fileName);
    if (!openPlainFile(file))
        return fail(notOpened(fileName));
    std::array<int16_t, 2> sizes{};
    if (!readSamples(file, sizes))
        return failShort(fileName);
    if (sizes[0] != project.ResolutionX || sizes[1] != project.ResolutionY)
        return fail("ERROR: Unexpected .stc file dimensions, quitting Cortivo NX...");
    const qint64 needed = sliceFileHeaderBytes + sliceBytes(project) * project.NrOfVolumes;
    return file.size() >= needed || failShort(fileName);
}

bool isAllocated(const FMRProject& project) {
    return project.volumes.size() >= size_t(std::max(project.NrOfVolumes, 0)) &&
           project.volumes.samplesOfEach() >= project.volumeSamples();
}

} // namespace

QString stcFileName(const FMRProject& project) {
    return paths::join(project.targetFolder, prefixOfFiles(project.Prefix) + ".stc");
}

bool writeSTCData(const FMRProject& project, int nrOfVolumesWritten, ProgressReporter* progress,
                  EventPump* pump, int from, int to) {
    const int nrOfVolumes = std::max(std::min(nrOfVolumesWritten, project.NrOfVolumes), 0);
    QSaveFile file(stcFileName(project));
    // A pipe or a device must be neither opened nor replaced.
    const QFileInfo existing(file.fileName());
    const bool free = !existing.exists() || existing.isFile();
    if (free && file.open(QIODevice::WriteOnly) &&
        writeSlices(project, nrOfVolumes, file, progress, pump, from, to) && commitFile(file))
        return true;
    if (!progress || !progress->cancelled())
        showWarning("ERROR: Can not write FMR time course (STC) files !");
    return false;
}

bool stcDataReadBack(const FMRProject& project, int nrOfVolumesWritten, EventPump& pump) {
    const int nrOfVolumes = std::max(std::min(nrOfVolumesWritten, project.NrOfVolumes), 0);
    QFile file(stcFileName(project));
    if (!openPlainFile(file) ||
        file.size() != sliceBytes(project) * project.NrOfSlices * nrOfVolumes)
        return false;
    std::vector<int16_t> found(project.sliceSamples());
    for (int slice = 0; slice < project.NrOfSlices; ++slice) {
        for (int volume = 0; volume < nrOfVolumes; ++volume)
            if (!readSamples(file, found) ||
                !std::ranges::equal(found, project.volumes[size_t(volume)].subspan(
                                               size_t(slice) * found.size(), found.size())))
                return false;
        pump.processEvents();
    }
    return true;
}

bool checkSTCFiles(const FMRProject& project) {
    if (project.DataStorageFormat == 1) {
        for (int slice = 0; slice < project.NrOfSlices; ++slice)
            if (!checkSliceFile(project, sliceFileName(project, project.targetFolder, slice)))
                return false;
        return true;
    }
    const QString name = dataFileName(project, project.targetFolder);
    QFile file(name);
    if (!openPlainFile(file))
        return fail(notOpened(name));
    // A division, since the product of hostile sizes may overflow 64 bits.
    const qint64 volumeBytes = sliceBytes(project) * project.NrOfSlices;
    const bool holdsAll = volumeBytes > 0 && file.size() / volumeBytes >= project.NrOfVolumes;
    return holdsAll || failShort(name);
}

bool readSTCData(FMRProject& project) {
    if (!isAllocated(project) || !checkSTCFiles(project))
        return false;
    if (project.DataStorageFormat == 1) {
        for (int slice = 0; slice < project.NrOfSlices; ++slice)
            if (!readSliceSTC(project, slice, sliceFileName(project, project.targetFolder, slice)))
                return false;
        return true;
    }
    const QString name = dataFileName(project, project.targetFolder);
    QFile file(name);
    if (!openPlainFile(file))
        return fail(notOpened(name));
    for (int slice = 0; slice < project.NrOfSlices; ++slice)
        for (int volume = 0; volume < project.NrOfVolumes; ++volume)
            if (!readSamples(file, sliceOf(project, volume, slice)))
                return failShort(name);
    return true;
}

bool readSliceSTC(FMRProject& project, int slice, const QString& fileName) {
    if (!isAllocated(project) || slice < 0 || slice >= project.NrOfSlices ||
        !checkSliceFile(project, fileName))
        return false;
    QFile file(fileName);
    if (!openPlainFile(file) || !file.seek(sliceFileHeaderBytes))
        return fail(notOpened(fileName));
    for (int volume = 0; volume < project.NrOfVolumes; ++volume)
        if (!readSamples(file, sliceOf(project, volume, slice)))
            return failShort(fileName);
    return true;
}

namespace {

/// The data files of a saved run, in the folder of its header.
class SavedSeries {
public:
    SavedSeries(FMRHeader& header, const QString& targetFMR)
        : header_(header), folder_(paths::folderWithSlash(targetFMR)) {
        if (header_.Prefix.endsWith('-'))
            header_.Prefix.chop(1);
        common_ = dataFileName(header_, folder_);
    }

    [[nodiscard]] QString nameOf(int slice) const {
        return perSlice() ? sliceFileName(header_, folder_, slice) : common_;
    }
    /// Where the samples of a slice begin at this volume.
    [[nodiscard]] qint64 offset(int slice, int volume) const {
        return (perSlice() ? sliceFileHeaderBytes : seriesBytes() * slice) +
               sliceBytes(header_) * volume;
    }
    /// Why the first of the files can't be read; empty when it can.
    [[nodiscard]] QString fault() const {
        const QFileInfo file(nameOf(0));
        if (!file.isFile())
            return QString("ERROR: Can not find / open stc file: %1 !").arg(nameOf(0));
        const bool isShort = perSlice() ? file.size() - sliceFileHeaderBytes < seriesBytes()
                                        : file.size() / seriesBytes() < header_.NrOfSlices;
        return isShort ? tooShort(nameOf(0)) : QString();
    }

private:
    [[nodiscard]] bool perSlice() const { return header_.DataStorageFormat == 1; }
    [[nodiscard]] qint64 seriesBytes() const {
        return std::max(sliceBytes(header_) * header_.NrOfVolumes, qint64(1));
    }

    FMRHeader& header_;
    QString folder_;
    QString common_;
};

} // namespace

QString savedDataFault(FMRHeader header, const QString& targetFMR) {
    return SavedSeries(header, targetFMR).fault();
}

bool readSTCVolume(int volume, const QString& targetFMR, FMRHeader& header, Volume& samples) {
    if (!readFMRHeader(targetFMR, header))
        return false;
    const SavedSeries series(header, targetFMR);
    const QString fault = series.fault();
    if (!fault.isEmpty())
        return fail(fault);
    if (volume < 0 || volume >= header.NrOfVolumes)
        return failShort(series.nameOf(0));
    if (!samples.allocate(header.volumeSamples()))
        return fail("FATAL ERROR: Can not get enough memory to continue !");
    for (int slice = 0; slice < header.NrOfSlices; ++slice) {
        const QString name = series.nameOf(slice);
        QFile file(name);
        if (!openPlainFile(file))
            return fail(QString("ERROR: Can not find / open stc file: %1 !").arg(name));
        if (!file.seek(series.offset(slice, volume)) ||
            !readSamples(file, samples.span().subspan(size_t(slice) * header.sliceSamples(),
                                                      header.sliceSamples())))
            return failShort(name);
    }
    return true;
}

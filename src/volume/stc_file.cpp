// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/stc_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/program_end.h"
#include "volume/fmr_file.h"
#include "volume/saved_series.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

namespace {

bool fail(const QString& text) {
    showCritical(text);
    endProgram(1);
    return false;
}

bool failShort(const QString& fileName) {
    return fail(stcTooShort(fileName));
}

QString notOpened(const QString& fileName) {
    return "ERROR: Can not open .stc file: " + fileName;
}

std::span<int16_t> sliceOf(FMRProject& project, int volume, int slice) {
    return project.volumes[size_t(volume)].subspan(size_t(slice) * project.sliceSamples(),
                                                   project.sliceSamples());
}

/// Collects samples into large writes, and has them forced out on the way: at the end of gigabytes
/// that would take long, with nobody to process events.
class SampleWriter {
public:
    explicit SampleWriter(QFileDevice& file) : file_(file) { buffer_.reserve(flushSize); }

    bool add(std::span<const int16_t> samples) {
        const qsizetype start = buffer_.size();
        buffer_.resize(start + qsizetype(samples.size_bytes()));
        qToLittleEndian<quint16>(samples.data(), qsizetype(samples.size()), buffer_.data() + start);
        return buffer_.size() < flushSize || flush();
    }
    bool flush() {
        const bool written = file_.write(buffer_) == buffer_.size();
        notForcedOut_ += buffer_.size();
        buffer_.resize(0);
        return written && (notForcedOut_ < forceOutSize || forceOut());
    }

private:
    static constexpr qsizetype flushSize = 1 << 20;
    static constexpr qsizetype forceOutSize = 64 << 20;

    bool forceOut() {
        notForcedOut_ = 0;
        return file_.flush() && forceOutData(file_.handle());
    }

    QFileDevice& file_;
    QByteArray buffer_;
    qsizetype notForcedOut_ = 0;
};

bool writeSlices(const FMRProject& project, int nrOfVolumes, QFileDevice& file,
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
    if (!readSTCSamples(file, sizes))
        return failShort(fileName);
    if (sizes[0] != project.ResolutionX || sizes[1] != project.ResolutionY)
        return fail("ERROR: Unexpected .stc file dimensions, quitting Cortivo NX...");
    const qint64 needed = stcSliceFileHeaderBytes + stcSliceBytes(project) * project.NrOfVolumes;
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
    if (openToReplace(file) && writeSlices(project, nrOfVolumes, file, progress, pump, from, to) &&
        commitFile(file))
        return true;
    if (!progress || !progress->cancelled())
        showWarning("ERROR: Can not write FMR time course (STC) files !");
    return false;
}

bool stcDataReadBack(const FMRProject& project, int nrOfVolumesWritten, EventPump& pump) {
    const int nrOfVolumes = std::max(std::min(nrOfVolumesWritten, project.NrOfVolumes), 0);
    QFile file(stcFileName(project));
    if (!openPlainFile(file) ||
        file.size() != stcSliceBytes(project) * project.NrOfSlices * nrOfVolumes)
        return false;
    std::vector<int16_t> found(project.sliceSamples());
    for (int slice = 0; slice < project.NrOfSlices; ++slice) {
        for (int volume = 0; volume < nrOfVolumes; ++volume)
            if (!readSTCSamples(file, found) ||
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
            if (!checkSliceFile(project, stcSliceFileName(project, project.targetFolder, slice)))
                return false;
        return true;
    }
    const QString name = stcDataFileName(project, project.targetFolder);
    QFile file(name);
    if (!openPlainFile(file))
        return fail(notOpened(name));
    // A division, since the product of hostile sizes may overflow 64 bits.
    const qint64 volumeBytes = stcSliceBytes(project) * project.NrOfSlices;
    const bool holdsAll = volumeBytes > 0 && file.size() / volumeBytes >= project.NrOfVolumes;
    return holdsAll || failShort(name);
}

bool readSTCData(FMRProject& project, EventPump* pump) {
    if (!isAllocated(project) || !checkSTCFiles(project))
        return false;
    const QString name = stcDataFileName(project, project.targetFolder);
    QFile file(name);
    if (project.DataStorageFormat != 1 && !openPlainFile(file))
        return fail(notOpened(name));
    const auto readSlice = [&](int slice) {
        if (project.DataStorageFormat == 1)
            return readSliceSTC(project, slice,
                                stcSliceFileName(project, project.targetFolder, slice));
        for (int volume = 0; volume < project.NrOfVolumes; ++volume)
            if (!readSTCSamples(file, sliceOf(project, volume, slice)))
                return failShort(name);
        return true;
    };
    for (int slice = 0; slice < project.NrOfSlices; ++slice) {
        if (!readSlice(slice))
            return false;
        if (pump)
            pump->processEvents();
    }
    return true;
}

bool readSliceSTC(FMRProject& project, int slice, const QString& fileName) {
    if (!isAllocated(project) || slice < 0 || slice >= project.NrOfSlices ||
        !checkSliceFile(project, fileName))
        return false;
    QFile file(fileName);
    if (!openPlainFile(file) || !file.seek(stcSliceFileHeaderBytes))
        return fail(notOpened(fileName));
    for (int volume = 0; volume < project.NrOfVolumes; ++volume)
        if (!readSTCSamples(file, sliceOf(project, volume, slice)))
            return failShort(fileName);
    return true;
}

QString savedDataFault(FMRHeader header, const QString& targetFMR) {
    return SavedSeries(header, targetFMR).fault(0);
}

bool readSTCVolume(int volume, const QString& targetFMR, FMRHeader& header, Volume& samples) {
    if (!readFMRHeader(targetFMR, header))
        return false;
    const SavedSeries series(header, targetFMR);
    const QString fault = series.fault(0);
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
            !readSTCSamples(file, samples.span().subspan(size_t(slice) * header.sliceSamples(),
                                                         header.sliceSamples())))
            return failShort(name);
    }
    return true;
}

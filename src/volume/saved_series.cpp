// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/saved_series.h"

#include "base/paths.h"
#include "volume/fmr_file.h"

#include <QFileInfo>
#include <QIODevice>
#include <QtEndian>

qint64 stcSliceBytes(const FMRHeader& header) {
    return qint64(header.sliceSamples() * sizeof(int16_t));
}

QString stcSliceFileName(const FMRHeader& header, const QString& folder, int slice) {
    const QString number = QString::number(slice + 1) + ".stc";
    const QString plain = paths::join(folder, header.Prefix + number);
    const QString dashed = paths::join(folder, header.Prefix + "-" + number);
    return !QFileInfo::exists(plain) && QFileInfo::exists(dashed) ? dashed : plain;
}

QString stcDataFileName(const FMRHeader& header, const QString& folder) {
    const QString plain = paths::join(folder, header.Prefix + ".stc");
    return QFileInfo::exists(plain) ? plain
                                    : paths::join(folder, prefixOfFiles(header.Prefix) + ".stc");
}

QString stcTooShort(const QString& fileName) {
    return "ERROR: The .stc file holds fewer samples than its header states: " + fileName;
}

bool readSTCSamples(QIODevice& file, std::span<int16_t> samples) {
    const qint64 bytes = qint64(samples.size_bytes());
    if (file.read(reinterpret_cast<char*>(samples.data()), bytes) != bytes)
        return false;
    qFromLittleEndian<quint16>(samples.data(), qsizetype(samples.size()), samples.data());
    return true;
}

SavedSeries::SavedSeries(FMRHeader& header, const QString& targetFMR)
    : header_(header), folder_(paths::folderWithSlash(targetFMR)) {
    if (header_.Prefix.endsWith('-'))
        header_.Prefix.chop(1);
    common_ = stcDataFileName(header_, folder_);
}

QString SavedSeries::nameOf(int slice) const {
    return perSlice() ? stcSliceFileName(header_, folder_, slice) : common_;
}

qint64 SavedSeries::offset(int slice, int volume) const {
    return (perSlice() ? stcSliceFileHeaderBytes : seriesBytes() * slice) +
           stcSliceBytes(header_) * volume;
}

QString SavedSeries::fault(int slice) const {
    const QString name = nameOf(slice);
    const QFileInfo file(name);
    if (!file.isFile())
        return QString("ERROR: Can not find / open stc file: %1 !").arg(name);
    const bool isShort = perSlice() ? file.size() - stcSliceFileHeaderBytes < seriesBytes()
                                    : file.size() / seriesBytes() < header_.NrOfSlices;
    return isShort ? stcTooShort(name) : QString();
}

qint64 SavedSeries::seriesBytes() const {
    return std::max(stcSliceBytes(header_) * header_.NrOfVolumes, qint64(1));
}

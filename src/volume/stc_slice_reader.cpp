// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/stc_slice_reader.h"

#include "base/messages.h"
#include "base/plain_file.h"
#include "volume/fmr_file.h"

namespace {

bool fail(const QString& text) {
    showCritical(text);
    return false;
}

bool openForSlices(QFile& file) {
    // Slices are large: a buffer would only copy them once more.
    return openPlainFile(file, QIODevice::ReadOnly | QIODevice::Unbuffered);
}

QString notOpened(const QString& fileName) {
    return QString("ERROR: Can not find / open stc file: %1 !").arg(fileName);
}

} // namespace

std::unique_ptr<STCSliceReader> STCSliceReader::open(const QString& targetFMR) {
    FMRHeader header;
    if (!readFMRHeader(targetFMR, header))
        return nullptr;
    std::unique_ptr<STCSliceReader> reader(new STCSliceReader(header, targetFMR));
    const int nrOfFiles = reader->series_.perSlice() ? header.NrOfSlices : 1;
    for (int slice = 0; slice < nrOfFiles; ++slice) {
        const QString fault = reader->fault(slice);
        if (!fault.isEmpty()) {
            showCritical(fault);
            return nullptr;
        }
    }
    return reader;
}

QString STCSliceReader::fault(int slice) const {
    const QString fault = series_.fault(slice);
    if (!fault.isEmpty() || !series_.perSlice())
        return fault;
    const QString name = series_.nameOf(slice);
    QFile file(name);
    std::array<int16_t, 2> sizes{};
    if (!openForSlices(file) || !readSTCSamples(file, sizes))
        return notOpened(name);
    if (sizes[0] != header_.ResolutionX || sizes[1] != header_.ResolutionY)
        return "ERROR: The .stc file has another matrix than its header states: " + name;
    return {};
}

bool STCSliceReader::readSlice(int slice, std::span<int16_t> samples) {
    const QString name = series_.nameOf(slice);
    QFile sliceFile(name);
    if (!series_.perSlice() && !common_) {
        common_ = std::make_unique<QFile>(name);
        if (!openForSlices(*common_)) {
            common_.reset();
            return fail(notOpened(name));
        }
    }
    if (series_.perSlice() && !openForSlices(sliceFile))
        return fail(notOpened(name));
    QFile& file = series_.perSlice() ? sliceFile : *common_;
    return (file.seek(series_.offset(slice, 0)) && readSTCSamples(file, samples)) ||
           fail(stcTooShort(name));
}

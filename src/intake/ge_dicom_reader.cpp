// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_dicom_reader.h"

#include "base/paths.h"
#include "intake/dicom_names.h"

#include <numeric>

QString GeDicomReader::sliceFileName(qint64 number, qint64 count) const {
    return watchedPath(geDicomFileName(number, count));
}

bool GeDicomReader::readFirstVolume() {
    return readSlices(Stage::FirstVolume, 0, firstCount());
}

bool GeDicomReader::readVolume(int volume) {
    return readSlices(Stage::Loop, volume, project().NrOfSlices * measuredVolume(volume) + 1);
}

bool GeDicomReader::readSlices(Stage stage, int volume, qint64 base) {
    const size_t nrOfSamples = targetSlice(stage, volume, 0).size();
    if (nrOfSamples == 0)
        return false;
    std::vector<int> missing(size_t(project().NrOfSlices));
    std::iota(missing.begin(), missing.end(), 0);
    while (!missing.empty()) {
        const ExpectedFile expected{namesOf(base, missing), qint64(2 * nrOfSamples), true};
        auto image = awaitImage(expected, stage, nrOfSamples);
        if (!image)
            return false;
        const auto found = missing.begin() + expected.names.indexOf(image->path);
        image->samples = image->samples.last(2 * nrOfSamples);
        if (!takeSlice(*image, stage, targetSlice(stage, volume, *found)))
            return false;
        if (stage == Stage::FirstVolume)
            remember(image->path, *found);
        missing.erase(found);
    }
    return true;
}

void GeDicomReader::remember(const QString& path, int slice) {
    if (slice == 0) {
        firstSliceFile_ = path;
        project().FirstDataSourceFile = paths::fileName(path);
    }
    if (slice == project().NrOfSlices - 1)
        lastSliceFile_ = path;
}

bool GeDicomReader::readSizes() {
    if (!readHeader(firstSliceFile_))
        return false;
    const DicomHeader& header = state().header;
    const VolumeSize size = project().size();
    takeSizes(firstSliceFile_);
    return (header.columns == size.x && header.rows == size.y) || failForDimensions(size.x, size.y);
}

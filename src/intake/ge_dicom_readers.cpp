// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_dicom_readers.h"

#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/header_numbers.h"
#include "intake/header_sizes.h"

#include <QDir>
#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr const char* noPosition = "ERROR - Can nor get DICOM slice position values!";

// The number after the first letter of a series folder; 0 without one.
int seriesNumber(const QString& folderName) {
    return leadingInteger(folderName.mid(1).toStdString());
}

// The series folder with the highest number; the earlier one of equals. Empty where there is none.
QString latestSeries(const QString& examFolder) {
    const QStringList series =
        QDir(examFolder).entryList({"s*"}, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    const auto latest = std::ranges::max_element(series, {}, seriesNumber);
    return latest == series.end() ? QString() : *latest;
}

bool isPlace(const Vector3& point) {
    return std::ranges::all_of(point, [](float value) { return std::abs(value) <= largestLength; });
}

// Orthogonal unit vectors, within the few decimals of a header.
bool spanImage(const Vector3& row, const Vector3& column) {
    const auto product = [](const Vector3& a, const Vector3& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
    };
    constexpr double tolerance = 0.1;
    return std::abs(product(row, row) - 1.0) < tolerance &&
           std::abs(product(column, column) - 1.0) < tolerance &&
           std::abs(product(row, column)) < tolerance;
}

} // namespace

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
        const ExpectedFile expected{namesOf(base, missing, 0), qint64(2 * nrOfSamples), true};
        const auto following = [&](int step) {
            return size_t(step) + 1 < missing.size() ? namesOf(base, missing, step + 1)
                                                     : QStringList();
        };
        auto image = awaitImage(expected, stage, nrOfSamples, following);
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

bool GeHdxtDicomReader::prepare() {
    QString folder = state().watchFolder;
    while (folder.endsWith('/'))
        folder.chop(1);
    QString name = paths::fileName(folder);
    if (name.startsWith('e')) {
        name = latestSeries(folder);
        folder = paths::join(folder, name);
    } else if (!name.startsWith('s')) {
        return failWith("Wrong watch folder specified for GE Signa HDxt data. The watch folder "
                        "must point to a exam or series folder.");
    }
    gePerSeriesOffset_ = seriesNumber(name);
    state().watchFolder = paths::withTrailingSlash(folder);
    return true;
}

// The first number counts files as they arrive, the second one slices: all missing slices are
// looked for.
QStringList GeHdxtDicomReader::namesOf(qint64 base, const std::vector<int>& missing,
                                       int step) const {
    const qint64 filesRead = project().NrOfSlices - qint64(missing.size()) + step;
    QStringList names;
    for (const int slice : missing)
        names << sliceFileName(gePerSeriesOffset_ + filesRead + base, base + slice);
    return names;
}

bool GeHdxtDicomReader::takeCorner(SliceEnd which) {
    FMRPositionInfo& position = project().position;
    const bool first = which == SliceEnd::First;
    return (parseImagePosition(state().header.imagePositionText, which, position) &&
            isPlace(first ? position.sliceCenterFirst : position.sliceCenterLast)) ||
           failWith(noPosition);
}

bool GeHdxtDicomReader::takeDirections() {
    FMRPositionInfo& position = project().position;
    return (parseImageOrientation(state().header.imageOrientationText, position) &&
            spanImage(position.rowDirection, position.columnDirection)) ||
           failWith("ERROR - Can nor get DICOM slice orientation values!");
}

// First and last slice of the volume, in whatever order their files arrived: an interleaved
// measurement ends with another slice than the last one.
bool GeHdxtDicomReader::readHeaders() {
    DicomHeader& header = state().header;
    FMRPositionInfo& position = project().position;
    // The record keeps values of other files; their position must not be taken for that of this
    // one.
    header.imagePositionText.clear();
    header.imageOrientationText.clear();
    if (!readSizes())
        return false;
    position.fovColumns = std::round(position.fovColumns);
    position.fovRows = std::round(position.fovRows);
    const float width = float(project().ResolutionX) * project().pixelSizeX;
    const float height = float(project().ResolutionY) * project().pixelSizeY;
    // Without a pixel size the centre can't be computed from the corner.
    if (!(width > 0.0f && height > 0.0f))
        return failWith(noPosition);
    if (!takeCorner(SliceEnd::First) || !takeDirections())
        return false;
    header.imagePositionText.clear();
    if (!readHeader(lastSliceFile()) || !takeCorner(SliceEnd::Last))
        return false;
    for (Vector3* point : {&position.sliceCenterFirst, &position.sliceCenterLast})
        *point = imageCentre(*point, position, width, height);
    position.positionInfoValid = 1;
    return true;
}

QStringList GeXDicomReader::namesOf(qint64 base, const std::vector<int>& missing, int step) const {
    const qint64 count = base + missing[size_t(step)];
    return {sliceFileName(count + settings().GESeriesNr, count)};
}

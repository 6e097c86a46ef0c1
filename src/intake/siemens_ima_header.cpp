// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_header.h"

#include "base/messages.h"
#include "intake/file_bytes.h"
#include "intake/header_numbers.h"

namespace {

enum Offset : size_t {
    SliceThickness = 1544,
    FieldOfViewFirst = 3744,
    FieldOfViewSecond = 3752,
    DistanceFactor = 4136,
};

// Some files state -19222 for an unknown factor. Slices may overlap, but each is beyond the
// previous one: a factor of -1 or less is invalid.
constexpr double noFactor = -1.0;

std::optional<float> pixelSize(const std::optional<float>& fieldOfView, int pixels) {
    if (!fieldOfView || !isLength(*fieldOfView) || pixels <= 0)
        return std::nullopt;
    return *fieldOfView / float(pixels);
}

} // namespace

HeaderSizes parseSiemensIMAHeader(std::span<const uint8_t> bytes, ByteOrder order,
                                  const ImaMatrix& matrix) {
    HeaderSizes sizes;
    if (bytes.size() < size_t(imaHeaderBytes))
        return sizes;
    const auto numberAt = [&](Offset offset) {
        return ByteReader(bytes.subspan(offset), order).f64();
    };
    sizes.sliceThickness = statedLength(numberAt(SliceThickness));
    const double factor = numberAt(DistanceFactor);
    if (sizes.sliceThickness && !(factor <= noFactor))
        sizes.sliceGap = limitedFloat(factor * double(*sizes.sliceThickness));
    sizes.fieldOfViewX = statedLength(numberAt(FieldOfViewFirst));
    sizes.fieldOfViewY = statedLength(numberAt(FieldOfViewSecond));
    sizes.pixelSizeX = pixelSize(sizes.fieldOfViewX, matrix.sizeX);
    sizes.pixelSizeY = pixelSize(sizes.fieldOfViewY, matrix.sizeY);
    return sizes;
}

void readSiemensIMAHeader(const QString& fileName, ByteOrder rawDataByteOrder,
                          FMRProject& project) {
    FileBytes file;
    if (file.read(fileName, {.length = imaHeaderBytes}) != FileBytes::Result::Done) {
        showWarning("ERROR: Can not open .ima file !");
        return;
    }
    const ImaMatrix matrix{project.ResolutionX, project.ResolutionY};
    takeHeaderSizes(parseSiemensIMAHeader(file.bytes(), rawDataByteOrder, matrix), fileName,
                    project);
}

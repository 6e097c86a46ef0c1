// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_header.h"

#include "base/messages.h"
#include "intake/file_bytes.h"

#include <cmath>
#include <optional>

namespace {

enum Offset : size_t {
    SliceThickness = 1544,
    FieldOfViewFirst = 3744,
    FieldOfViewSecond = 3752,
    DistanceFactor = 4136,
};

constexpr double longestLength = 10000.0; // millimetres; nothing in a scanner is as large

std::optional<double> numberAt(std::span<const uint8_t> bytes, ByteOrder order, size_t offset) {
    ByteReader reader(bytes, order);
    if (!reader.seek(offset))
        return std::nullopt;
    const uint64_t first = reader.u32();
    const uint64_t second = reader.u32();
    if (reader.failed())
        return std::nullopt;
    return std::bit_cast<double>(order == ByteOrder::Big ? first << 32 | second
                                                         : second << 32 | first);
}

// Millimetres. A number read in the wrong byte order is hardly ever in this range.
std::optional<float> lengthAt(std::span<const uint8_t> bytes, ByteOrder order, size_t offset) {
    const std::optional<double> number = numberAt(bytes, order, offset);
    if (!number || !(*number >= 1e-3 && *number <= longestLength))
        return std::nullopt;
    return float(*number);
}

} // namespace

void parseSiemensIMAHeader(std::span<const uint8_t> bytes, ByteOrder order, FMRProject& project) {
    const auto thickness = lengthAt(bytes, order, SliceThickness);
    const auto fieldOfViewX = lengthAt(bytes, order, FieldOfViewFirst);
    const auto fieldOfViewY = lengthAt(bytes, order, FieldOfViewSecond);
    if (thickness) {
        project.sliceThickness = *thickness;
        // Files exist that state -19222 for a factor that the scanner doesn't know. Slices may
        // overlap, but each lies beyond the one before.
        const double gap = numberAt(bytes, order, DistanceFactor).value_or(NAN) * *thickness;
        if (*thickness + gap > 0.0 && gap <= longestLength)
            project.sliceGap = float(gap);
    }
    if (fieldOfViewX && project.ResolutionX > 0) {
        project.position.fovColumns = *fieldOfViewX;
        project.pixelSizeX = *fieldOfViewX / float(project.ResolutionX);
    }
    if (fieldOfViewY && project.ResolutionY > 0) {
        project.position.fovRows = *fieldOfViewY;
        project.pixelSizeY = *fieldOfViewY / float(project.ResolutionY);
    }
    if (thickness && fieldOfViewX && fieldOfViewY)
        project.VoxelResolutionVerified = true;
}

void readSiemensIMAHeader(const QString& fileName, ByteOrder rawDataByteOrder,
                          FMRProject& project) {
    FileBytes file;
    if (file.read(fileName, {.offset = 0, .length = imaHeaderBytes}) != FileBytes::Result::Done)
        showWarning("ERROR: Can not open .ima file !");
    else
        parseSiemensIMAHeader(file.bytes(), rawDataByteOrder, project);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/vmr_layout.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int highestVersion = 4;
constexpr int talairachSpace = 3;

Vector3 readVector(ByteReader& reader) {
    Vector3 vector{};
    for (float& component : vector)
        component = reader.f32();
    return vector;
}

bool isFinite(const FMRPositionInfo& position) {
    const auto finite = [](float value) { return std::isfinite(value); };
    return std::ranges::all_of(position.sliceCenterFirst, finite) &&
           std::ranges::all_of(position.sliceCenterLast, finite) &&
           std::ranges::all_of(position.rowDirection, finite) &&
           std::ranges::all_of(position.columnDirection, finite) && finite(position.fovRows) &&
           finite(position.fovColumns);
}

/// A record with values that are no numbers is none.
FMRPositionInfo readPosition(ByteReader& reader) {
    FMRPositionInfo position;
    position.positionInfoValid = reader.i32() != 0;
    position.coordinateSystem = reader.i32();
    position.sliceCenterFirst = readVector(reader);
    position.sliceCenterLast = readVector(reader);
    position.rowDirection = readVector(reader);
    position.columnDirection = readVector(reader);
    position.sizesFromHeaders = reader.i32() != 0; // rows
    reader.i32();                                  // columns
    position.fovRows = reader.f32();
    position.fovColumns = reader.f32();
    reader.f32(); // thickness and gap: the voxels of a cube have 1 mm
    reader.f32();
    return isFinite(position) ? position : FMRPositionInfo();
}

/// Moves behind a text that ends in a zero byte.
bool skipText(ByteReader& reader) {
    while (!reader.failed())
        if (reader.u8() == 0)
            return !reader.failed();
    return false;
}

/// Past transformations: name, type, name of the source, values. None of them is used.
bool skipTransformations(ByteReader& reader) {
    constexpr size_t leastBytes = 10; // two empty names, type, number of values
    const uint32_t count = reader.u32();
    if (count > reader.remaining() / leastBytes)
        return false;
    for (uint32_t i = 0; i < count; ++i) {
        if (!skipText(reader) || !reader.skip(sizeof(int32_t)) || !skipText(reader) ||
            !reader.skip(size_t(reader.u32()) * sizeof(float)))
            return false;
    }
    return !reader.failed();
}

/// Values without a meaning count as unknown.
int knownValue(int value, int maximum) {
    return value <= maximum ? value : 0;
}

void readSpaces(ByteReader& reader, int version, VMRHeader& header) {
    constexpr int maximumConvention = 2;
    header.LeftRightConvention = knownValue(reader.u8(), maximumConvention);
    if (version >= 4)
        header.referenceSpace = knownValue(reader.u8(), talairachSpace);
    if (reader.remaining() < 2)
        return;
    reader.u8();
    if (reader.u8() != 0 && version < 4)
        header.referenceSpace = talairachSpace;
}

bool readEnd(ByteReader& reader, VMRHeader& header) {
    const int version = header.vmrVersion;
    if (version >= 3)
        reader.skip(4 * sizeof(uint16_t));
    if (version >= 2 && reader.remaining() > 0)
        header.position = readPosition(reader);
    constexpr size_t leastBytes = 7;
    if (reader.failed() || reader.remaining() < leastBytes)
        return !reader.failed();
    if (!skipTransformations(reader))
        return false;
    readSpaces(reader, version, header);
    return !reader.failed();
}

} // namespace

VMRStart parseVMRStart(std::span<const uint8_t> bytes, VMRHeader& header) {
    ByteReader reader(bytes);
    header = VMRHeader();
    header.DimX = reader.u16();
    header.hasExtendedHeader = header.DimX == 0;
    if (header.hasExtendedHeader) {
        header.vmrVersion = reader.u16();
        header.DimX = reader.u16();
    } else if (readsAsVersion(header.DimX)) {
        header.vmrVersion = header.DimX;
        if (header.vmrVersion > highestVersion)
            return {VMRParseResult::TooRecent, 0};
        header.DimX = reader.u16();
    }
    header.DimY = reader.u16();
    header.DimZ = reader.u16();
    if (reader.failed() || voxelsOfBlock(header) == 0)
        return {VMRParseResult::Damaged, 0};
    return {VMRParseResult::Good, reader.position()};
}

bool parseVMREnd(std::span<const uint8_t> bytes, VMRHeader& header) {
    // A second block of voxels follows in the prefix form, and nothing else.
    if (header.hasExtendedHeader)
        return true;
    VMRHeader found = header;
    ByteReader reader(bytes);
    if (!readEnd(reader, found))
        return false;
    header = found;
    return true;
}

std::vector<uint8_t> vmrStartBytes(const VMRHeader& header) {
    ByteWriter writer;
    if (header.hasExtendedHeader) {
        writer.u16(0);
        writer.u16(uint16_t(header.vmrVersion));
    }
    for (const int size : {header.DimX, header.DimY, header.DimZ})
        writer.u16(uint16_t(size));
    return writer.result();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/nifti_header.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr uint64_t largestDataOffset = 64u << 20;

/// The numbers of either version, before they are judged.
struct RawHeader {
    std::array<uint8_t, 8> magic{}; ///< NIfTI-1 has four bytes
    int16_t dataType = 0;
    std::array<int64_t, 8> dim{};
    std::array<double, 8> pixdim{};
    double dataOffset = 0.0;
    double slope = 0.0;
    double intercept = 0.0;
    int units = 0;
    int qformCode = 0;
    int sformCode = 0;
    std::array<double, 6> quaternion{}; ///< b, c, d, then the offsets
    NiftiMatrix sform;
};

RawHeader readVersion1(ByteReader reader) {
    RawHeader raw;
    reader.seek(40);
    for (int64_t& value : raw.dim)
        value = reader.i16();
    reader.seek(70);
    raw.dataType = reader.i16();
    reader.seek(76);
    for (double& value : raw.pixdim)
        value = double(reader.f32());
    raw.dataOffset = double(reader.f32());
    raw.slope = double(reader.f32());
    raw.intercept = double(reader.f32());
    reader.seek(123);
    raw.units = reader.u8();
    reader.seek(252);
    raw.qformCode = reader.i16();
    raw.sformCode = reader.i16();
    for (double& value : raw.quaternion)
        value = double(reader.f32());
    for (auto& row : raw.sform.rows)
        for (double& value : row)
            value = double(reader.f32());
    reader.seek(344);
    std::ranges::copy(reader.take(4), raw.magic.begin());
    return raw;
}

RawHeader readVersion2(ByteReader reader) {
    RawHeader raw;
    reader.seek(4);
    std::ranges::copy(reader.take(8), raw.magic.begin());
    raw.dataType = reader.i16();
    reader.seek(16);
    for (int64_t& value : raw.dim)
        value = reader.i64();
    reader.seek(104);
    for (double& value : raw.pixdim)
        value = reader.f64();
    raw.dataOffset = double(reader.i64());
    raw.slope = reader.f64();
    raw.intercept = reader.f64();
    reader.seek(344);
    raw.qformCode = reader.i32();
    raw.sformCode = reader.i32();
    for (double& value : raw.quaternion)
        value = reader.f64();
    for (auto& row : raw.sform.rows)
        for (double& value : row)
            value = reader.f64();
    reader.seek(500);
    raw.units = reader.i32();
    return raw;
}

/// The factor to millimetres of the unit of length. Most programs write none, and mean millimetres.
double millimetres(int units) {
    constexpr int lengthBits = 7;
    constexpr int metreCode = 1;
    constexpr int micrometreCode = 3;
    switch (units & lengthBits) {
    case metreCode:
        return 1000.0;
    case micrometreCode:
        return 0.001;
    default:
        return 1.0;
    }
}

NiftiSpace spaceOf(int code) {
    return code > 0 && code <= int(NiftiSpace::MNI) ? NiftiSpace(code) : NiftiSpace::Aligned;
}

std::optional<NiftiPlace> usablePlace(int code, NiftiMatrix matrix, double unit) {
    if (code <= 0)
        return std::nullopt;
    for (auto& row : matrix.rows)
        for (double& value : row)
            value *= unit;
    if (!matrix.inverse())
        return std::nullopt;
    return NiftiPlace{spaceOf(code), matrix};
}

NiftiMatrix qformOf(const RawHeader& raw) {
    const auto& q = raw.quaternion;
    return matrixOf({{q[0], q[1], q[2]}, raw.pixdim[0] < 0.0 ? -1.0 : 1.0},
                    {std::abs(raw.pixdim[1]), std::abs(raw.pixdim[2]), std::abs(raw.pixdim[3])},
                    {q[3], q[4], q[5]});
}

QString setSizes(const RawHeader& raw, NiftiHeader& header) {
    if (raw.dim[0] < 1 || raw.dim[0] > 7)
        return "has a header with an impossible number of dimensions";
    for (size_t i = 0; i < 3; ++i) {
        header.size[i] = int64_t(i) < raw.dim[0] ? raw.dim[i + 1] : 1;
        if (header.size[i] < 1 || header.size[i] > largestNiftiSide)
            return QString("has a side of %1 voxels; 1 to %2 can be read")
                .arg(header.size[i])
                .arg(largestNiftiSide);
    }
    header.nrOfVolumes = raw.dim[0] > 3 ? std::max<int64_t>(raw.dim[4], 1) : 1;
    return {};
}

QString setSamples(const RawHeader& raw, size_t headerBytes, NiftiHeader& header) {
    header.kind = NiftiSample(raw.dataType);
    if (bytesOf(header.kind) == 0)
        return QString("has voxels of a kind that can't be read (data type %1)").arg(raw.dataType);
    if (!std::isfinite(raw.dataOffset) || raw.dataOffset < 0.0 ||
        raw.dataOffset > double(largestDataOffset))
        return "states an impossible place of its voxels";
    // Some writers leave it 0; four bytes that announce extensions follow the header.
    header.dataOffset = uint64_t(raw.dataOffset);
    if (header.dataOffset == 0)
        header.dataOffset = headerBytes + 4;
    if (header.dataOffset < headerBytes)
        return "states an impossible place of its voxels";
    // A slope of 0 says that samples are values.
    const bool scaled =
        std::isfinite(raw.slope) && raw.slope != 0.0 && std::isfinite(raw.intercept);
    header.slope = scaled ? raw.slope : 1.0;
    header.intercept = scaled ? raw.intercept : 0.0;
    return {};
}

void setPlaces(const RawHeader& raw, NiftiHeader& header) {
    const double unit = millimetres(raw.units);
    for (size_t i = 0; i < 3; ++i) {
        const double size = std::abs(raw.pixdim[i + 1]) * unit;
        header.voxelSizes[i] = std::isfinite(size) && size > 0.0 ? size : 1.0;
    }
    header.bySform = usablePlace(raw.sformCode, raw.sform, unit);
    header.byQform = usablePlace(raw.qformCode, qformOf(raw), unit);
}

QString magicFault(const RawHeader& raw, int version) {
    const char* const single = version == 1 ? "n+1\0" : "n+2\0\r\n\032\n";
    const size_t length = version == 1 ? 4 : 8;
    if (std::memcmp(raw.magic.data(), single, length) == 0)
        return {};
    if (std::memcmp(raw.magic.data(), version == 1 ? "ni1" : "ni2", 4) == 0)
        return "is one of a pair of files (.hdr and .img), which can't be read; save it as one "
               ".nii file";
    return "is not a NIfTI file";
}

} // namespace

size_t bytesOf(NiftiSample kind) {
    switch (kind) {
    case NiftiSample::UInt8:
    case NiftiSample::Int8:
        return 1;
    case NiftiSample::Int16:
    case NiftiSample::UInt16:
        return 2;
    case NiftiSample::Int32:
    case NiftiSample::UInt32:
    case NiftiSample::Float32:
        return 4;
    case NiftiSample::Int64:
    case NiftiSample::UInt64:
    case NiftiSample::Float64:
        return 8;
    }
    return 0;
}

std::optional<NiftiPlace> NiftiHeader::place() const {
    const auto inScanner = [](const std::optional<NiftiPlace>& place) {
        return place &&
               (place->space == NiftiSpace::Scanner || place->space == NiftiSpace::Aligned);
    };
    if (!inScanner(bySform) && (inScanner(byQform) || !bySform))
        return byQform;
    return bySform;
}

size_t niftiHeaderBytes(std::span<const uint8_t> start) {
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        const uint32_t size = ByteReader(start, order).u32();
        if (size == nifti1HeaderBytes || size == nifti2HeaderBytes)
            return size;
    }
    return 0;
}

QString parseNiftiHeader(std::span<const uint8_t> start, NiftiHeader& header) {
    const size_t headerBytes = niftiHeaderBytes(start);
    if (headerBytes == 0)
        return "is not a NIfTI file";
    if (start.size() < headerBytes)
        return "is cut off";
    NiftiHeader parsed;
    parsed.version = headerBytes == nifti1HeaderBytes ? 1 : 2;
    parsed.byteOrder = ByteReader(start).u32() == headerBytes ? ByteOrder::Little : ByteOrder::Big;
    const ByteReader reader(start, parsed.byteOrder);
    const RawHeader raw = parsed.version == 1 ? readVersion1(reader) : readVersion2(reader);
    for (const QString& fault : {magicFault(raw, parsed.version), setSizes(raw, parsed),
                                 setSamples(raw, headerBytes, parsed)})
        if (!fault.isEmpty())
            return fault;
    setPlaces(raw, parsed);
    header = parsed;
    return {};
}

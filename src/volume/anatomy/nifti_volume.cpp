// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/nifti_volume.h"

#include "volume/anatomy/gzip_reader.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr size_t samplesOfBlock = 1 << 15;
/// Of the compression that gzip uses: no more bytes come out for one that goes in.
constexpr uint64_t largestInflation = 1032;

template<typename Sample>
void convert(std::span<const uint8_t> bytes, const NiftiHeader& header, std::span<float> values) {
    constexpr double largest = double(std::numeric_limits<float>::max());
    const bool little = header.byteOrder == ByteOrder::Little;
    for (size_t i = 0; i < values.size(); ++i) {
        const uint8_t* const source = bytes.data() + i * sizeof(Sample);
        const Sample sample =
            little ? qFromLittleEndian<Sample>(source) : qFromBigEndian<Sample>(source);
        const double value = header.slope * double(sample) + header.intercept;
        values[i] = std::abs(value) <= largest ? float(value) : 0.0f;
    }
}

using Conversion = void (*)(std::span<const uint8_t>, const NiftiHeader&, std::span<float>);

Conversion conversionOf(NiftiSample kind) {
    switch (kind) {
    case NiftiSample::UInt8:
        return convert<uint8_t>;
    case NiftiSample::Int8:
        return convert<int8_t>;
    case NiftiSample::Int16:
        return convert<int16_t>;
    case NiftiSample::UInt16:
        return convert<uint16_t>;
    case NiftiSample::Int32:
        return convert<int32_t>;
    case NiftiSample::UInt32:
        return convert<uint32_t>;
    case NiftiSample::Int64:
        return convert<qint64>;
    case NiftiSample::UInt64:
        return convert<quint64>;
    case NiftiSample::Float32:
        return convert<float>;
    case NiftiSample::Float64:
        return convert<double>;
    }
    return nullptr;
}

/// Whether a file of this size may hold what the header states.
bool mayHold(const GzipReader& reader, qint64 fileBytes, const NiftiHeader& header) {
    const uint64_t needed = header.dataOffset + header.volumeSamples() * bytesOf(header.kind);
    const uint64_t size = uint64_t(std::max<qint64>(fileBytes, 0));
    return needed <= (reader.compressed() ? size * largestInflation : size);
}

bool readValues(GzipReader& reader, const NiftiHeader& header, std::span<float> values) {
    const size_t sampleBytes = bytesOf(header.kind);
    const Conversion convertBlock = conversionOf(header.kind);
    std::vector<uint8_t> block(samplesOfBlock * sampleBytes);
    for (size_t done = 0; done < values.size(); done += samplesOfBlock) {
        const auto part = values.subspan(done, std::min(samplesOfBlock, values.size() - done));
        const auto bytes = std::span(block).first(part.size() * sampleBytes);
        if (reader.read(bytes) != bytes.size())
            return false;
        convertBlock(bytes, header, part);
    }
    return true;
}

/// The bytes of the header, as many of them as there are.
std::vector<uint8_t> readHeaderBytes(GzipReader& reader) {
    std::vector<uint8_t> bytes(4);
    bytes.resize(reader.read(bytes));
    const size_t have = bytes.size();
    bytes.resize(std::max(niftiHeaderBytes(bytes), have));
    bytes.resize(have + reader.read(std::span(bytes).subspan(have)));
    return bytes;
}

} // namespace

QString readNiftiVolume(QIODevice& device, NiftiVolume& volume) {
    const QString cutOff = "is cut off or damaged";
    GzipReader reader(device);
    const std::vector<uint8_t> headerBytes = readHeaderBytes(reader);
    NiftiVolume read;
    const QString fault = parseNiftiHeader(headerBytes, read.header);
    if (!fault.isEmpty())
        return fault;
    const NiftiHeader& header = read.header;
    if (header.volumeSamples() > largestNiftiBytes / sizeof(float))
        return QString("has %1 x %2 x %3 voxels, more than can be read")
            .arg(header.size[0])
            .arg(header.size[1])
            .arg(header.size[2]);
    if (!mayHold(reader, device.size(), header) ||
        !reader.skip(header.dataOffset - headerBytes.size()))
        return cutOff;
    if (!read.values.allocate(header.volumeSamples()))
        return "needs more memory than there is";
    if (!readValues(reader, header, read.values.span()))
        return cutOff;
    volume = std::move(read);
    return {};
}

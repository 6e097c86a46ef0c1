// SPDX-License-Identifier: GPL-3.0-or-later
#include "analyze_files.h"

#include "raw_bytes.h"

#include <algorithm>

namespace {

constexpr int firstNumber = 1;

/// Each transformation is its own inverse.
void transformSlice(std::span<uint16_t> slice, int sizeX, int transformation) {
    if (transformation == 0)
        return;
    std::reverse(slice.begin(), slice.end());
    if (transformation == 1)
        return;
    for (size_t row = 0; row < slice.size(); row += size_t(sizeX))
        std::reverse(slice.begin() + ptrdiff_t(row), slice.begin() + ptrdiff_t(row) + sizeX);
}

} // namespace

QString AnalyzeFormat::prefix() const {
    // The number of the second type begins after the seventh character.
    return options().type == ScannerType::AnalyzeNw
               ? QString("run%1_").arg(options().run, 3, 10, QChar('0'))
               : QString("Run%1_").arg(options().run);
}

QStringList AnalyzeFormat::fileNames(int volume) const {
    // Five digits below 1000, four from 1000 on.
    const int number = firstNumber + volume;
    const QString name =
        prefix() + QString("%1").arg(number, number < 1000 ? 5 : 4, 10, QChar('0'));
    return {name + ".hdr", name + ".img"};
}

/// Offsets of the published record: header key to 40, dimensions to 148, history to 348.
QByteArray AnalyzeFormat::header() const {
    constexpr int headerBytes = 348;
    constexpr int signedShort = 4;
    HeaderBytes header(headerBytes, sampleOrder());
    header.int32(0, headerBytes);
    header.int32(32, 16384); // extents
    header.text(38, "r");    // all images of a volume have the same size
    const int dimensions[] = {4, geometry().sizeX, geometry().sizeY, geometry().nrOfSlices, 1};
    for (int i = 0; i < 5; ++i)
        header.int16(40 + 2 * i, dimensions[i]);
    header.text(56, "mm");
    header.int16(70, signedShort);
    header.int16(72, 16); // bits of a sample
    const double sizes[] = {0.0, geometry().pixelSize, geometry().pixelSize,
                            geometry().sliceDistance, options().repetitionTime / 1000.0};
    for (int i = 0; i < 5; ++i)
        header.float32(76 + 4 * i, sizes[i]);
    header.int32(140, 4095); // largest sample
    header.text(148, "simulated");
    return header.bytes();
}

std::vector<ScannerFile> AnalyzeFormat::files(int volume, std::span<const uint16_t> samples) const {
    const QStringList names = fileNames(volume);
    std::vector<uint16_t> stored(samples.begin(), samples.end());
    for (size_t slice = 0; slice < stored.size(); slice += geometry().sliceVoxels())
        transformSlice(std::span(stored).subspan(slice, geometry().sliceVoxels()), geometry().sizeX,
                       options().imageTransformation);
    return {{names[0], header()}, {names[1], sampleBytes(stored, sampleOrder())}};
}

void AnalyzeFormat::addTypeBlock(SettingsLines& lines) const {
    lines.quoted("FirstFileName:", fileNames(0).last());
    addGeometryEntries(lines);
    if (options().type == ScannerType::PhilipsAnalyze)
        lines.number("ImageTransformation:", options().imageTransformation);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "ge_files.h"

#include "dicom_image.h"
#include "mosaic_image.h"
#include "random_numbers.h"
#include "raw_bytes.h"

#include <numeric>

namespace {

constexpr int headerBytes = 7904;
constexpr int imageHeaderStart = 3180;
constexpr int imagesOfFolder = 999;
constexpr int firstImage = 1;

QString threeDigits(int number) {
    return QString("%1").arg(number, 3, 10, QChar('0'));
}

/// Header numbers are big endian, whatever the byte order of the samples.
QByteArray headerOf(const ScanGeometry& geometry) {
    HeaderBytes header(headerBytes, ByteOrder::Big);
    header.int32(148, imageHeaderStart);
    header.float32(imageHeaderStart + 26, geometry.sliceThickness);
    header.float32(imageHeaderStart + 34, geometry.pixelSize * geometry.sizeY);
    header.float32(imageHeaderStart + 38, geometry.pixelSize * geometry.sizeX);
    header.float32(imageHeaderStart + 50, geometry.pixelSize);
    header.float32(imageHeaderStart + 54, geometry.pixelSize);
    header.float32(imageHeaderStart + 116, geometry.sliceGap());
    return header.bytes();
}

} // namespace

QStringList GeIFormat::fileNames(int volume) const {
    QStringList names;
    for (int slice = 0; slice < geometry().nrOfSlices; ++slice) {
        const int before = firstImage - 1 + volume * geometry().nrOfSlices + slice;
        // The next folder after a full one is numbered 20 higher.
        const int folder = seriesNumber(options()) + 20 * (before / imagesOfFolder);
        names << threeDigits(folder) + "/I." + threeDigits(before % imagesOfFolder + 1);
    }
    return names;
}

std::vector<ScannerFile> GeIFormat::files(int volume, std::span<const uint16_t> samples) const {
    const QStringList names = fileNames(volume);
    const QByteArray header = headerOf(geometry());
    std::vector<ScannerFile> files;
    for (int slice = 0; slice < geometry().nrOfSlices; ++slice)
        files.push_back(
            {names[slice], header + sampleBytes(geometry().slice(samples, slice), sampleOrder())});
    return files;
}

void GeIFormat::addTypeBlock(SettingsLines& lines) const {
    lines.number("GESeriesNr:", seriesNumber(options()));
    lines.number("GEFirstImageNr:", firstImage);
}

QString GeStanfordFormat::pFile() const {
    return QString("P%1").arg(10000 + options().run);
}

QString GeStanfordFormat::headerName() const {
    return "E1234." + pFile();
}

QByteArray GeStanfordFormat::headerText() const {
    return "Header of " + headerName().toUtf8() + "\n\n" +
           formatted("FOV = %.8g\nmatrix = %i %i\n", geometry().pixelSize * geometry().sizeX,
                     geometry().sizeX, geometry().sizeY) +
           formatted("slice thick = %.8g\nskip = %.8g\npixel size = %.8g\n",
                     geometry().sliceThickness, geometry().sliceGap(), geometry().pixelSize) +
           formatted("slices = %i\nTR = %i\n", geometry().nrOfSlices, options().repetitionTime);
}

QStringList GeStanfordFormat::fileNames(int volume) const {
    QStringList names;
    if (volume == 0)
        names << headerName();
    return names << pFile() + ".V" + threeDigits(volume + 1) + ".img";
}

std::vector<ScannerFile> GeStanfordFormat::files(int volume,
                                                 std::span<const uint16_t> samples) const {
    const QStringList names = fileNames(volume);
    std::vector<ScannerFile> files;
    if (volume == 0)
        files.push_back({names.first(), headerText()});
    files.push_back(
        {names.last(), sampleBytes(reversedSlices(geometry(), samples), ByteOrder::Big)});
    return files;
}

void GeStanfordFormat::addTypeBlock(SettingsLines& lines) const {
    lines.quoted("PFileHeader:", headerName());
    lines.number("SliceTimeLooping:", 1);
}

std::vector<int> GeDicomFormat::sliceOrder(int volume) const {
    std::vector<int> order(size_t(geometry().nrOfSlices));
    std::iota(order.begin(), order.end(), 0);
    if (options().shuffledSlices) {
        // A Fisher-Yates shuffle: all permutations are equally likely.
        RandomNumbers random(options().seed * 7919u + uint64_t(volume));
        for (size_t last = order.size() - 1; last > 0; --last)
            std::swap(order[last], order[size_t(random.bits() % (last + 1))]);
    }
    return order;
}

QStringList GeDicomFormat::fileNames(int volume) const {
    const int firstOfVolume = firstImage + volume * geometry().nrOfSlices;
    QStringList names;
    int running = seriesNumber(options()) + firstOfVolume;
    for (const int slice : sliceOrder(volume))
        names << QString("i%1.MRDC.%2").arg(running++).arg(firstOfVolume + slice);
    return names;
}

std::vector<ScannerFile> GeDicomFormat::files(int volume, std::span<const uint16_t> samples) const {
    const QStringList names = fileNames(volume);
    std::vector<ScannerFile> files;
    for (const int slice : sliceOrder(volume))
        files.push_back(
            {names[qsizetype(files.size())],
             dicomImageFile({options(), geometry(), volume}, sliceImage(geometry(), volume, slice),
                            geometry().slice(samples, slice))});
    return files;
}

bool GeDicomFormat::isBigEndian() const {
    return options().syntax == TransferSyntax::ExplicitBig;
}

void GeDicomFormat::addTypeBlock(SettingsLines& lines) const {
    if (options().type == ScannerType::GeHdxtDicom)
        return; // the watch folder has the number of the series
    lines.number("GESeriesNr:", seriesNumber(options()));
    lines.number("GEFirstImageNr:", firstImage);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/amr_file.h"

#include "base/byte_reader.h"
#include "base/file_writing.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"

#include <QBuffer>
#include <QFile>
#include <QtEndian>

namespace {

constexpr int firstGrey = 10;
constexpr int lastGrey = firstGrey + GreyScale::nrOfGradations - 1;
constexpr int firstOverlayColor = lastGrey + 1;
constexpr int paletteSize = 256;
constexpr uint32_t white = 0xffffffff;
constexpr size_t countBytes = sizeof(uint16_t);
constexpr int mostImages = 65535;

/// What is needed of the two headers of a BMP image.
struct BitmapSizes {
    int width = 0;
    int height = 0; ///< positive also where the rows are stored from the top
    size_t bytes = 0;
};

/// Of the image at the start of the bytes. Nothing for what is not read: another kind of image, one
/// that is too large, or that the bytes don't hold.
std::optional<BitmapSizes> bitmapSizes(std::span<const uint8_t> bytes) {
    constexpr uint32_t fileHeader = 14;
    constexpr uint32_t smallestHeader = 40;
    constexpr uint32_t largestHeader = 124;
    constexpr uint32_t bytesOfColor = 4;
    ByteReader reader(bytes);
    const bool isBitmap = reader.u8() == 'B' && reader.u8() == 'M';
    reader.skip(8); // size of the file, which some writers leave out, and reserved
    const uint32_t pixels = reader.u32();
    const uint32_t header = reader.u32();
    const int32_t width = reader.i32();
    const int32_t height = reader.i32();
    const bool isIndexed = reader.u16() == 1 && reader.u16() == 8 && reader.u32() == 0;
    reader.skip(12); // size of the pixels, resolution
    const uint32_t colorsUsed = reader.u32();
    if (reader.failed() || !isBitmap || !isIndexed || header < smallestHeader ||
        header > largestHeader || width < 1 || width > largestAmrSide || height == 0 ||
        height < -largestAmrSide || height > largestAmrSide || colorsUsed > paletteSize)
        return {};
    const uint32_t colors = colorsUsed != 0 ? colorsUsed : paletteSize;
    BitmapSizes sizes{width, std::abs(height), pixels};
    const size_t lineBytes = (size_t(width) + 3) / 4 * 4;
    sizes.bytes += lineBytes * size_t(sizes.height);
    if (pixels < fileHeader + header + bytesOfColor * colors || sizes.bytes > bytes.size())
        return {};
    return sizes;
}

/// The colours of an image, with white for those that it lacks.
std::array<uint32_t, paletteSize> paletteOf(const QImage& image) {
    std::array<uint32_t, paletteSize> palette;
    for (int i = 0; i < paletteSize; ++i)
        palette[size_t(i)] = i < image.colorCount() ? image.color(i) | 0xff000000u : white;
    return palette;
}

QImage coloredImage(const QImage& indexed, const std::array<uint32_t, paletteSize>& palette) {
    QImage image(indexed.size(), QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        const uchar* from = indexed.constScanLine(y);
        auto* to = reinterpret_cast<uint32_t*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            to[x] = palette[size_t(std::min(int(from[x]), lastGrey))];
    }
    return image;
}

void refillTables(AmrFile& file, const std::array<uint32_t, paletteSize>& palette) {
    for (size_t i = 0; i < file.greyTable.size(); ++i)
        file.greyTable[i] = palette[firstGrey + i];
    for (size_t i = 0; i < file.overlayColors.size(); ++i) {
        const QRgb color = palette[firstOverlayColor + i];
        file.overlayColors[i] = {qRed(color), qGreen(color), qBlue(color)};
    }
}

/// Reads the image at the start of the bytes and moves them behind it.
bool takeImage(std::span<const uint8_t>& bytes, AmrFile& file) {
    const auto sizes = bitmapSizes(bytes);
    if (!sizes || !memoryIsAvailable(sizes->bytes, 5)) // with its colours
        return false;
    const QImage indexed = QImage::fromData(bytes.data(), int(sizes->bytes), "BMP");
    if (indexed.format() != QImage::Format_Indexed8 ||
        indexed.size() != QSize(sizes->width, sizes->height) ||
        (!file.images.empty() && file.images.front().size() != indexed.size()))
        return false;
    const auto palette = paletteOf(indexed);
    file.images.push_back(coloredImage(indexed, palette));
    refillTables(file, palette);
    bytes = bytes.subspan(sizes->bytes);
    return !file.images.back().isNull();
}

/// Weighted as brightness is. Greys with gains differ in it, too.
int brightness(QRgb color) {
    return 11 * qRed(color) + 16 * qGreen(color) + 5 * qBlue(color);
}

/// For each brightness the palette entry of the nearest grey that is not brighter.
std::vector<uint8_t> paletteOfBrightness(const GreyScale& scale) {
    const auto greys = scale.table();
    std::vector<uint8_t> entries(size_t(brightness(white)) + 1, 0);
    for (size_t grey = greys.size(); grey-- > 0;) // the first of equal ones counts
        entries[size_t(brightness(greys[grey]))] = uint8_t(firstGrey + grey);
    uint8_t nearest = firstGrey;
    for (uint8_t& entry : entries)
        nearest = entry = entry != 0 ? entry : nearest;
    return entries;
}

QList<QRgb> filePalette(const GreyScale& scale, const OverlayColorTable& overlayColors) {
    QList<QRgb> palette;
    for (int i = 0; i < firstGrey; ++i)
        palette.append(qRgb(i + 1, i + 2, i + 3));
    for (const uint32_t grey : scale.table())
        palette.append(grey);
    for (const RgbColor& color : overlayColors)
        palette.append(qRgb(color.red, color.green, color.blue));
    palette.resize(paletteSize, white);
    return palette;
}

QImage indexedImage(const QImage& image, const std::vector<uint8_t>& entries) {
    const QImage colored = image.convertToFormat(QImage::Format_RGB32);
    QImage indexed(image.size(), QImage::Format_Indexed8);
    if (colored.isNull() || indexed.isNull())
        return {};
    std::fill_n(indexed.bits(), indexed.sizeInBytes(), uchar(0)); // also what fills up the rows
    constexpr int dotsPerMetre = 2835; // stated, as the default depends on the screen
    indexed.setDotsPerMeterX(dotsPerMetre);
    indexed.setDotsPerMeterY(dotsPerMetre);
    for (int y = 0; y < image.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(colored.constScanLine(y));
        uchar* to = indexed.scanLine(y);
        for (int x = 0; x < image.width(); ++x)
            to[x] = entries[size_t(brightness(from[x]))];
    }
    return indexed;
}

/// The stem of the project's name, or that of a run without one.
QString stemOf(const QString& projectPath) {
    return paths::extension(projectPath).isEmpty()
               ? paths::folderWithSlash(projectPath) + "realtime"
               : paths::withoutExtension(projectPath);
}

} // namespace

AmrParseResult parseAMR(std::span<const uint8_t> bytes, int nrOfSlices, AmrFile& file,
                        int& nrOfImages) {
    nrOfImages = 0;
    if (bytes.size() < countBytes)
        return AmrParseResult::Damaged;
    nrOfImages = ByteReader(bytes).u16();
    if (nrOfSlices < 1 || nrOfImages < nrOfSlices)
        return AmrParseResult::FewerImages;
    bytes = bytes.subspan(countBytes);
    AmrFile read;
    for (int slice = 0; slice < nrOfSlices; ++slice)
        if (!takeImage(bytes, read))
            return AmrParseResult::Damaged;
    file = std::move(read);
    return nrOfImages > nrOfSlices ? AmrParseResult::MoreImages : AmrParseResult::Ok;
}

QByteArray amrBytes(const std::vector<QImage>& images, const GreyScale& scale,
                    const OverlayColorTable& overlayColors) {
    if (images.size() > mostImages)
        return {};
    QByteArray bytes(countBytes, '\0');
    qToLittleEndian(uint16_t(images.size()), bytes.data());
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::Append))
        return {};
    const std::vector<uint8_t> entries = paletteOfBrightness(scale);
    const QList<QRgb> palette = filePalette(scale, overlayColors);
    for (const QImage& image : images) {
        QImage indexed = indexedImage(image, entries);
        indexed.setColorTable(palette);
        if (!indexed.save(&buffer, "BMP"))
            return {};
    }
    return bytes;
}

bool readAMR(const QString& path, int nrOfSlices, AmrFile& file) {
    constexpr qint64 largestFile = qint64(1) << 30;
    QFile source(path);
    QByteArray bytes;
    if (openPlainFile(source) && source.size() <= largestFile &&
        memoryIsAvailable(size_t(source.size()), 1))
        bytes = source.readAll();
    int nrOfImages = 0;
    const AmrParseResult result = parseAMR(bytesOf(bytes), nrOfSlices, file, nrOfImages);
    if (result == AmrParseResult::Ok)
        return true;
    if (result == AmrParseResult::Damaged) {
        showWarning(QStringLiteral("WARNING: Can not read the slice images \"%1\". The slices of "
                                   "the run are shown.")
                        .arg(path));
        return false;
    }
    const bool used = result == AmrParseResult::MoreImages;
    showWarning(QStringLiteral("WARNING: \"%1\" has %2 images for %3 slices. %4")
                    .arg(path, QString::number(nrOfImages), QString::number(nrOfSlices),
                         used ? QStringLiteral("The first ones are shown.")
                              : QStringLiteral("The slices of the run are shown.")));
    return used;
}

bool writeAMR(const QString& path, const std::vector<QImage>& images, const GreyScale& scale,
              const OverlayColorTable& overlayColors) {
    const QByteArray bytes = amrBytes(images, scale, overlayColors);
    if (!bytes.isEmpty() && writeFileAtomically(path, bytes))
        return true;
    showWarning(QStringLiteral("ERROR: Can not open .AMR file for saving !"));
    return false;
}

QString amrPath(const QString& projectPath) {
    return stemOf(projectPath) + ".amr";
}

QString inplaneAmrPath(const QString& projectPath) {
    return stemOf(projectPath) + "_Inplane.amr";
}

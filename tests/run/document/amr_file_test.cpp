// The file of slice images: bytes built by hand, and hostile ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/amr_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

// two.amr has two images of 3 x 2 pixels, with the indices 10 11 117 / 224 225 10 and
// 225 225 225 / 10 10 10.
QByteArray corpusBytes(const char* name) {
    return contentOf(QString(VELO_SOURCE_DIR "/tests/fuzz/corpus/amr/") + name);
}

QRgb grey(int level) {
    return qRgb(level, level, level);
}

QImage imageOf(int width, const std::vector<QRgb>& pixels) {
    QImage image(width, int(pixels.size()) / width, QImage::Format_RGB32);
    std::ranges::copy(pixels, reinterpret_cast<QRgb*>(image.bits()));
    return image;
}

// Gradations 0, 1, 107, 214, 215 of 215 are 0, 1, 127, 254, 255 of 255.
std::vector<QImage> imagesOfTwo() {
    return {imageOf(3, {grey(0), grey(1), grey(127), grey(254), grey(255), grey(0)}),
            imageOf(3, {grey(255), grey(255), grey(255), grey(0), grey(0), grey(0)})};
}

AmrParseResult parsed(const QByteArray& bytes, int nrOfSlices, AmrFile& file) {
    int nrOfImages = 0;
    // With a buffer of exactly this size the sanitizer catches a read beyond its end.
    const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    return parseAMR(exact, nrOfSlices, file, nrOfImages);
}

TEST(AmrFile, IsWrittenAsLaidDownAndReadBack) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.amr");
    ASSERT_TRUE(writeAMR(path, imagesOfTwo(), GreyScale(), significanceColors()));
    EXPECT_EQ(contentOf(path), corpusBytes("two.amr"));
    AmrFile file;
    ASSERT_TRUE(readAMR(path, 2, file));
    EXPECT_EQ(file.images, imagesOfTwo());
    EXPECT_EQ(file.greyTable, GreyScale().table());
    EXPECT_EQ(file.overlayColors, significanceColors());
}

// Between two greys, and colours of other sources, the next darker one; equal greys of a low gain
// all are the first one.
TEST(AmrFile, PixelsGoToTheGreyOfTheirBrightness) {
    GreyScale dark;
    dark.gain = {0.01f, 0.01f, 0.01f};
    GreyScale red;
    red.gain = {1, 0, 0};
    const std::tuple<GreyScale, QRgb, int> cases[] = {
        {{}, grey(6), 15},          {{}, qRgb(0, 255, 0), 117}, {dark, grey(0), 10},
        {dark, grey(1), 53},        {dark, grey(2), 137},       {dark, grey(255), 221},
        {red, qRgb(127, 0, 0), 117}};
    for (const auto& [scale, color, expected] : cases) {
        const QByteArray bytes = amrBytes({imageOf(1, {color})}, scale, significanceColors());
        EXPECT_EQ(int(uint8_t(bytes[bytes.size() - 4])), expected) << color;
    }
}

TEST(AmrFile, MissingColoursAreWhiteAndHighIndicesAre225) {
    AmrFile file;
    ASSERT_EQ(parsed(corpusBytes("short_palette.amr"), 2, file), AmrParseResult::Ok);
    EXPECT_EQ(file.greyTable[0], qRgb(1, 1, 1));
    EXPECT_EQ(file.greyTable[1], 0xffffffffu);
    EXPECT_EQ(file.overlayColors[19], (RgbColor{255, 255, 255}));

    QByteArray bytes = corpusBytes("two.amr");
    bytes[bytes.size() - 1 - 3] = char(230); // the top row stands last, with a byte of padding
    ASSERT_EQ(parsed(bytes, 2, file), AmrParseResult::Ok);
    EXPECT_EQ(file.images[1].pixel(0, 0), grey(255));
}

TEST(AmrFile, OtherNumbersThanSlices) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("%1%2.amr");
    writeFile(path, corpusBytes("two.amr"));
    ScriptedMessages messages;
    AmrFile file;
    messages.expectWarning("WARNING: \"" + path +
                           "\" has 2 images for 3 slices. The slices of the run are shown.");
    EXPECT_FALSE(readAMR(path, 3, file));
    EXPECT_TRUE(file.images.empty());
    messages.expectWarning("WARNING: \"" + path +
                           "\" has 2 images for 1 slices. The first ones are shown.");
    EXPECT_TRUE(readAMR(path, 1, file));
    EXPECT_EQ(file.images.size(), 1u);
    for (const QString& missing : {folder.filePath("none.amr"), folder.path()}) {
        messages.expectWarning("WARNING: Can not read the slice images \"" + missing +
                               "\". The slices of the run are shown.");
        EXPECT_FALSE(readAMR(missing, 1, file));
    }
    messages.expectWarning("ERROR: Can not open .AMR file for saving !");
    EXPECT_FALSE(writeAMR(folder.path(), {}, {}, {}));
}

TEST(AmrFile, DamagedImagesAreRefused) {
    AmrFile file;
    const QByteArray whole = corpusBytes("two.amr");
    const qsizetype second = 2 + (whole.size() - 2) / 2;
    for (qsizetype length = 2; length < whole.size(); length += 7)
        EXPECT_EQ(parsed(whole.left(length), 2, file), AmrParseResult::Damaged) << length;
    // Offset in the second image, number of bytes, value.
    const std::tuple<qsizetype, int, int64_t> cases[] = {
        {0, 2, 0x4950},      {10, 4, 0xffffffff}, {10, 4, 1077},       {14, 4, 12},
        {14, 4, 0x7fffffff}, {18, 4, 0},          {18, 4, -3},         {18, 4, 4097},
        {18, 4, 2},          {22, 4, 0},          {22, 4, 1},          {22, 4, 0x7fffffff},
        {22, 4, 1LL << 31},  {26, 2, 0},          {28, 2, 24},         {28, 2, 4},
        {30, 4, 1},          {46, 4, 257},        {46, 4, 0xffffffff}, {22, 4, 3}};
    for (const auto& [offset, size, value] : cases) {
        QByteArray bytes = whole;
        for (int i = 0; i < size; ++i)
            bytes[second + offset + i] = char(value >> (8 * i));
        EXPECT_EQ(parsed(bytes, 2, file), AmrParseResult::Damaged) << offset << ' ' << value;
    }
    EXPECT_TRUE(file.images.empty());
}

} // namespace

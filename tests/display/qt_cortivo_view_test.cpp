// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"

#include "run/document/qt_cortivo_doc.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr QRgb strongest = 0xffffff00;

/// Six slices of 8 x 8 in 3 x 2 tiles; the voxel 2, 3 of slice 1 carries a t value.
class View : public testing::Test {
protected:
    void SetUp() override {
        const std::vector<int16_t> samples(8 * 8 * 6, 50);
        document.slices.greyScale.high = 100;
        document.slices.createSlicePixmaps(samples, 8, 8, 6);
        document.mosaic = {3, 2, 0, 1, 1};
        StatisticalMaps& maps = document.maps;
        maps.sizeX = maps.sizeY = 8;
        maps.nrOfSlices = 6;
        ASSERT_TRUE(maps.allocateMaps(1));
        maps.ContrastMaps[0][64 + 3 * 8 + 2] = 20.0f;
        maps.states = {ContrastPositive};
        maps.contrastOfMap = {0};
        maps.NrOfActiveContrasts = maps.NrOfShownMaps = 1;
        maps.ClusterSizePixels = 1;
        document.SignificanceColorCoding = true;
        view.resize(700, 560);
    }
    ScriptedMessages messages;
    QtCortivoDoc document{QtCortivoDoc::Kind::Functional};
    QtCortivoView view{&document};
};

TEST_F(View, ScrollsByKeys) {
    document.mosaic = {2, 2, 0, 2, 1};
    view.slotDocumentChanged();
    const std::pair<Qt::Key, int> firstSliceAfter[] = {
        {Qt::Key_PageDown, 2}, {Qt::Key_Right, 4}, {Qt::Key_Plus, 0}, {Qt::Key_PageUp, 5},
        {Qt::Key_Minus, 4},    {Qt::Key_Left, 3},  {Qt::Key_Up, 3}};
    for (const auto& [key, first] : firstSliceAfter) {
        QTest::keyClick(&view, key);
        EXPECT_EQ(document.mosaic.FirstShownSlice, first) << "key " << int(key);
    }
    QTest::keyClick(&view, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(document.mosaic.FirstShownSlice, 3);
}

TEST_F(View, DrawsTheMosaicInWholePixelsOfTheScreen) {
    const QImage shown = view.grab().toImage();
    // Tiles of 8 voxels: the painted one is where sliceAt() finds slice 1.
    int painted = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            if (view.sliceAt({x, y}) == 1 && shown.pixel(x, y) == strongest)
                ++painted;
    const int side = int(std::lround(std::sqrt(double(painted))));
    EXPECT_EQ(painted, side * side);
    EXPECT_GT(side, 16);
    EXPECT_EQ(view.sliceAt({0, 0}), -1);
    EXPECT_EQ(view.sliceAt({699, 280}), -1); // the legend
}

TEST_F(View, SavesTheMosaicAsBitmap) {
    const QTemporaryDir folder;
    messages.expectFileChoice("Save Bitmap File", folder.filePath("run 1.2.bmp"));
    view.slotSaveAsBMP();
    const QImage saved(folder.filePath("run 1.2.bmp"), "BMP");
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32), view.mosaic());

    const QString missing = folder.filePath("missing/run.bmp");
    messages.expectFileChoice("Save Bitmap File", missing);
    messages.expect(MessageLevel::Warning,
                    QString("WARNING: Unable to write bitmap file \"%1\"!").arg(missing));
    view.slotSaveAsBMP();
}

} // namespace

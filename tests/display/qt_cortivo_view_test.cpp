// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"

#include "run/document/qt_cortivo_doc.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

/// Six slices of 8 x 8.
class View : public testing::Test {
protected:
    void SetUp() override {
        const std::vector<int16_t> samples(8 * 8 * 6, 50);
        document.slices.greyScale.high = 100;
        document.slices.createSlicePixmaps(samples, {8, 8, 6});
        document.mosaic = {2, 2, 0, 2, 1};
        view.resize(700, 560);
    }
    ScriptedMessages messages;
    QtCortivoDoc document{QtCortivoDoc::Kind::Functional};
    OverlayThresholds thresholds;
    QtCortivoView view{&document, thresholds};
};

TEST_F(View, ScrollsByKeys) {
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

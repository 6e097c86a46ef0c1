// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/render_area.h"

#include <QSignalSpy>
#include <QTest>

TEST(RenderArea, ShowsItsPictureAtTheOriginAndAsksForOneOfItsSize) {
    RenderArea2 area;
    EXPECT_EQ(area.sizeHint(), QSize(400, 200));
    EXPECT_EQ(area.minimumSizeHint(), QSize(100, 100));
    EXPECT_EQ(area.backgroundRole(), QPalette::Base);
    QImage picture(20, 10, QImage::Format_RGB32);
    picture.fill(Qt::green);
    area.setPicture(picture, RenderArea::Showing::Later);
    QSignalSpy resized(&area, &RenderArea::resized);
    area.resize(120, 110);
    const QImage shown = area.grab().toImage();
    EXPECT_GE(resized.count(), 1);
    EXPECT_EQ(shown.pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(shown.pixelColor(19, 9), QColor(Qt::green));
    EXPECT_EQ(shown.pixelColor(20, 9), area.palette().color(QPalette::Base));
    area.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&area));
    picture.fill(Qt::red);
    area.setPicture(picture); // without an event loop
    EXPECT_EQ(area.screen()->grabWindow(area.winId(), 0, 0, 1, 1).toImage().pixelColor(0, 0),
              QColor(Qt::red));
}
